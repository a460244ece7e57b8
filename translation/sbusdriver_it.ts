<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="it" sourcelanguage="en">
<context>
    <name>CRtu</name>
    <message>
        <source>Time Sync Command</source>
        <translation>Sincronizzazione dell&apos;ora</translation>
    </message>
    <message>
        <source>Analog Write List</source>
        <translation>Scrittura valori analogici (lista)</translation>
    </message>
</context>
<context>
    <name>SBusDriver</name>
    <message>
        <source>SAIA S-BUS Driver</source>
        <translation>Driver SAIA S-BUS</translation>
    </message>
    <message>
        <source>SAIA S-BUS</source>
        <translation>SAIA S-BUS</translation>
    </message>
    <message>
        <source>Saia S-BUS Address Descriptions
address A(M) - Input address number
               Compose of &apos;Variable&apos;+&apos;Address&apos;
                example) I200 -&gt; 200th Input
                example) O200 -&gt; 200th Output 
</source>
        <translation>Indirizzi Saia S-BUS
indirizzo A(M) - numero dell&apos;indirizzo di ingresso
                 composto da &apos;Variabile&apos;+&apos;Indirizzo&apos;
                 p. es. I200 -&gt; ingresso 200
                 p. es. O200 -&gt; uscita 200
</translation>
    </message>
    <message>
        <source>Saia S-BUS Address Descriptions
address A(M) - Output address number
               Compose of &apos;Variable&apos;+&apos;Address&apos;
                example) O200 -&gt; 200th Output
                example) F200 -&gt; 200th Flag
</source>
        <translation>Indirizzi Saia S-BUS
indirizzo A(M) - numero dell&apos;indirizzo di uscita
                 composto da &apos;Variabile&apos;+&apos;Indirizzo&apos;
                 p. es. O200 -&gt; uscita 200
                 p. es. F200 -&gt; flag 200
</translation>
    </message>
    <message>
        <source>Saia S-BUS Address Descriptions
address A(M) - Output address number
               Compose of &apos;Variable&apos;+&apos;Address&apos;
               example) R200 -&gt; 200th register
               example) T200 -&gt; 200th Timer
</source>
        <translation>Indirizzi Saia S-BUS
indirizzo A(M) - numero dell&apos;indirizzo di uscita
                 composto da &apos;Variabile&apos;+&apos;Indirizzo&apos;
                 p. es. R200 -&gt; registro 200
                 p. es. T200 -&gt; temporizzatore 200
</translation>
    </message>
    <message>
        <source>Saia S-BUS Address Descriptions
address A(M) - Input address number
               Compose of &apos;Variable&apos;+&apos;Address&apos;
               example) R200  -&gt; 200th register
               example) T200 -&gt;  200th Timer
</source>
        <translation>Indirizzi Saia S-BUS
indirizzo A(M) - numero dell&apos;indirizzo di ingresso
                 composto da &apos;Variabile&apos;+&apos;Indirizzo&apos;
                 p. es. R200 -&gt; registro 200
                 p. es. T200 -&gt; temporizzatore 200
</translation>
    </message>
</context>
<context>
    <name>SaiaSerialDeviceOption</name>
    <message>
        <source>Protocol</source>
        <translation>Protocollo</translation>
    </message>
    <message>
        <source>SaiaSerialDeviceOption</source>
        <translation>SaiaSerialDeviceOption</translation>
    </message>
    <message>
        <source>Comm. Board Station No.:</source>
        <translation>N. stazione scheda com.:</translation>
    </message>
    <message>
        <source>S-Bus Protocol :</source>
        <translation>Protocollo S-Bus:</translation>
    </message>
    <message>
        <source>Data Mode</source>
        <translation>Modo Data</translation>
    </message>
    <message>
        <source>Break Mode</source>
        <translation>Modo Break</translation>
    </message>
    <message>
        <source>Break Delay Time :</source>
        <translation>Durata del break:</translation>
    </message>
    <message>
        <source>(msec)</source>
        <translation>(ms)</translation>
    </message>
</context>
</TS>
