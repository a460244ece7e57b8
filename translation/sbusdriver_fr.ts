<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
<context>
    <name>CRtu</name>
    <message>
        <source>Time Sync Command</source>
        <translation>Mise à l&apos;heure</translation>
    </message>
    <message>
        <source>Analog Write List</source>
        <translation>Écriture de valeurs analogiques (liste)</translation>
    </message>
</context>
<context>
    <name>SBusDriver</name>
    <message>
        <source>SAIA S-BUS Driver</source>
        <translation>Pilote SAIA S-BUS</translation>
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
        <translation>Adresses Saia S-BUS
adresse A(M) - numéro de l&apos;adresse d&apos;entrée
               composée de &apos;Variable&apos;+&apos;Adresse&apos;
               p. ex. I200 -&gt; entrée 200
               p. ex. O200 -&gt; sortie 200
</translation>
    </message>
    <message>
        <source>Saia S-BUS Address Descriptions
address A(M) - Output address number
               Compose of &apos;Variable&apos;+&apos;Address&apos;
                example) O200 -&gt; 200th Output
                example) F200 -&gt; 200th Flag
</source>
        <translation>Adresses Saia S-BUS
adresse A(M) - numéro de l&apos;adresse de sortie
               composée de &apos;Variable&apos;+&apos;Adresse&apos;
               p. ex. O200 -&gt; sortie 200
               p. ex. F200 -&gt; indicateur 200
</translation>
    </message>
    <message>
        <source>Saia S-BUS Address Descriptions
address A(M) - Output address number
               Compose of &apos;Variable&apos;+&apos;Address&apos;
               example) R200 -&gt; 200th register
               example) T200 -&gt; 200th Timer
</source>
        <translation>Adresses Saia S-BUS
adresse A(M) - numéro de l&apos;adresse de sortie
               composée de &apos;Variable&apos;+&apos;Adresse&apos;
               p. ex. R200 -&gt; registre 200
               p. ex. T200 -&gt; temporisateur 200
</translation>
    </message>
    <message>
        <source>Saia S-BUS Address Descriptions
address A(M) - Input address number
               Compose of &apos;Variable&apos;+&apos;Address&apos;
               example) R200  -&gt; 200th register
               example) T200 -&gt;  200th Timer
</source>
        <translation>Adresses Saia S-BUS
adresse A(M) - numéro de l&apos;adresse d&apos;entrée
               composée de &apos;Variable&apos;+&apos;Adresse&apos;
               p. ex. R200 -&gt; registre 200
               p. ex. T200 -&gt; temporisateur 200
</translation>
    </message>
</context>
<context>
    <name>SaiaSerialDeviceOption</name>
    <message>
        <source>Protocol</source>
        <translation>Protocole</translation>
    </message>
    <message>
        <source>SaiaSerialDeviceOption</source>
        <translation>SaiaSerialDeviceOption</translation>
    </message>
    <message>
        <source>Comm. Board Station No.:</source>
        <translation>N° station carte comm.&#xa0;:</translation>
    </message>
    <message>
        <source>S-Bus Protocol :</source>
        <translation>Protocole S-Bus&#xa0;:</translation>
    </message>
    <message>
        <source>Data Mode</source>
        <translation>Mode Data</translation>
    </message>
    <message>
        <source>Break Mode</source>
        <translation>Mode Break</translation>
    </message>
    <message>
        <source>Break Delay Time :</source>
        <translation>Durée du break&#xa0;:</translation>
    </message>
    <message>
        <source>(msec)</source>
        <translation>(ms)</translation>
    </message>
</context>
</TS>
