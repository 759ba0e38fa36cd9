<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>Analysis</name>
    <message>
        <source>Wi-Fi (OFDM)</source>
        <translation>WLAN (OFDM)</translation>
    </message>
    <message>
        <source>Wi-Fi (DSSS)</source>
        <translation>WLAN (DSSS)</translation>
    </message>
    <message>
        <source>Bluetooth</source>
        <translation>Bluetooth</translation>
    </message>
    <message>
        <source>Zigbee</source>
        <translation>Zigbee</translation>
    </message>
    <message>
        <source>Microwave oven</source>
        <translation>Mikrowellenherd</translation>
    </message>
    <message>
        <source>Video transmitter</source>
        <translation>Videosender</translation>
    </message>
    <message>
        <source>Cordless phone</source>
        <translation>Schnurlostelefon</translation>
    </message>
    <message>
        <source>Wireless audio</source>
        <translation>Funk-Audio</translation>
    </message>
    <message>
        <source>Fixed wireless link</source>
        <translation>Richtfunkstrecke</translation>
    </message>
    <message>
        <source>Narrowband</source>
        <translation>Schmalbandig</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
</context>
<context>
    <name>Export</name>
    <message>
        <source>Could not write %1: %2</source>
        <translation>%1 konnte nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>Could not write %1: there is no picture</source>
        <translation>%1 konnte nicht geschrieben werden: Es gibt kein Bild</translation>
    </message>
    <message>
        <source>PNG encoding failed</source>
        <translation>PNG-Kodierung fehlgeschlagen</translation>
    </message>
</context>
<context>
    <name>LinkMessages</name>
    <message>
        <source>chosen</source>
        <translation>gewählte</translation>
    </message>
    <message>
        <source>Open another, or turn on Loop to play it again.</source>
        <translation>Öffnen Sie eine andere oder schalten Sie „Schleife“ ein, um sie erneut wiederzugeben.</translation>
    </message>
    <message>
        <source>Install the hackrf package, then choose Source &gt; HackRF again.</source>
        <translation>Installieren Sie das Paket hackrf und wählen Sie dann erneut Quelle &gt; HackRF.</translation>
    </message>
    <message>
        <source>No HackRF found: %1.</source>
        <translation>Kein HackRF gefunden: %1.</translation>
    </message>
    <message>
        <source>Connect the HackRF, then choose Source &gt; HackRF again.</source>
        <translation>Schließen Sie den HackRF an und wählen Sie dann erneut Quelle &gt; HackRF.</translation>
    </message>
    <message>
        <source>The HackRF stopped delivering sweeps: %1.</source>
        <translation>Der HackRF liefert keine Sweeps mehr: %1.</translation>
    </message>
    <message>
        <source>Check its cable, then choose Source &gt; HackRF again.</source>
        <translation>Prüfen Sie das Kabel und wählen Sie dann erneut Quelle &gt; HackRF.</translation>
    </message>
    <message>
        <source>Check that it is a file you may read, or open another.</source>
        <translation>Prüfen Sie, ob Sie die Datei lesen dürfen, oder öffnen Sie eine andere.</translation>
    </message>
    <message>
        <source>The source does not cover the %1 band: %2.</source>
        <translation>Die Quelle deckt das %1 Band nicht ab: %2.</translation>
    </message>
    <message>
        <source>Choose another band in the Source menu.</source>
        <translation>Wählen Sie im Menü Quelle ein anderes Band.</translation>
    </message>
    <message>
        <source>Recording stopped: %1.</source>
        <translation>Aufzeichnung beendet: %1.</translation>
    </message>
    <message>
        <source>Free disk space or choose another folder; the measurement goes on.</source>
        <translation>Geben Sie Speicherplatz frei oder wählen Sie einen anderen Ordner; die Messung läuft weiter.</translation>
    </message>
    <message>
        <source>The disk of the recordings is almost full: %1.</source>
        <translation>Der Datenträger der Aufzeichnungen ist fast voll: %1.</translation>
    </message>
    <message>
        <source>Free space; recording stops before the disk is full.</source>
        <translation>Geben Sie Speicherplatz frei; die Aufzeichnung endet, bevor der Datenträger voll ist.</translation>
    </message>
    <message>
        <source>The engine refused a setting: %1.</source>
        <translation>Der Messprozess hat eine Einstellung abgelehnt: %1.</translation>
    </message>
    <message>
        <source>Correct the WSA_ variable it names, then start again.</source>
        <translation>Korrigieren Sie die genannte WSA_-Variable und starten Sie dann neu.</translation>
    </message>
    <message>
        <source>The engine stopped: %1.</source>
        <translation>Der Messprozess wurde beendet: %1.</translation>
    </message>
    <message>
        <source>Choose a source in the Source menu to start again.</source>
        <translation>Wählen Sie im Menü Quelle eine Quelle, um neu zu starten.</translation>
    </message>
    <message>
        <source>The engine crashed</source>
        <translation>Der Messprozess ist abgestürzt,</translation>
    </message>
    <message>
        <source>The engine ended with status %1</source>
        <translation>Der Messprozess endete mit Status %1,</translation>
    </message>
    <message>
        <source>without a word.</source>
        <translation>ohne Meldung.</translation>
    </message>
    <message>
        <source>saying: %1</source>
        <translation>mit der Meldung: %1</translation>
    </message>
    <message>
        <source>Choose a source in the Source menu to start it again.</source>
        <translation>Wählen Sie im Menü Quelle eine Quelle, um sie neu zu starten.</translation>
    </message>
    <message>
        <source>The engine %1 could not be started: %2.</source>
        <translation>Der Messprozess %1 konnte nicht gestartet werden: %2.</translation>
    </message>
    <message>
        <source>Reinstall the package, or point WSA_ENGINE_PATH at the engine.</source>
        <translation>Installieren Sie das Paket neu oder lassen Sie WSA_ENGINE_PATH auf den Messprozess zeigen.</translation>
    </message>
    <message>
        <source>The engine has not connected within %1 s.</source>
        <translation>Der Messprozess hat sich nicht innerhalb von %1 s verbunden.</translation>
    </message>
    <message>
        <source>It was stopped; choose a source in the Source menu to try again.</source>
        <translation>Er wurde beendet; wählen Sie im Menü Quelle eine Quelle für einen neuen Versuch.</translation>
    </message>
    <message>
        <source>The engine has sent nothing for %1 s.</source>
        <translation>Der Messprozess hat seit %1 s nichts gesendet.</translation>
    </message>
    <message>
        <source>Choose the source again in the Source menu if it stays silent.</source>
        <translation>Wählen Sie die Quelle im Menü Quelle erneut, wenn sie stumm bleibt.</translation>
    </message>
    <message>
        <source>The engine sends only damaged data.</source>
        <translation>Der Messprozess sendet nur beschädigte Daten.</translation>
    </message>
    <message>
        <source>Check that WSA_ENGINE_PATH names this version&apos;s engine.</source>
        <translation>Prüfen Sie, ob WSA_ENGINE_PATH den Messprozess dieser Version nennt.</translation>
    </message>
    <message>
        <source>The engine&apos;s socket %1 cannot be made: %2.</source>
        <translation>Der Socket %1 des Messprozesses kann nicht angelegt werden: %2.</translation>
    </message>
    <message>
        <source>Check that the runtime directory is yours and writable.</source>
        <translation>Prüfen Sie, ob das Laufzeitverzeichnis Ihnen gehört und beschreibbar ist.</translation>
    </message>
    <message>
        <source>No private directory for the engine&apos;s socket could be made.</source>
        <translation>Für den Socket des Messprozesses konnte kein privates Verzeichnis angelegt werden.</translation>
    </message>
    <message>
        <source>Check that XDG_RUNTIME_DIR or the temporary directory is yours and writable.</source>
        <translation>Prüfen Sie, ob XDG_RUNTIME_DIR oder das temporäre Verzeichnis Ihnen gehört und beschreibbar ist.</translation>
    </message>
    <message>
        <source>Refused a connection from process %1, which is not this window&apos;s engine.</source>
        <translation>Verbindung von Prozess %1 abgelehnt: Er ist nicht der Messprozess dieses Fensters.</translation>
    </message>
    <message>
        <source>A recording covers only its own band, %1.</source>
        <translation>Eine Aufzeichnung umfasst nur ihr eigenes Band, %1.</translation>
    </message>
    <message>
        <source>Choose a live source to measure another band.</source>
        <translation>Wählen Sie eine Live-Quelle, um ein anderes Band zu messen.</translation>
    </message>
    <message>
        <source>Open another recording with Source &gt; Open recording (Ctrl+O).</source>
        <translation>Öffnen Sie eine andere Aufzeichnung mit Quelle &gt; Aufzeichnung öffnen (Strg+O).</translation>
    </message>
    <message>
        <source>Replay finished: %1.</source>
        <translation>Wiedergabe beendet: %1.</translation>
    </message>
    <message>
        <source>The HackRF cannot be used: %1.</source>
        <translation>Der HackRF kann nicht verwendet werden: %1.</translation>
    </message>
    <message>
        <source>The recording does not exist: %1.</source>
        <translation>Die Aufzeichnung existiert nicht: %1.</translation>
    </message>
    <message>
        <source>The recording cannot be read: %1.</source>
        <translation>Die Aufzeichnung kann nicht gelesen werden: %1.</translation>
    </message>
    <message>
        <source>Nothing to replay: %1.</source>
        <translation>Nichts wiederzugeben: %1.</translation>
    </message>
    <message>
        <source>The recording holds no sweep in the %1 band: %2.</source>
        <translation>Die Aufzeichnung enthält keinen Sweep im Band %1: %2.</translation>
    </message>
</context>
<context>
    <name>Report</name>
    <message>
        <source>No picture.</source>
        <translation>Kein Bild.</translation>
    </message>
    <message>
        <source>The views</source>
        <translation>Die Ansichten</translation>
    </message>
    <message>
        <source>No marker is on.</source>
        <translation>Kein Marker ist eingeschaltet.</translation>
    </message>
    <message>
        <source>Marker</source>
        <translation>Marker</translation>
    </message>
    <message>
        <source>Frequency MHz</source>
        <translation>Frequenz MHz</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>Kanal</translation>
    </message>
    <message>
        <source>Level dBm</source>
        <translation>Pegel dBm</translation>
    </message>
    <message>
        <source>Trace</source>
        <translation>Spur</translation>
    </message>
    <message>
        <source>No channel analysis yet.</source>
        <translation>Noch keine Kanalanalyse.</translation>
    </message>
    <message>
        <source>Centre MHz</source>
        <translation>Mitte MHz</translation>
    </message>
    <message>
        <source>Occupancy %</source>
        <translation>Belegung %</translation>
    </message>
    <message>
        <source>Mean dBm</source>
        <translation>Mittel dBm</translation>
    </message>
    <message>
        <source>Max dBm</source>
        <translation>Max. dBm</translation>
    </message>
    <message>
        <source>No emitter found.</source>
        <translation>Kein Sender oder Störer gefunden.</translation>
    </message>
    <message>
        <source>Wi-Fi spectrum report</source>
        <translation>WLAN-Spektrumbericht</translation>
    </message>
    <message>
        <source>Band</source>
        <translation>Band</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Sweeps analysed</source>
        <translation>Ausgewertete Sweeps</translation>
    </message>
    <message>
        <source>Noise floor dBm</source>
        <translation>Rauschpegel dBm</translation>
    </message>
    <message>
        <source>Markers</source>
        <translation>Marker</translation>
    </message>
    <message>
        <source>Channels, %1 MHz</source>
        <translation>Kanäle, %1 MHz</translation>
    </message>
    <message>
        <source>Emitters</source>
        <translation>Sender und Störer</translation>
    </message>
</context>
<context>
    <name>Sources</name>
    <message>
        <source>Simulated probe</source>
        <translation>Simulierter Messkopf</translation>
    </message>
    <message>
        <source>HackRF</source>
        <translation>HackRF</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Aufzeichnung</translation>
    </message>
    <message>
        <source>does not exist</source>
        <translation>existiert nicht</translation>
    </message>
    <message>
        <source>is not a regular file</source>
        <translation>ist keine reguläre Datei</translation>
    </message>
    <message>
        <source>cannot be read</source>
        <translation>kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>is empty</source>
        <translation>ist leer</translation>
    </message>
</context>
<context>
    <name>Trace</name>
    <message>
        <source>Current</source>
        <translation>Aktuell</translation>
    </message>
    <message>
        <source>Average</source>
        <translation>Mittelwert</translation>
    </message>
    <message>
        <source>Maximum</source>
        <translation>Maximum</translation>
    </message>
    <message>
        <source>Minimum</source>
        <translation>Minimum</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::Acquisition</name>
    <message>
        <source>&amp;Source</source>
        <translation>&amp;Quelle</translation>
    </message>
    <message>
        <source>Open &amp;recording...</source>
        <translation>&amp;Aufzeichnung öffnen...</translation>
    </message>
    <message>
        <source>&amp;Record</source>
        <translation>Au&amp;fzeichnen</translation>
    </message>
    <message>
        <source>Record every sweep shown into a new file</source>
        <translation>Jeden angezeigten Sweep in eine neue Datei aufzeichnen</translation>
    </message>
    <message>
        <source>Open &amp;handheld view</source>
        <translation>&amp;Handgeräteansicht öffnen</translation>
    </message>
    <message>
        <source>Open the recording&apos;s folder</source>
        <translation>Ordner der Aufzeichnung öffnen</translation>
    </message>
    <message>
        <source>Level offset: the source&apos;s own</source>
        <translation>Pegelversatz: Vorgabe der Quelle</translation>
    </message>
    <message>
        <source>Level offset: %1 dB</source>
        <translation>Pegelversatz: %1 dB</translation>
    </message>
    <message>
        <source>Set with WSA_LEVEL_OFFSET_DB</source>
        <translation>Einstellbar mit WSA_LEVEL_OFFSET_DB</translation>
    </message>
    <message>
        <source>Open recording</source>
        <translation>Aufzeichnung öffnen</translation>
    </message>
    <message>
        <source>Sweep recordings (*.csv);;All files (*)</source>
        <translation>Sweep-Aufzeichnungen (*.csv);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>The recording %1 %2.</source>
        <translation>Die Aufzeichnung %1 %2.</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>The handheld view could not be started.</source>
        <translation>Die Handgeräteansicht konnte nicht gestartet werden.</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::ChannelTableModel</name>
    <message>
        <source>The least occupied %1 MHz channel</source>
        <translation>Der am wenigsten belegte %1-MHz-Kanal</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>Kanal</translation>
    </message>
    <message>
        <source>Centre MHz</source>
        <translation>Mitte MHz</translation>
    </message>
    <message>
        <source>Occupancy</source>
        <translation>Belegung</translation>
    </message>
    <message>
        <source>Mean dBm</source>
        <translation>Mittel dBm</translation>
    </message>
    <message>
        <source>Max dBm</source>
        <translation>Max. dBm</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::ControlPanel</name>
    <message>
        <source>Display</source>
        <translation>Anzeige</translation>
    </message>
    <message>
        <source>All views</source>
        <translation>Alle Ansichten</translation>
    </message>
    <message>
        <source>Spectrum</source>
        <translation>Spektrum</translation>
    </message>
    <message>
        <source>Density</source>
        <translation>Dichte</translation>
    </message>
    <message>
        <source>Waterfall</source>
        <translation>Wasserfall</translation>
    </message>
    <message>
        <source>Views</source>
        <translation>Ansichten</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Freeze the picture; acquisition and recording go on</source>
        <translation>Bild anhalten; Erfassung und Aufzeichnung laufen weiter</translation>
    </message>
    <message>
        <source>Clear density</source>
        <translation>Dichte löschen</translation>
    </message>
    <message>
        <source>Traces</source>
        <translation>Spuren</translation>
    </message>
    <message>
        <source> sweeps</source>
        <translation> Sweeps</translation>
    </message>
    <message>
        <source>Averaging</source>
        <translation>Mittelung</translation>
    </message>
    <message>
        <source>Reset holds</source>
        <translation>Haltewerte zurücksetzen</translation>
    </message>
    <message>
        <source>Start average, maximum and minimum again</source>
        <translation>Mittelwert, Maximum und Minimum neu beginnen</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Skala</translation>
    </message>
    <message>
        <source> dBm</source>
        <translation> dBm</translation>
    </message>
    <message>
        <source>Top</source>
        <translation>Oben</translation>
    </message>
    <message>
        <source>Bottom</source>
        <translation>Unten</translation>
    </message>
    <message>
        <source>Wi-Fi channels</source>
        <translation>WLAN-Kanäle</translation>
    </message>
    <message>
        <source>Channel width</source>
        <translation>Kanalbreite</translation>
    </message>
    <message>
        <source>Markers</source>
        <translation>Marker</translation>
    </message>
    <message>
        <source>Marker %1</source>
        <translation>Marker %1</translation>
    </message>
    <message>
        <source>Active</source>
        <translation>Aktiv</translation>
    </message>
    <message>
        <source>On trace</source>
        <translation>Auf Spur</translation>
    </message>
    <message>
        <source>Follow the peak</source>
        <translation>Spitze folgen</translation>
    </message>
    <message>
        <source>Move the active marker to its trace&apos;s highest level with every sweep</source>
        <translation>Den aktiven Marker mit jedem Sweep auf den höchsten Pegel seiner Spur setzen</translation>
    </message>
    <message>
        <source>&lt; Peak</source>
        <translation>&lt; Spitze</translation>
    </message>
    <message>
        <source>Next peak left</source>
        <translation>Nächste Spitze links</translation>
    </message>
    <message>
        <source>Peak</source>
        <translation>Spitze</translation>
    </message>
    <message>
        <source>Highest level</source>
        <translation>Höchster Pegel</translation>
    </message>
    <message>
        <source>Peak &gt;</source>
        <translation>Spitze &gt;</translation>
    </message>
    <message>
        <source>Next peak right</source>
        <translation>Nächste Spitze rechts</translation>
    </message>
    <message>
        <source>Marker off</source>
        <translation>Marker aus</translation>
    </message>
    <message>
        <source>Switch the active marker off</source>
        <translation>Den aktiven Marker ausschalten</translation>
    </message>
    <message>
        <source>%1 MHz</source>
        <translation>%1 MHz</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::DensityView</name>
    <message>
        <source>% sweeps</source>
        <translation>% Sweeps</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::EmitterTableModel</name>
    <message>
        <source>%1 (ended)</source>
        <translation>%1 (beendet)</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Centre MHz</source>
        <translation>Mitte MHz</translation>
    </message>
    <message>
        <source>Width MHz</source>
        <translation>Breite MHz</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>Kanal</translation>
    </message>
    <message>
        <source>Duty</source>
        <translation>Tastgrad</translation>
    </message>
    <message>
        <source>Peak dBm</source>
        <translation>Spitzenpegel dBm</translation>
    </message>
    <message>
        <source>Confidence</source>
        <translation>Konfidenz</translation>
    </message>
    <message>
        <source>First seen s</source>
        <translation>Zuerst gesehen s</translation>
    </message>
    <message>
        <source>Last seen s</source>
        <translation>Zuletzt gesehen s</translation>
    </message>
    <message>
        <source>%1, confidence %2</source>
        <translation>%1, Konfidenz %2</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::EngineLink</name>
    <message>
        <source>no directory</source>
        <translation>kein Verzeichnis</translation>
    </message>
    <message>
        <source>it announced band %1, which is unknown</source>
        <translation>er meldete das unbekannte Band %1</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::InstrumentWindow</name>
    <message>
        <source>Wi-Fi Spectrum Analyzer</source>
        <translation>WLAN-Spektrumanalysator</translation>
    </message>
    <message>
        <source>Controls</source>
        <translation>Bedienung</translation>
    </message>
    <message>
        <source>Markers</source>
        <translation>Marker</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Kanäle</translation>
    </message>
    <message>
        <source>Emitters</source>
        <translation>Sender und Störer</translation>
    </message>
    <message>
        <source>Save &amp;report...</source>
        <translation>Be&amp;richt speichern...</translation>
    </message>
    <message>
        <source>%1 ch %2</source>
        <translation>%1 Kan. %2</translation>
    </message>
    <message>
        <source>Save report</source>
        <translation>Bericht speichern</translation>
    </message>
    <message>
        <source>HTML files (*.html)</source>
        <translation>HTML-Dateien (*.html)</translation>
    </message>
    <message>
        <source>Wi-Fi Spectrum Analyzer - %1</source>
        <translation>WLAN-Spektrumanalysator - %1</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Keys and mouse</source>
        <translation>&amp;Tasten und Maus</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tr&gt;&lt;td&gt;Click, drag&lt;/td&gt;&lt;td&gt;place the active marker, or pick up a marker&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;1 to 4&lt;/td&gt;&lt;td&gt;choose the active marker&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Left, Right&lt;/td&gt;&lt;td&gt;move it by one cell (Shift: ten)&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;P, Ctrl+Left, Ctrl+Right&lt;/td&gt;&lt;td&gt;highest peak, next peak left, right&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Delete&lt;/td&gt;&lt;td&gt;switch the active marker off&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Wheel on a view&lt;/td&gt;&lt;td&gt;zoom about the pointer (Shift: pan)&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Wheel on the level axis&lt;/td&gt;&lt;td&gt;shift the levels (Ctrl: zoom)&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Ctrl+0&lt;/td&gt;&lt;td&gt;whole band&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Space&lt;/td&gt;&lt;td&gt;pause the picture; acquisition goes on&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Ctrl+R&lt;/td&gt;&lt;td&gt;reset average, maximum and minimum&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Ctrl+1 to Ctrl+4&lt;/td&gt;&lt;td&gt;all views, spectrum, density, waterfall&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Ctrl+S, Ctrl+Shift+S&lt;/td&gt;&lt;td&gt;export the picture, the traces&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Ctrl+P&lt;/td&gt;&lt;td&gt;save a report: picture, markers, channels, emitters&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;F11, Ctrl+Q&lt;/td&gt;&lt;td&gt;full screen, quit&lt;/td&gt;&lt;/tr&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tr&gt;&lt;td&gt;Klicken, Ziehen&lt;/td&gt;&lt;td&gt;den aktiven Marker setzen oder einen Marker aufnehmen&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;1 bis 4&lt;/td&gt;&lt;td&gt;den aktiven Marker wählen&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Links, Rechts&lt;/td&gt;&lt;td&gt;ihn um eine Zelle verschieben (Umschalt: zehn)&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;P, Strg+Links, Strg+Rechts&lt;/td&gt;&lt;td&gt;höchste Spitze, nächste Spitze links, rechts&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Entf&lt;/td&gt;&lt;td&gt;den aktiven Marker ausschalten&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Mausrad über einer Ansicht&lt;/td&gt;&lt;td&gt;um den Mauszeiger zoomen (Umschalt: verschieben)&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Mausrad über der Pegelachse&lt;/td&gt;&lt;td&gt;die Pegel verschieben (Strg: zoomen)&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Strg+0&lt;/td&gt;&lt;td&gt;ganzes Band&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Leertaste&lt;/td&gt;&lt;td&gt;Bild anhalten; die Erfassung läuft weiter&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Strg+R&lt;/td&gt;&lt;td&gt;Mittelwert, Maximum und Minimum zurücksetzen&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Strg+1 bis Strg+4&lt;/td&gt;&lt;td&gt;alle Ansichten, Spektrum, Dichte, Wasserfall&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Strg+S, Strg+Umschalt+S&lt;/td&gt;&lt;td&gt;das Bild, die Spuren exportieren&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;Strg+P&lt;/td&gt;&lt;td&gt;einen Bericht speichern: Bild, Marker, Kanäle, Sender und Störer&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;F11, Strg+Q&lt;/td&gt;&lt;td&gt;Vollbild, beenden&lt;/td&gt;&lt;/tr&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Export &amp;picture...</source>
        <translation>Bil&amp;d exportieren...</translation>
    </message>
    <message>
        <source>Export &amp;traces (CSV)...</source>
        <translation>&amp;Spuren exportieren (CSV)...</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;All views</source>
        <translation>&amp;Alle Ansichten</translation>
    </message>
    <message>
        <source>&amp;Spectrum</source>
        <translation>&amp;Spektrum</translation>
    </message>
    <message>
        <source>&amp;Density</source>
        <translation>&amp;Dichte</translation>
    </message>
    <message>
        <source>&amp;Waterfall</source>
        <translation>&amp;Wasserfall</translation>
    </message>
    <message>
        <source>Zoom &amp;in</source>
        <translation>Ver&amp;größern</translation>
    </message>
    <message>
        <source>Zoom &amp;out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>Whole &amp;band</source>
        <translation>Ganzes &amp;Band</translation>
    </message>
    <message>
        <source>&amp;Full screen</source>
        <translation>&amp;Vollbild</translation>
    </message>
    <message>
        <source>&amp;Measure</source>
        <translation>&amp;Messen</translation>
    </message>
    <message>
        <source>&amp;Pause</source>
        <translation>&amp;Pause</translation>
    </message>
    <message>
        <source>Peak &amp;search</source>
        <translation>&amp;Spitzensuche</translation>
    </message>
    <message>
        <source>Next peak &amp;left</source>
        <translation>Nächste Spitze &amp;links</translation>
    </message>
    <message>
        <source>Next peak &amp;right</source>
        <translation>Nächste Spitze &amp;rechts</translation>
    </message>
    <message>
        <source>Marker &amp;off</source>
        <translation>Marker &amp;aus</translation>
    </message>
    <message>
        <source>Reset &amp;holds</source>
        <translation>&amp;Haltewerte zurücksetzen</translation>
    </message>
    <message>
        <source>&amp;Clear density</source>
        <translation>&amp;Dichte löschen</translation>
    </message>
    <message>
        <source>Paused: the picture is frozen, acquisition goes on</source>
        <translation>Pause: Das Bild steht, die Erfassung läuft weiter</translation>
    </message>
    <message>
        <source>%1: %2 cells of %3 kHz</source>
        <translation>%1: %2 Zellen zu %3 kHz</translation>
    </message>
    <message>
        <source>, %1 per second</source>
        <translation>, %1 pro Sekunde</translation>
    </message>
    <message>
        <source>1 sweep</source>
        <translation>1 Sweep</translation>
    </message>
    <message>
        <source>%1 sweeps</source>
        <translation>%1 Sweeps</translation>
    </message>
    <message>
        <source>Export picture</source>
        <translation>Bild exportieren</translation>
    </message>
    <message>
        <source>Export traces</source>
        <translation>Spuren exportieren</translation>
    </message>
    <message>
        <source>PNG pictures (*.png)</source>
        <translation>PNG-Bilder (*.png)</translation>
    </message>
    <message>
        <source>CSV files (*.csv)</source>
        <translation>CSV-Dateien (*.csv)</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::MarkerTable</name>
    <message>
        <source>Marker</source>
        <translation>Marker</translation>
    </message>
    <message>
        <source>Frequency (MHz)</source>
        <translation>Frequenz (MHz)</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>Kanal</translation>
    </message>
    <message>
        <source>Level (dBm)</source>
        <translation>Pegel (dBm)</translation>
    </message>
    <message>
        <source>Trace</source>
        <translation>Spur</translation>
    </message>
    <message>
        <source>Δ Frequency (MHz)</source>
        <translation>Δ Frequenz (MHz)</translation>
    </message>
    <message>
        <source>Δ Level (dB)</source>
        <translation>Δ Pegel (dB)</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::MessageBar</name>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::PlotView</name>
    <message>
        <source>%1 MHz</source>
        <translation>%1 MHz</translation>
    </message>
    <message>
        <source>%1, channel %2</source>
        <translation>%1, Kanal %2</translation>
    </message>
    <message>
        <source>Channel %1: %2 to %3 MHz</source>
        <translation>Kanal %1: %2 bis %3 MHz</translation>
    </message>
    <message>
        <source>%1, %2 dBm</source>
        <translation>%1, %2 dBm</translation>
    </message>
    <message>
        <source>Waiting for the first sweep</source>
        <translation>Warten auf den ersten Sweep</translation>
    </message>
    <message>
        <source>dBm</source>
        <translation>dBm</translation>
    </message>
    <message>
        <source>MHz</source>
        <translation>MHz</translation>
    </message>
    <message>
        <source>Ch</source>
        <translation>Kan.</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::ReplayBar</name>
    <message>
        <source>Replay</source>
        <translation>Wiedergabe</translation>
    </message>
    <message>
        <source>Pause replay</source>
        <translation>Wiedergabe anhalten</translation>
    </message>
    <message>
        <source>%1x</source>
        <translation>%1x</translation>
    </message>
    <message>
        <source>Replay speed</source>
        <translation>Wiedergabegeschwindigkeit</translation>
    </message>
    <message>
        <source>Position in the recording</source>
        <translation>Position in der Aufzeichnung</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Schleife</translation>
    </message>
    <message>
        <source>%1 / %2 s</source>
        <translation>%1 / %2 s</translation>
    </message>
</context>
<context>
    <name>wsa::desktop::WaterfallView</name>
    <message>
        <source>1 sweep ago</source>
        <translation>vor 1 Sweep</translation>
    </message>
    <message>
        <source>%1 sweeps ago</source>
        <translation>vor %1 Sweeps</translation>
    </message>
    <message>
        <source>%1, %2 (%3 s)</source>
        <translation>%1, %2 (%3 s)</translation>
    </message>
    <message>
        <source>sweeps</source>
        <translation>Sweeps</translation>
    </message>
    <message>
        <source>dBm</source>
        <translation>dBm</translation>
    </message>
</context>
</TS>
