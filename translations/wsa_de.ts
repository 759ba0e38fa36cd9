<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>CWSASignature</name>
    <message>
        <source>Signature Select</source>
        <translation>Signatur wählen</translation>
    </message>
    <message>
        <source>2g4And40Mhz</source>
        <translation>2g4And40Mhz</translation>
    </message>
    <message>
        <source>CordlessPhone</source>
        <translation>CordlessPhone</translation>
    </message>
    <message>
        <source>80211n</source>
        <translation>80211n</translation>
    </message>
    <message>
        <source>MotoralaCanopy</source>
        <translation>MotoralaCanopy</translation>
    </message>
    <message>
        <source>80211bg</source>
        <translation>80211bg</translation>
    </message>
    <message>
        <source>ErpOfdm</source>
        <translation>ErpOfdm</translation>
    </message>
    <message>
        <source>AvTransmitter</source>
        <translation>AvTransmitter</translation>
    </message>
    <message>
        <source>WirelessAudio</source>
        <translation>WirelessAudio</translation>
    </message>
    <message>
        <source>Bluetooth</source>
        <translation>Bluetooth</translation>
    </message>
    <message>
        <source>ZigBee</source>
        <translation>ZigBee</translation>
    </message>
    <message>
        <source>Please tap on the screen to match the selected
signature with the spectrum</source>
        <translation>Bitte auf den Bildschirm tippen, um die gewählte
Signatur am Spektrum auszurichten</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>CWsa</name>
    <message>
        <source>dBm</source>
        <translation>dBm</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>5G Band Configure Succeed!</source>
        <translation>5-GHz-Band erfolgreich eingerichtet!</translation>
    </message>
    <message>
        <source>2.4G Band Configure Succeed!</source>
        <translation>2,4-GHz-Band erfolgreich eingerichtet!</translation>
    </message>
    <message>
        <source>The name must contain letters or digits.</source>
        <translation>Der Name muss Buchstaben oder Ziffern enthalten.</translation>
    </message>
    <message>
        <source>Save Test Result</source>
        <translation>Testergebnis speichern</translation>
    </message>
    <message>
        <source>0.0%</source>
        <translation>0,0%</translation>
    </message>
    <message>
        <source>2.0%</source>
        <translation>2,0%</translation>
    </message>
    <message>
        <source>The acquisition engine could not be started.
Program tried: %1</source>
        <translation>Das Erfassungsprogramm konnte nicht gestartet werden.
Versuchtes Programm: %1</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>The test result could not be saved.
%1
%2</source>
        <translation>Das Testergebnis konnte nicht gespeichert werden.
%1
%2</translation>
    </message>
    <message>
        <source>The path is too long.</source>
        <translation>Der Pfad ist zu lang.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Current</source>
        <translation>Aktuell</translation>
    </message>
    <message>
        <source>Average</source>
        <translation>Mittel</translation>
    </message>
    <message>
        <source>Max</source>
        <translation>Max.</translation>
    </message>
    <message>
        <source>Frequency</source>
        <translation>Frequenz</translation>
    </message>
    <message>
        <source>2.4 GHz Band</source>
        <translation>2,4-GHz-Band</translation>
    </message>
    <message>
        <source>5 GHz Band</source>
        <translation>5-GHz-Band</translation>
    </message>
    <message>
        <source>View All</source>
        <translation>Alle Ansichten</translation>
    </message>
    <message>
        <source>Planar</source>
        <translation>Pegelverlauf</translation>
    </message>
    <message>
        <source>Topographic</source>
        <translation>Topografisch</translation>
    </message>
    <message>
        <source>Spectral</source>
        <translation>Wasserfall</translation>
    </message>
    <message>
        <source>Inspector</source>
        <translation>Inspektor</translation>
    </message>
    <message>
        <source>Signature</source>
        <translation>Signatur</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>No WIFI SA USB is detected!
Please make sure your WIFI SA USB is properly
connected to the unit.</source>
        <translation>Kein WIFI SA USB erkannt!
Bitte prüfen Sie, ob Ihr WIFI SA USB richtig
mit dem Gerät verbunden ist.</translation>
    </message>
    <message>
        <source>Hover over view</source>
        <translation>Auf Ansicht tippen:</translation>
    </message>
    <message>
        <source>for frequency</source>
        <translation>Frequenz</translation>
    </message>
    <message>
        <source>and amplitude</source>
        <translation>und Amplitude</translation>
    </message>
    <message>
        <source>information</source>
        <translation>werden angezeigt</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>Reach the max recording time</source>
        <translation>Maximale Aufzeichnungsdauer erreicht</translation>
    </message>
    <message>
        <source>The acquisition engine has stopped.
Select a band under Frequency to restart it.</source>
        <translation>Die Erfassung wurde beendet.
Zum Neustart unter Frequenz ein Band wählen.</translation>
    </message>
    <message>
        <source>General Information</source>
        <translation>Allgemeine Angaben</translation>
    </message>
    <message>
        <source>Date and Time Results Were Saved:</source>
        <translation>Datum und Uhrzeit der Speicherung:</translation>
    </message>
    <message>
        <source>Software Version:</source>
        <translation>Softwareversion:</translation>
    </message>
    <message>
        <source>MAC Address of Test Port:</source>
        <translation>MAC-Adresse des Testports:</translation>
    </message>
    <message>
        <source>Serial Number of Test Set:</source>
        <translation>Seriennummer des Testsets:</translation>
    </message>
</context>
</TS>
