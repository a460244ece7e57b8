<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>SBusDriver</name>
    <message>
        <source>SAIA S-BUS</source>
        <translation>of any language</translation>
    </message>
</context>
</TS>
