<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>CRtu</name>
    <message>
        <source>Time Sync Command</source>
        <translation>Uhr stellen</translation>
    </message>
    <message>
        <source>Analog Write List</source>
        <translation>Analogwerte schreiben (Liste)</translation>
    </message>
</context>
<context>
    <name>SBusDriver</name>
    <message>
        <source>SAIA S-BUS Driver</source>
        <translation>Treiber für SAIA S-BUS</translation>
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
        <translation>Saia-S-BUS-Adressen
Adresse A(M) - Nummer der Eingangsadresse
               besteht aus &apos;Variable&apos;+&apos;Adresse&apos;
               z. B. I200 -&gt; Eingang 200
               z. B. O200 -&gt; Ausgang 200
</translation>
    </message>
    <message>
        <source>Saia S-BUS Address Descriptions
address A(M) - Output address number
               Compose of &apos;Variable&apos;+&apos;Address&apos;
                example) O200 -&gt; 200th Output
                example) F200 -&gt; 200th Flag
</source>
        <translation>Saia-S-BUS-Adressen
Adresse A(M) - Nummer der Ausgangsadresse
               besteht aus &apos;Variable&apos;+&apos;Adresse&apos;
               z. B. O200 -&gt; Ausgang 200
               z. B. F200 -&gt; Merker 200
</translation>
    </message>
    <message>
        <source>Saia S-BUS Address Descriptions
address A(M) - Output address number
               Compose of &apos;Variable&apos;+&apos;Address&apos;
               example) R200 -&gt; 200th register
               example) T200 -&gt; 200th Timer
</source>
        <translation>Saia-S-BUS-Adressen
Adresse A(M) - Nummer der Ausgangsadresse
               besteht aus &apos;Variable&apos;+&apos;Adresse&apos;
               z. B. R200 -&gt; Register 200
               z. B. T200 -&gt; Timer 200
</translation>
    </message>
    <message>
        <source>Saia S-BUS Address Descriptions
address A(M) - Input address number
               Compose of &apos;Variable&apos;+&apos;Address&apos;
               example) R200  -&gt; 200th register
               example) T200 -&gt;  200th Timer
</source>
        <translation>Saia-S-BUS-Adressen
Adresse A(M) - Nummer der Eingangsadresse
               besteht aus &apos;Variable&apos;+&apos;Adresse&apos;
               z. B. R200 -&gt; Register 200
               z. B. T200 -&gt; Timer 200
</translation>
    </message>
</context>
<context>
    <name>SaiaSerialDeviceOption</name>
    <message>
        <source>Protocol</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>SaiaSerialDeviceOption</source>
        <translation>SaiaSerialDeviceOption</translation>
    </message>
    <message>
        <source>Comm. Board Station No.:</source>
        <translation>Stationsnr. Komm.-Karte:</translation>
    </message>
    <message>
        <source>S-Bus Protocol :</source>
        <translation>S-Bus-Protokoll:</translation>
    </message>
    <message>
        <source>Data Mode</source>
        <translation>Data-Modus</translation>
    </message>
    <message>
        <source>Break Mode</source>
        <translation>Break-Modus</translation>
    </message>
    <message>
        <source>Break Delay Time :</source>
        <translation>Break-Dauer:</translation>
    </message>
    <message>
        <source>(msec)</source>
        <translation>(ms)</translation>
    </message>
</context>
</TS>
