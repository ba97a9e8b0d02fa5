<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>access_arbiter_view</name>
    <message>
        <source>$Title$</source>
        <translation>Запрос на подключение</translation>
    </message>
    <message>
        <source>$Description$</source>
        <translation>Пользователь запрашивает доступ на управление вашим устройством</translation>
    </message>
    <message>
        <source>$Decline$</source>
        <translation>Запретить</translation>
    </message>
    <message>
        <source>$Approve$</source>
        <translation>Разрешить</translation>
    </message>
</context>
</TS>
