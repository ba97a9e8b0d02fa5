<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>test</name>
    <message>
        <source>hello</source>
        <translation>privet-a</translation>
    </message>
</context>
</TS>
