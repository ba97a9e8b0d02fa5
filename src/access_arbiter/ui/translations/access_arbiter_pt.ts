<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="pt_BR">
<context>
    <name>access_arbiter_view</name>
    <message>
        <source>$Title$</source>
        <translation>Connection request</translation>
    </message>
    <message>
        <source>$Description$</source>
        <translation>A user requests access to manage your device</translation>
    </message>
    <message>
        <source>$Decline$</source>
        <translation>Decline</translation>
    </message>
    <message>
        <source>$Approve$</source>
        <translation>Approve</translation>
    </message>
</context>
</TS>
