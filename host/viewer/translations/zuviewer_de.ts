<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>ChainEditor</name>
    <message>
        <source>The selected block is no longer in a chain.</source>
        <translation>Der ausgewählte Block gehört zu keiner Kette mehr.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot work on the output of &quot;%2&quot;, or the blocks after it cannot process its output.</source>
        <translation>„%1“ kann die Ausgabe von „%2“ nicht verarbeiten, oder die folgenden Blöcke können seine Ausgabe nicht verarbeiten.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no processing block.</source>
        <translation>„%1“ ist kein Verarbeitungsblock.</translation>
    </message>
    <message>
        <source>A source cannot be taken out of its chain; close the chain&apos;s views instead.</source>
        <translation>Eine Quelle lässt sich nicht aus ihrer Kette nehmen; schließen Sie stattdessen die Ansichten der Kette.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be removed: the blocks after it cannot work without it.</source>
        <translation>„%1“ lässt sich nicht entfernen: Die Blöcke dahinter können ohne ihn nicht arbeiten.</translation>
    </message>
</context>
<context>
    <name>ChainFile</name>
    <message>
        <source>%1: this is no chain file.</source>
        <translation>%1: Das ist keine Kettendatei.</translation>
    </message>
    <message>
        <source>%1: this chain file was written by a newer version of the program.</source>
        <translation>%1: Diese Kettendatei stammt von einer neueren Version des Programms.</translation>
    </message>
    <message>
        <source>%1: the chain cannot be described.</source>
        <translation>%1: Die Kette lässt sich nicht beschreiben.</translation>
    </message>
    <message>
        <source>no new chain can be made</source>
        <translation>es kann keine neue Kette angelegt werden</translation>
    </message>
    <message>
        <source>%1: the chain has %2 ends; the first %3 of them are shown.</source>
        <translation>%1: Die Kette hat %2 Enden; die ersten %3 davon werden gezeigt.</translation>
    </message>
</context>
<context>
    <name>CkBlockDialogs</name>
    <message>
        <source>Help: %1</source>
        <translation>Hilfe: %1</translation>
    </message>
</context>
<context>
    <name>CkCameraController</name>
    <message>
        <source>Camera &quot;%1&quot; cannot be opened: %2</source>
        <translation>Die Kamera „%1“ lässt sich nicht öffnen: %2</translation>
    </message>
    <message>
        <source>No new processing chain can be made.</source>
        <translation>Es kann keine neue Verarbeitungskette angelegt werden.</translation>
    </message>
    <message>
        <source>The camera cannot be put into a processing chain.</source>
        <translation>Die Kamera kann nicht in eine Verarbeitungskette eingefügt werden.</translation>
    </message>
    <message>
        <source>There is no such camera.</source>
        <translation>Diese Kamera gibt es nicht.</translation>
    </message>
    <message>
        <source>The camera cannot be started: %1</source>
        <translation>Die Kamera lässt sich nicht starten: %1</translation>
    </message>
    <message>
        <source>Camera &quot;%1&quot; was lost. Its views wait for it.</source>
        <translation>Kamera „%1“ ist nicht mehr da. Ihre Ansichten warten auf sie.</translation>
    </message>
    <message>
        <source>Camera &quot;%1&quot; is back.</source>
        <translation>Kamera „%1“ ist wieder da.</translation>
    </message>
    <message>
        <source>Camera &quot;%1&quot; does not go on: %2</source>
        <translation>Die Kamera „%1“ läuft nicht weiter: %2</translation>
    </message>
</context>
<context>
    <name>CkCameraManager</name>
    <message>
        <source>There is no camera &quot;%1&quot;.</source>
        <translation>Es gibt keine Kamera „%1“.</translation>
    </message>
    <message>
        <source>Camera &quot;%1&quot; cannot be opened.</source>
        <translation>Die Kamera „%1“ lässt sich nicht öffnen.</translation>
    </message>
    <message>
        <source>The camera is not open.</source>
        <translation>Die Kamera ist nicht geöffnet.</translation>
    </message>
    <message>
        <source>The camera cannot be started.</source>
        <translation>Die Kamera lässt sich nicht starten.</translation>
    </message>
    <message>
        <source>Camera &quot;%1&quot; is unplugged.</source>
        <translation>Kamera „%1“ ist abgezogen.</translation>
    </message>
    <message>
        <source>Camera &quot;%1&quot; is not unplugged.</source>
        <translation>Kamera „%1“ ist nicht abgezogen.</translation>
    </message>
</context>
<context>
    <name>CkCameraMenu</name>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>&amp;Start</source>
        <translation>&amp;Starten</translation>
    </message>
    <message>
        <source>&amp;Pause</source>
        <translation>&amp;Pausieren</translation>
    </message>
    <message>
        <source>S&amp;ingle Step</source>
        <translation>&amp;Einzelbild</translation>
    </message>
    <message>
        <source>&amp;New Picture View</source>
        <translation>&amp;Neue Bildansicht</translation>
    </message>
    <message>
        <source>&amp;Unplug</source>
        <translation>Ab&amp;ziehen</translation>
    </message>
    <message>
        <source>There is no current camera: open one, or activate one of its views</source>
        <translation>Es ist keine Kamera ausgewählt: Öffnen Sie eine, oder aktivieren Sie eine ihrer Ansichten</translation>
    </message>
    <message>
        <source>The camera is stopped</source>
        <translation>Die Kamera ist gestoppt</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Stoppen</translation>
    </message>
    <message>
        <source>Hold the camera without stopping it</source>
        <translation>Die Kamera pausieren, ohne sie zu stoppen</translation>
    </message>
    <message>
        <source>Take one set of pictures and hold</source>
        <translation>Einen Satz Bilder aufnehmen und pausieren</translation>
    </message>
    <message>
        <source>Another view of the current camera</source>
        <translation>Eine weitere Ansicht der ausgewählten Kamera</translation>
    </message>
    <message>
        <source>No camera is plugged in</source>
        <translation>Keine Kamera angeschlossen</translation>
    </message>
    <message>
        <source>Close &amp;Current</source>
        <translation>Ausgewählte Kamera schl&amp;ießen</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>&amp;Reopen at Start</source>
        <translation>Beim Start &amp;wieder öffnen</translation>
    </message>
    <message>
        <source>Close the current camera with its views</source>
        <translation>Die ausgewählte Kamera mit ihren Ansichten schließen</translation>
    </message>
    <message>
        <source>Plug in a camera; it appears here by itself</source>
        <translation>Schließen Sie eine Kamera an; sie erscheint hier von selbst</translation>
    </message>
    <message>
        <source>No camera is open</source>
        <translation>Es ist keine Kamera geöffnet</translation>
    </message>
    <message>
        <source>Open the cameras, recordings and views of this session again when the viewer is started</source>
        <translation>Die Kameras, Aufnahmen und Ansichten dieser Sitzung beim nächsten Start wieder öffnen</translation>
    </message>
    <message>
        <source>Plu&amp;g In</source>
        <translation>&amp;Anstecken</translation>
    </message>
    <message>
        <source>The camera is unplugged</source>
        <translation>Die Kamera ist abgezogen</translation>
    </message>
    <message>
        <source>Stop &quot;%1&quot;</source>
        <translation>„%1“ stoppen</translation>
    </message>
    <message>
        <source>Start &quot;%1&quot;</source>
        <translation>„%1“ starten</translation>
    </message>
    <message>
        <source>Close a camera with its views</source>
        <translation>Eine Kamera mit ihren Ansichten schließen</translation>
    </message>
    <message>
        <source>As if its cable had been pulled: its views keep their pictures and wait</source>
        <translation>Als wäre ihr Kabel gezogen worden: Ihre Ansichten behalten ihre Bilder und warten</translation>
    </message>
    <message>
        <source>Reconnect an unplugged camera</source>
        <translation>Eine abgezogene Kamera wieder anstecken</translation>
    </message>
    <message>
        <source>No camera is unplugged</source>
        <translation>Keine Kamera ist abgezogen</translation>
    </message>
</context>
<context>
    <name>CkCameraPanel</name>
    <message>
        <source>Model %1, serial number %2
Identifier %3</source>
        <translation>Modell %1, Seriennummer %2
Kennung %3</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pausieren</translation>
    </message>
    <message>
        <source>Step</source>
        <translation>Einzelbild</translation>
    </message>
    <message>
        <source>New View</source>
        <translation>Neue Ansicht</translation>
    </message>
    <message>
        <source>Open another picture view with a chain of its own on this camera</source>
        <translation>Eine weitere Bildansicht mit eigener Kette für diese Kamera öffnen</translation>
    </message>
    <message>
        <source>The camera refused the value for &quot;%1&quot;.</source>
        <translation>Die Kamera hat den Wert für „%1“ abgelehnt.</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Starten</translation>
    </message>
    <message>
        <source>Stop the camera and its chains (F5)</source>
        <translation>Die Kamera und ihre Ketten stoppen (F5)</translation>
    </message>
    <message>
        <source>Start the camera and its chains (F5)</source>
        <translation>Die Kamera und ihre Ketten starten (F5)</translation>
    </message>
    <message>
        <source>The camera is stopped</source>
        <translation>Die Kamera ist gestoppt</translation>
    </message>
    <message>
        <source>Hold the camera without stopping it (F6)</source>
        <translation>Die Kamera pausieren, ohne sie zu stoppen (F6)</translation>
    </message>
    <message>
        <source>Take one set of pictures and hold (F7)</source>
        <translation>Einen Satz Bilder aufnehmen und pausieren (F7)</translation>
    </message>
    <message>
        <source>&lt;span style=&apos;color:#b07000&apos;&gt;paused&lt;/span&gt;</source>
        <translation>&lt;span style=&apos;color:#b07000&apos;&gt;pausiert&lt;/span&gt;</translation>
    </message>
    <message>
        <source>&lt;span style=&apos;color:#2e8b3d&apos;&gt;running&lt;/span&gt;</source>
        <translation>&lt;span style=&apos;color:#2e8b3d&apos;&gt;läuft&lt;/span&gt;</translation>
    </message>
    <message>
        <source>&lt;span style=&apos;color:#777777&apos;&gt;stopped&lt;/span&gt;</source>
        <translation>&lt;span style=&apos;color:#777777&apos;&gt;gestoppt&lt;/span&gt;</translation>
    </message>
    <message>
        <source>The camera is unplugged</source>
        <translation>Die Kamera ist abgezogen</translation>
    </message>
    <message>
        <source>&lt;span style=&apos;color:#b02020&apos;&gt;unplugged&lt;/span&gt;</source>
        <translation>&lt;span style=&apos;color:#b02020&apos;&gt;abgezogen&lt;/span&gt;</translation>
    </message>
</context>
<context>
    <name>CkCameraSource</name>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
</context>
<context>
    <name>CkChain</name>
    <message>
        <source>The output of the block has no pixels.</source>
        <translation>Die Ausgabe des Blocks hat keine Pixel.</translation>
    </message>
    <message>
        <source>There is not enough memory for the pictures of the block.</source>
        <translation>Der Speicher reicht für die Bilder des Blocks nicht aus.</translation>
    </message>
    <message>
        <source>The block cannot be set up: %1</source>
        <translation>Der Block kann nicht eingerichtet werden: %1</translation>
    </message>
    <message>
        <source>The block cannot be set up.</source>
        <translation>Der Block kann nicht eingerichtet werden.</translation>
    </message>
    <message>
        <source>The block failed while it was stopped.</source>
        <translation>Der Block ist beim Stoppen gescheitert.</translation>
    </message>
    <message>
        <source>The block failed on a frame.</source>
        <translation>Der Block ist an einem Bild gescheitert.</translation>
    </message>
    <message>
        <source>The block cannot work on the format of its input.</source>
        <translation>Der Block kann das Format seiner Eingabe nicht verarbeiten.</translation>
    </message>
    <message>
        <source>Element &quot;%1&quot;</source>
        <translation>Element „%1“</translation>
    </message>
    <message>
        <source> number %1</source>
        <translation> Nummer %1</translation>
    </message>
    <message>
        <source> in line %1</source>
        <translation> in Zeile %1</translation>
    </message>
    <message>
        <source>this is no chain.</source>
        <translation>das ist keine Kette.</translation>
    </message>
    <message>
        <source>version &quot;%1&quot; is not known.</source>
        <translation>Version „%1“ ist nicht bekannt.</translation>
    </message>
    <message>
        <source>only blocks are known here.</source>
        <translation>hier sind nur Blöcke bekannt.</translation>
    </message>
    <message>
        <source>the chain has more than %1 blocks.</source>
        <translation>die Kette hat mehr als %1 Blöcke.</translation>
    </message>
    <message>
        <source>identifier &quot;%1&quot; is empty, in use or not one word.</source>
        <translation>die Kennung „%1“ ist leer, vergeben oder nicht ein einziges Wort.</translation>
    </message>
    <message>
        <source>class &quot;%1&quot; is no block of a chain.</source>
        <translation>die Klasse „%1“ ist kein Block einer Kette.</translation>
    </message>
    <message>
        <source>the settings of class &quot;%1&quot; cannot be read.</source>
        <translation>die Einstellungen der Klasse „%1“ sind nicht lesbar.</translation>
    </message>
    <message>
        <source>there is no block &quot;%1&quot; before it.</source>
        <translation>davor steht kein Block „%1“.</translation>
    </message>
    <message>
        <source>it does not accept the data of block &quot;%1&quot;.</source>
        <translation>er nimmt die Daten von Block „%1“ nicht an.</translation>
    </message>
    <message>
        <source>it is no source and has no predecessor.</source>
        <translation>er ist keine Quelle und hat keinen Vorgänger.</translation>
    </message>
    <message>
        <source>The chain runs; stop it first.</source>
        <translation>Die Kette läuft; stoppen Sie sie zuerst.</translation>
    </message>
    <message>
        <source>The output of the block does not fit the pictures made for it.</source>
        <translation>Das Ergebnis des Blocks passt nicht in die Bilder, die für ihn angelegt sind.</translation>
    </message>
    <message>
        <source>Frames come in another format time and again; while the chain is set up anew for one, others are dropped.</source>
        <translation>Immer wieder kommen Bilder in einem anderen Format; während die Kette für eines neu eingerichtet wird, entfallen andere.</translation>
    </message>
    <message>
        <source>loading was called off.</source>
        <translation>das Laden wurde abgebrochen.</translation>
    </message>
    <message>
        <source>the chain has more than %1 sources.</source>
        <translation>die Kette hat mehr als %1 Quellen.</translation>
    </message>
    <message>
        <source>it names block &quot;%1&quot; twice.</source>
        <translation>er nennt den Block „%1“ zweimal.</translation>
    </message>
</context>
<context>
    <name>CkChainFileController</name>
    <message>
        <source>%1: the chain is empty.</source>
        <translation>%1: Die Kette ist leer.</translation>
    </message>
    <message>
        <source>The active view shows no chain.</source>
        <translation>Die aktive Ansicht zeigt keine Kette.</translation>
    </message>
    <message>
        <source>Chain files</source>
        <translation>Kettendateien</translation>
    </message>
</context>
<context>
    <name>CkChainLoader</name>
    <message>
        <source>Opening &quot;%1&quot;: block %2 of %3</source>
        <translation>„%1“ wird geöffnet: Block %2 von %3</translation>
    </message>
    <message>
        <source>Opening &quot;%1&quot;: frame %2 of a recording</source>
        <translation>„%1“ wird geöffnet: Bild %2 einer Aufnahme</translation>
    </message>
    <message>
        <source>Open Chain</source>
        <translation>Kette öffnen</translation>
    </message>
</context>
<context>
    <name>CkChainPanel</name>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Configure...</source>
        <translation>Einstellen...</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Save...</source>
        <translation>Speichern...</translation>
    </message>
    <message>
        <source>Open...</source>
        <translation>Öffnen...</translation>
    </message>
    <message>
        <source>Open a chain file with views on its ends (Ctrl+O)</source>
        <translation>Eine Kettendatei mit Ansichten an ihren Enden öffnen (Strg+O)</translation>
    </message>
    <message>
        <source>The active view shows no chain</source>
        <translation>Die aktive Ansicht zeigt keine Kette</translation>
    </message>
    <message>
        <source>No view is active</source>
        <translation>Es ist keine Ansicht aktiv</translation>
    </message>
    <message>
        <source>Select a block first</source>
        <translation>Wählen Sie zuerst einen Block aus</translation>
    </message>
    <message>
        <source>Add a block after the selected one</source>
        <translation>Einen Block nach dem ausgewählten einfügen</translation>
    </message>
    <message>
        <source>Open the settings of the selected block</source>
        <translation>Die Einstellungen des ausgewählten Blocks öffnen</translation>
    </message>
    <message>
        <source>On</source>
        <translation>Ein</translation>
    </message>
    <message>
        <source>A source is started and stopped with its camera</source>
        <translation>Eine Quelle wird mit ihrer Kamera gestartet und angehalten</translation>
    </message>
    <message>
        <source>Switch the block on again</source>
        <translation>Den Block wieder einschalten</translation>
    </message>
    <message>
        <source>Switch the block off: it then delivers nothing</source>
        <translation>Den Block ausschalten: Er liefert dann nichts</translation>
    </message>
    <message>
        <source>A source stays as long as its chain</source>
        <translation>Eine Quelle bleibt so lange wie ihre Kette</translation>
    </message>
    <message>
        <source>Take the block out of the chain</source>
        <translation>Den Block aus der Kette nehmen</translation>
    </message>
    <message>
        <source>Explain the selected block</source>
        <translation>Den ausgewählten Block erklären</translation>
    </message>
    <message>
        <source>This block has no help</source>
        <translation>Dieser Block hat keine Hilfe</translation>
    </message>
    <message>
        <source>Save the chain to a file (Ctrl+S)</source>
        <translation>Die Kette in eine Datei speichern (Strg+S)</translation>
    </message>
    <message>
        <source>As a branch with its own view</source>
        <translation>Als Abzweig mit eigener Ansicht</translation>
    </message>
    <message>
        <source>No plug-in offers a block</source>
        <translation>Kein Plug-in bietet einen Block an</translation>
    </message>
    <message>
        <source>&quot;%1&quot; has nothing to configure.</source>
        <translation>An „%1“ gibt es nichts einzustellen.</translation>
    </message>
    <message>
        <source>Processing Chain</source>
        <translation>Verarbeitungskette</translation>
    </message>
    <message>
        <source>&amp;Add Block</source>
        <translation>Block &amp;hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Configure Block...</source>
        <translation>Block &amp;einstellen...</translation>
    </message>
    <message>
        <source>Switch Block &amp;Off</source>
        <translation>Block &amp;ausschalten</translation>
    </message>
    <message>
        <source>&amp;Remove Block</source>
        <translation>Block ent&amp;fernen</translation>
    </message>
    <message>
        <source>&amp;Help for Block</source>
        <translation>Hi&amp;lfe zum Block</translation>
    </message>
    <message>
        <source>Switch Block &amp;On</source>
        <translation>Block &amp;einschalten</translation>
    </message>
    <message>
        <source>Blocks are provided by plug-ins, and none is loaded</source>
        <translation>Blöcke werden von Plug-ins bereitgestellt, und keines ist geladen</translation>
    </message>
</context>
<context>
    <name>CkChainTree</name>
    <message>
        <source>Block</source>
        <translation>Block</translation>
    </message>
    <message>
        <source>Frames</source>
        <translation>Bilder</translation>
    </message>
    <message>
        <source>Dropped</source>
        <translation>Verloren</translation>
    </message>
    <message>
        <source>ms</source>
        <translation>ms</translation>
    </message>
    <message>
        <source>Frames that left the block since the chain was started</source>
        <translation>Bilder, die den Block seit dem Start der Kette verlassen haben</translation>
    </message>
    <message>
        <source>Frames that were lost at the block since the chain was started</source>
        <translation>Bilder, die am Block seit dem Start der Kette verloren gingen</translation>
    </message>
    <message>
        <source>Mean time the block took for a frame, in milliseconds</source>
        <translation>Mittlere Zeit des Blocks für ein Bild, in Millisekunden</translation>
    </message>
    <message>
        <source>off</source>
        <translation>aus</translation>
    </message>
    <message>
        <source>error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>runs</source>
        <translation>läuft</translation>
    </message>
    <message>
        <source>stopped</source>
        <translation>gestoppt</translation>
    </message>
    <message>
        <source>%1 (off)</source>
        <translation>%1 (aus)</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>The active view shows this block.</source>
        <translation>Die aktive Ansicht zeigt diesen Block.</translation>
    </message>
</context>
<context>
    <name>CkCommandLine</name>
    <message>
        <source>Shows the pictures of industrial cameras, processes them in chains of blocks and, with the
time-of-flight plug-in, turns them into live point clouds.</source>
        <translation>Zeigt die Bilder von Industriekameras, verarbeitet sie in Ketten von Blöcken und macht daraus mit
dem Time-of-Flight-Plug-in bewegte Punktwolken.</translation>
    </message>
    <message>
        <source>Shows this help and exits.</source>
        <translation>Zeigt diese Hilfe und beendet sich.</translation>
    </message>
    <message>
        <source>Shows the version and exits.</source>
        <translation>Zeigt die Version und beendet sich.</translation>
    </message>
    <message>
        <source>Opens camera &lt;N&gt; at start and starts it: its number (from 0, see --list-cameras) or its identifier. May be given several times.</source>
        <translation>Öffnet beim Start die Kamera &lt;N&gt; und startet sie: ihre Nummer (ab 0, siehe --list-cameras) oder ihre Kennung. Darf mehrmals angegeben werden.</translation>
    </message>
    <message>
        <source>Prints the cameras with their numbers and exits.</source>
        <translation>Gibt die Kameras mit ihren Nummern aus und beendet sich.</translation>
    </message>
    <message>
        <source>Opens the 3D view of the first camera beside its picture.</source>
        <translation>Öffnet die 3D-Ansicht der ersten Kamera neben ihrem Bild.</translation>
    </message>
    <message>
        <source>Loads plug-ins from this folder, or this one library, too. May be given several times.</source>
        <translation>Lädt zusätzlich Plug-ins aus diesem Ordner oder diese eine Bibliothek. Darf mehrmals angegeben werden.</translation>
    </message>
    <message>
        <source>Opens a chain file. May be given several times.</source>
        <translation>Öffnet eine Kettendatei. Darf mehrmals angegeben werden.</translation>
    </message>
    <message>
        <source>Exits with code 0 after &lt;N&gt; frames have been shown and the requested files have been written.</source>
        <translation>Beendet sich mit Code 0, nachdem &lt;N&gt; Bilder gezeigt und die verlangten Dateien geschrieben wurden.</translation>
    </message>
    <message>
        <source>With --frames: writes a picture of the window.</source>
        <translation>Mit --frames: schreibt ein Bild des Fensters.</translation>
    </message>
    <message>
        <source>With --frames: writes a picture of the 3D scene; implies --3d.</source>
        <translation>Mit --frames: schreibt ein Bild der 3D-Szene; schließt --3d ein.</translation>
    </message>
    <message>
        <source>With --frames: writes the point cloud as PLY; implies --3d.</source>
        <translation>Mit --frames: schreibt die Punktwolke als PLY; schließt --3d ein.</translation>
    </message>
    <message>
        <source>Keeps the settings in this INI file instead of the user&apos;s own.</source>
        <translation>Speichert die Einstellungen in dieser INI-Datei statt in der des Benutzers.</translation>
    </message>
    <message>
        <source>Size of the window, for example 1600x1000.</source>
        <translation>Größe des Fensters, zum Beispiel 1600x1000.</translation>
    </message>
    <message>
        <source>Clicks the menu entry or button of this object name once the first frame was shown, for scripts. May be given several times.</source>
        <translation>Klickt den Menüeintrag oder Knopf mit diesem Objektnamen an, sobald das erste Bild gezeigt wurde, für Skripte. Darf mehrmals angegeben werden.</translation>
    </message>
    <message>
        <source>--frames takes a number from 1 to %1, not &quot;%2&quot;.</source>
        <translation>--frames erwartet eine Zahl von 1 bis %1, nicht „%2“.</translation>
    </message>
    <message>
        <source>--screenshot, --screenshot-3d and --export-ply need --frames.</source>
        <translation>--screenshot, --screenshot-3d und --export-ply brauchen --frames.</translation>
    </message>
    <message>
        <source>--size takes width and height, for example 1600x1000, not &quot;%1&quot;.</source>
        <translation>--size erwartet Breite und Höhe, zum Beispiel 1600x1000, nicht „%1“.</translation>
    </message>
    <message>
        <source>--language takes %1, not &quot;%2&quot;.</source>
        <translation>--language erwartet %1, nicht „%2“.</translation>
    </message>
    <message>
        <source> or </source>
        <translation> oder </translation>
    </message>
    <message>
        <source>Language of the texts: en or de. By default the user&apos;s own.</source>
        <translation>Sprache der Texte: en oder de. Sonst die des Benutzers.</translation>
    </message>
    <message>
        <source>Starts without the cameras, the views and the layout of the last session.</source>
        <translation>Startet ohne die Kameras, die Ansichten und die Anordnung der letzten Sitzung.</translation>
    </message>
    <message>
        <source>Recordings, pictures and chain files to open.</source>
        <translation>Aufnahmen, Bilder und Kettendateien, die geöffnet werden.</translation>
    </message>
    <message>
        <source>--3d needs --camera, --chain or a file.</source>
        <translation>--3d braucht --camera, --chain oder eine Datei.</translation>
    </message>
    <message>
        <source>Tries every plug-in in a process of its own again, also those left out before.</source>
        <translation>Probiert jedes Plug-in wieder in einem eigenen Prozess aus, auch bisher ausgelassene.</translation>
    </message>
</context>
<context>
    <name>CkDepthImportDialog</name>
    <message>
        <source>Import Picture</source>
        <translation>Bild importieren</translation>
    </message>
    <message>
        <source>The file does not say what its samples mean.</source>
        <translation>Die Datei sagt nicht, was ihre Werte bedeuten.</translation>
    </message>
    <message>
        <source>&amp;Depths</source>
        <translation>&amp;Tiefen</translation>
    </message>
    <message>
        <source>A grey &amp;picture, samples as they are</source>
        <translation>Ein &amp;Graubild, Werte wie sie sind</translation>
    </message>
    <message>
        <source>Millimetres</source>
        <translation>Millimeter</translation>
    </message>
    <message>
        <source>Tenths of a millimetre</source>
        <translation>Zehntelmillimeter</translation>
    </message>
    <message>
        <source>Centimetres</source>
        <translation>Zentimeter</translation>
    </message>
    <message>
        <source>Metres</source>
        <translation>Meter</translation>
    </message>
    <message>
        <source>1/256 metre</source>
        <translation>1/256 Meter</translation>
    </message>
    <message>
        <source>1/5000 metre</source>
        <translation>1/5000 Meter</translation>
    </message>
    <message>
        <source>Another scale</source>
        <translation>Anderer Maßstab</translation>
    </message>
    <message>
        <source>&amp;Unit of a count:</source>
        <translation>&amp;Einheit pro Count:</translation>
    </message>
    <message>
        <source> mm</source>
        <translation> mm</translation>
    </message>
    <message>
        <source>A count of &amp;1 is:</source>
        <translation>Ein Count (&amp;1) entspricht:</translation>
    </message>
    <message>
        <source>&amp;0 means that nothing was measured</source>
        <translation>&amp;0 bedeutet, dass nichts gemessen wurde</translation>
    </message>
    <message>
        <source>Such pixels become &quot;not a number&quot; and make no points in 3D views</source>
        <translation>Solche Pixel werden zu „keine Zahl“ und ergeben keine Punkte in 3D-Ansichten</translation>
    </message>
    <message>
        <source>This picture then has:</source>
        <translation>Dieses Bild hat dann:</translation>
    </message>
    <message>
        <source>Choose &quot;Another scale&quot; to type one</source>
        <translation>„Anderer Maßstab“ wählen, um einen einzugeben</translation>
    </message>
    <message>
        <source>no value but 0</source>
        <translation>keinen Wert außer 0</translation>
    </message>
    <message>
        <source>%1 m to %2 m</source>
        <translation>%1 m bis %2 m</translation>
    </message>
</context>
<context>
    <name>CkExportToolButton</name>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Copy to clipboard</source>
        <translation>In die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>Save to file...</source>
        <translation>In Datei speichern...</translation>
    </message>
    <message>
        <source>The file &quot;%1&quot; could not be written.
%2</source>
        <translation>Die Datei „%1“ konnte nicht geschrieben werden.
%2</translation>
    </message>
</context>
<context>
    <name>CkFileMenu</name>
    <message>
        <source>&amp;Open Chain...</source>
        <translation>Kette ö&amp;ffnen...</translation>
    </message>
    <message>
        <source>Open R&amp;ecording...</source>
        <translation>&amp;Aufnahme öffnen...</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>&amp;Save Chain...</source>
        <translation>Kette &amp;speichern...</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Open Chain</source>
        <translation>Kette öffnen</translation>
    </message>
    <message>
        <source>Chain files (*.zuchain);;All files (*)</source>
        <translation>Kettendateien (*.zuchain);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Open Recording</source>
        <translation>Aufnahme öffnen</translation>
    </message>
    <message>
        <source>No file was opened yet</source>
        <translation>Es wurde noch keine Datei geöffnet</translation>
    </message>
    <message>
        <source>Files opened or saved last</source>
        <translation>Zuletzt geöffnete oder gespeicherte Dateien</translation>
    </message>
    <message>
        <source>Save Chain</source>
        <translation>Kette speichern</translation>
    </message>
    <message>
        <source>Chain files (*.zuchain)</source>
        <translation>Kettendateien (*.zuchain)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>The chain has been closed in the meantime.</source>
        <translation>Die Kette wurde inzwischen geschlossen.</translation>
    </message>
    <message>
        <source>Save the active view&apos;s chain</source>
        <translation>Die Kette der aktiven Ansicht speichern</translation>
    </message>
    <message>
        <source>The active view shows no chain</source>
        <translation>Die aktive Ansicht zeigt keine Kette</translation>
    </message>
</context>
<context>
    <name>CkFileOpener</name>
    <message>
        <source>&quot;%1&quot; is a folder; open the files in it.</source>
        <translation>„%1“ ist ein Ordner; öffnen Sie die Dateien darin.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no ordinary file.</source>
        <translation>„%1“ ist keine gewöhnliche Datei.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be read: %2.</source>
        <translation>„%1“ kann nicht gelesen werden: %2.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is of no kind that can be opened here (%2).</source>
        <translation>„%1“ ist keine Datei, die hier geöffnet werden kann (%2).</translation>
    </message>
    <message>
        <source>Everything that can be opened (%1)</source>
        <translation>Alles, was geöffnet werden kann (%1)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
</context>
<context>
    <name>CkHelpMenu</name>
    <message>
        <source>&amp;Keyboard and Mouse</source>
        <translation>&amp;Tastatur und Maus</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>&amp;Über</translation>
    </message>
    <message>
        <source>&lt;p&gt;Viewer for industrial cameras.&lt;/p&gt;&lt;p&gt;&lt;b&gt;Plug-ins&lt;/b&gt;&lt;/p&gt;</source>
        <translation>&lt;p&gt;Betrachter für Industriekameras.&lt;/p&gt;&lt;p&gt;&lt;b&gt;Plug-ins&lt;/b&gt;&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&lt;p&gt;none&lt;/p&gt;</source>
        <translation>&lt;p&gt;keine&lt;/p&gt;</translation>
    </message>
    <message>
        <source>About zuviewer</source>
        <translation>Über zuviewer</translation>
    </message>
</context>
<context>
    <name>CkHistogramWidget</name>
    <message>
        <source>no picture</source>
        <translation>kein Bild</translation>
    </message>
    <message>
        <source>Histogram of the active view</source>
        <translation>Histogramm der aktiven Ansicht</translation>
    </message>
    <message>
        <source>Histogram of the active view; at the mouse: %1</source>
        <translation>Histogramm der aktiven Ansicht; am Mauszeiger: %1</translation>
    </message>
</context>
<context>
    <name>CkImageView</name>
    <message>
        <source>No picture yet. Start the camera to see one.</source>
        <translation>Noch kein Bild. Starten Sie die Kamera, um eines zu sehen.</translation>
    </message>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Pictures of this format cannot be shown:
%1</source>
        <translation>Bilder dieses Formats können nicht gezeigt werden:
%1</translation>
    </message>
    <message>
        <source>Save Picture...</source>
        <translation>Bild speichern...</translation>
    </message>
</context>
<context>
    <name>CkLogModel</name>
    <message>
        <source>Debug</source>
        <translation>Debug</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>Info</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Stufe</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Meldung</translation>
    </message>
</context>
<context>
    <name>CkLogPanel</name>
    <message>
        <source>Copy log lines</source>
        <translation>Meldungen kopieren</translation>
    </message>
    <message>
        <source>Everything</source>
        <translation>Alles</translation>
    </message>
    <message>
        <source>Errors</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>%1 and above</source>
        <translation>Ab %1</translation>
    </message>
    <message>
        <source>Least important messages that are shown</source>
        <translation>Ab welcher Stufe Meldungen gezeigt werden</translation>
    </message>
    <message>
        <source>Search (Ctrl+F)</source>
        <translation>Suchen (Strg+F)</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
</context>
<context>
    <name>CkLutPanel</name>
    <message>
        <source>Colours</source>
        <translation>Farben</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automatisch</translation>
    </message>
    <message>
        <source>Mark saturated</source>
        <translation>Sättigung markieren</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>Kontrast</translation>
    </message>
    <message>
        <source>to</source>
        <translation>bis</translation>
    </message>
    <message>
        <source>Window</source>
        <translation>Bereich</translation>
    </message>
    <message>
        <source>Full Range</source>
        <translation>Voller Bereich</translation>
    </message>
    <message>
        <source>Gamma</source>
        <translation>Gamma</translation>
    </message>
    <message>
        <source>Colours of the active view</source>
        <translation>Farben der aktiven Ansicht</translation>
    </message>
    <message>
        <source>The active view has no colours to choose</source>
        <translation>Die aktive Ansicht hat keine Farben zur Auswahl</translation>
    </message>
    <message>
        <source>No view is active</source>
        <translation>Es ist keine Ansicht aktiv</translation>
    </message>
    <message>
        <source>A colour picture is shown as it is</source>
        <translation>Ein Farbbild wird gezeigt, wie es ist</translation>
    </message>
    <message>
        <source>The active view sets its contrast itself</source>
        <translation>Die aktive Ansicht stellt ihren Kontrast selbst ein</translation>
    </message>
    <message>
        <source>The contrast follows every frame</source>
        <translation>Der Kontrast folgt jedem Bild</translation>
    </message>
    <message>
        <source>Show samples at the end of their range in red</source>
        <translation>Werte am Ende ihres Bereichs rot zeigen</translation>
    </message>
    <message>
        <source>Value shown with the first colour</source>
        <translation>Wert, der mit der ersten Farbe gezeigt wird</translation>
    </message>
    <message>
        <source>Value shown with the last colour</source>
        <translation>Wert, der mit der letzten Farbe gezeigt wird</translation>
    </message>
    <message>
        <source>Below 1 the dark parts become lighter, above 1 darker</source>
        <translation>Unter 1 werden die dunklen Stellen heller, über 1 dunkler</translation>
    </message>
    <message>
        <source>The whole range of values, without automatic contrast</source>
        <translation>Der ganze Wertebereich, ohne automatischen Kontrast</translation>
    </message>
    <message>
        <source>Values %1 to %2</source>
        <translation>Werte von %1 bis %2</translation>
    </message>
    <message>
        <source>, %1 invalid</source>
        <translation>, %1 ungültig</translation>
    </message>
    <message>
        <source>There is no picture yet</source>
        <translation>Es ist noch kein Bild da</translation>
    </message>
</context>
<context>
    <name>CkMainWindow</name>
    <message>
        <source>&amp;Camera</source>
        <translation>&amp;Kamera</translation>
    </message>
    <message>
        <source>&amp;Plug-ins</source>
        <translation>Pl&amp;ug-ins</translation>
    </message>
    <message>
        <source>Cameras</source>
        <translation>Kameras</translation>
    </message>
    <message>
        <source>Processing Chain</source>
        <translation>Verarbeitungskette</translation>
    </message>
    <message>
        <source>Colours</source>
        <translation>Farben</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>P&amp;icture</source>
        <translation>&amp;Bild</translation>
    </message>
    <message>
        <source>Chai&amp;n</source>
        <translation>K&amp;ette</translation>
    </message>
    <message>
        <source>Recordings</source>
        <translation>Aufnahmen</translation>
    </message>
    <message>
        <source>&amp;Recording</source>
        <translation>Au&amp;fnahme</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
</context>
<context>
    <name>CkPageErrors</name>
    <message>
        <source>%1 (%2 pages in a row)</source>
        <translation>%1 (%2 Seiten nacheinander)</translation>
    </message>
</context>
<context>
    <name>CkParamEditor</name>
    <message>
        <source>From %1 to %2%3, in steps of %4</source>
        <translation>Von %1 bis %2%3, in Schritten von %4</translation>
    </message>
    <message>
        <source>The camera does not allow this to be changed.</source>
        <translation>Die Kamera erlaubt hier keine Änderung.</translation>
    </message>
    <message>
        <source>Name: %1</source>
        <translation>Name: %1</translation>
    </message>
    <message>
        <source>Other (%1)</source>
        <translation>Anderer (%1)</translation>
    </message>
    <message>
        <source>The camera refused it; the old value stays.</source>
        <translation>Die Kamera hat ihn abgelehnt; der alte Wert bleibt.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a clear number; %2 stays.</source>
        <translation>„%1“ ist keine eindeutige Zahl; es bleibt bei %2.</translation>
    </message>
    <message>
        <source>%1 is too large; %2 was set.</source>
        <translation>%1 ist zu groß; eingestellt ist %2.</translation>
    </message>
    <message>
        <source>%1 is too small; %2 was set.</source>
        <translation>%1 ist zu klein; eingestellt ist %2.</translation>
    </message>
    <message>
        <source>%1 is between two steps; %2 was set.</source>
        <translation>%1 liegt zwischen zwei Schritten; eingestellt ist %2.</translation>
    </message>
</context>
<context>
    <name>CkPictureMenu</name>
    <message>
        <source>&amp;Save Picture...</source>
        <translation>Bild &amp;speichern...</translation>
    </message>
    <message>
        <source>Zoom to &amp;Fit</source>
        <translation>Ein&amp;passen</translation>
    </message>
    <message>
        <source>&amp;Original Size (1:1)</source>
        <translation>&amp;Originalgröße (1:1)</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>Ver&amp;größern</translation>
    </message>
    <message>
        <source>Zoom O&amp;ut</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>&amp;Automatic Contrast</source>
        <translation>&amp;Automatischer Kontrast</translation>
    </message>
    <message>
        <source>Full &amp;Range</source>
        <translation>&amp;Voller Bereich</translation>
    </message>
    <message>
        <source>&amp;Mark Saturated</source>
        <translation>Sä&amp;ttigung markieren</translation>
    </message>
    <message>
        <source>&amp;Legend</source>
        <translation>&amp;Legende</translation>
    </message>
    <message>
        <source>&amp;Next Channel</source>
        <translation>&amp;Nächster Kanal</translation>
    </message>
    <message>
        <source>&amp;Previous Channel</source>
        <translation>Vo&amp;riger Kanal</translation>
    </message>
    <message>
        <source>The active view is not a picture view</source>
        <translation>Die aktive Ansicht ist keine Bildansicht</translation>
    </message>
    <message>
        <source>No view is open</source>
        <translation>Es ist keine Ansicht offen</translation>
    </message>
    <message>
        <source>A colour picture is shown as it is</source>
        <translation>Ein Farbbild wird gezeigt, wie es ist</translation>
    </message>
    <message>
        <source>The picture has only one channel</source>
        <translation>Das Bild hat nur einen Kanal</translation>
    </message>
</context>
<context>
    <name>CkPictureSnapshot</name>
    <message>
        <source>PNG, as seen (*.png)</source>
        <translation>PNG, wie gezeigt (*.png)</translation>
    </message>
    <message>
        <source>JPEG, as seen (*.jpg)</source>
        <translation>JPEG, wie gezeigt (*.jpg)</translation>
    </message>
    <message>
        <source>16-bit PNG, as measured, %1 (*.png)</source>
        <translation>PNG mit 16 Bit, wie gemessen, %1 (*.png)</translation>
    </message>
    <message>
        <source>Float TIFF, as measured, channel &quot;%1&quot; (*.tif)</source>
        <translation>Float-TIFF, wie gemessen, Kanal „%1“ (*.tif)</translation>
    </message>
    <message>
        <source>Float TIFF, as measured, all channels (*.tif)</source>
        <translation>Float-TIFF, wie gemessen, alle Kanäle (*.tif)</translation>
    </message>
    <message>
        <source>There is no picture to save.</source>
        <translation>Es ist kein Bild da, das gespeichert werden könnte.</translation>
    </message>
    <message>
        <source>%1: the extension determines the format of the picture: use .png or .jpg.</source>
        <translation>%1: Die Endung bestimmt das Format des Bildes: .png oder .jpg.</translation>
    </message>
    <message>
        <source>A colour picture has no single channel to save; choose a channel first.</source>
        <translation>Ein Farbbild hat keinen einzelnen Kanal zum Speichern; wählen Sie zuerst einen Kanal.</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>Bild speichern</translation>
    </message>
</context>
<context>
    <name>CkPictureToolBar</name>
    <message>
        <source>Legend</source>
        <translation>Legende</translation>
    </message>
    <message>
        <source>Show which values the colours represent (Ctrl+L)</source>
        <translation>Zeigen, wofür die Farben stehen (Strg+L)</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Save the picture to a file (Ctrl+P)</source>
        <translation>Das Bild in eine Datei speichern (Strg+P)</translation>
    </message>
    <message>
        <source>Fit</source>
        <translation>Einpassen</translation>
    </message>
    <message>
        <source>Show the whole picture (Ctrl+0, double click on the picture)</source>
        <translation>Das ganze Bild zeigen (Strg+0, Doppelklick auf das Bild)</translation>
    </message>
    <message>
        <source>One screen pixel for each picture pixel (Ctrl+/, double click on the picture)</source>
        <translation>Ein Bildschirmpixel je Bildpixel (Strg+/, Doppelklick auf das Bild)</translation>
    </message>
    <message>
        <source>Smaller (Ctrl+-, mouse wheel)</source>
        <translation>Kleiner (Strg+-, Mausrad)</translation>
    </message>
    <message>
        <source>Larger (Ctrl++, mouse wheel)</source>
        <translation>Größer (Strg++, Mausrad)</translation>
    </message>
    <message>
        <source>There is no picture yet</source>
        <translation>Es ist noch kein Bild da</translation>
    </message>
    <message>
        <source>Colour</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Channel that is shown</source>
        <translation>Gezeigter Kanal</translation>
    </message>
    <message>
        <source>This picture has only one channel</source>
        <translation>Dieses Bild hat nur einen Kanal</translation>
    </message>
</context>
<context>
    <name>CkPlaybackBar</name>
    <message>
        <source>Position in the recording</source>
        <translation>Stelle in der Aufnahme</translation>
    </message>
    <message>
        <source>Frame </source>
        <translation>Bild </translation>
    </message>
    <message>
        <source>Time of the frame since the first one, and length of the recording</source>
        <translation>Zeit des Bildes seit dem ersten und Länge der Aufnahme</translation>
    </message>
    <message>
        <source>Every frame</source>
        <translation>Jedes Bild</translation>
    </message>
    <message>
        <source>Real time</source>
        <translation>Echtzeit</translation>
    </message>
    <message>
        <source> of %1</source>
        <translation> von %1</translation>
    </message>
    <message>
        <source>&amp;Pause</source>
        <translation>&amp;Pausieren</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>Ab&amp;spielen</translation>
    </message>
    <message>
        <source>&lt;span style=&apos;color:#c02020&apos;&gt;&lt;b&gt;Damaged&lt;/b&gt;&lt;/span&gt;</source>
        <translation>&lt;span style=&apos;color:#c02020&apos;&gt;&lt;b&gt;Beschädigt&lt;/b&gt;&lt;/span&gt;</translation>
    </message>
    <message>
        <source>%1 left out</source>
        <translation>%1 ausgelassen</translation>
    </message>
    <message>
        <source>Frames left out as too late since playback was started</source>
        <translation>Bilder, die seit dem Beginn der Wiedergabe zu spät kamen</translation>
    </message>
    <message>
        <source>Number of the frame that is shown, counted from 0 as the command line does; type one to go there</source>
        <translation>Nummer des gezeigten Bildes, ab 0 gezählt wie auf der Kommandozeile; eine eingeben, um dorthin zu springen</translation>
    </message>
    <message>
        <source>Real time: as it was recorded; frames that come too late are left out.
Every frame: as fast as the chain can process them, nothing left out.</source>
        <translation>Echtzeit: wie aufgenommen; Bilder, die zu spät kommen, werden ausgelassen.
Jedes Bild: so schnell die Kette kann, nichts wird ausgelassen.</translation>
    </message>
    <message>
        <source>How much faster or slower than it was recorded</source>
        <translation>Wie viel schneller oder langsamer als aufgenommen</translation>
    </message>
    <message>
        <source>Every frame is played as fast as the chain can process it; choose real time to set a speed</source>
        <translation>Jedes Bild wird so schnell gezeigt, wie die Kette kann; für ein Tempo Echtzeit wählen</translation>
    </message>
</context>
<context>
    <name>CkPluginChecker</name>
    <message>
        <source>Plug-in &quot;%1&quot; was left out: an earlier start ended while it was being loaded. It is tried again when its file has changed or with --check-plugins.</source>
        <translation>Plug-in „%1“ wurde ausgelassen: Ein früherer Start endete, während es geladen wurde. Es wird wieder versucht, wenn sich seine Datei ändert oder mit --check-plugins.</translation>
    </message>
    <message>
        <source>Plug-in &quot;%1&quot; was refused: the file cannot be read.</source>
        <translation>Plug-in „%1“ wurde abgelehnt: Die Datei lässt sich nicht lesen.</translation>
    </message>
    <message>
        <source>Plug-ins are loaded unchecked: the program zuPluginProbe cannot be run.</source>
        <translation>Plug-ins werden ungeprüft geladen: Das Programm zuPluginProbe lässt sich nicht ausführen.</translation>
    </message>
</context>
<context>
    <name>CkPluginHost</name>
    <message>
        <source>%1: there is no such plug-in or folder.</source>
        <translation>%1: Dieses Plug-in oder diesen Ordner gibt es nicht.</translation>
    </message>
    <message>
        <source>Plug-in &quot;%1&quot; %2 loaded from %3</source>
        <translation>Plug-in „%1“ %2 aus %3 geladen</translation>
    </message>
</context>
<context>
    <name>CkPluginLoader</name>
    <message>
        <source>the file cannot be read.</source>
        <translation>die Datei ist nicht lesbar.</translation>
    </message>
    <message>
        <source>it is not a library.</source>
        <translation>es ist keine Bibliothek.</translation>
    </message>
    <message>
        <source>it is damaged, cut off, or made for another kind of machine.</source>
        <translation>es ist beschädigt, abgeschnitten oder für eine andere Art von Rechner gemacht.</translation>
    </message>
    <message>
        <source>it is not a Qt plug-in (%1).</source>
        <translation>es ist kein Qt-Plug-in (%1).</translation>
    </message>
    <message>
        <source>it is a plug-in for another program (&quot;%1&quot;).</source>
        <translation>es ist ein Plug-in für ein anderes Programm („%1“).</translation>
    </message>
    <message>
        <source>it failed with an exception: %1</source>
        <translation>es ist mit einer Ausnahme gescheitert: %1</translation>
    </message>
    <message>
        <source>it failed with an exception.</source>
        <translation>es ist mit einer Ausnahme gescheitert.</translation>
    </message>
    <message>
        <source>it does not have the interface of a viewer plug-in.</source>
        <translation>es hat nicht die Schnittstelle eines Plug-ins für diesen Betrachter.</translation>
    </message>
    <message>
        <source>it was built for version %1.%2.%3 of the framework, this is version %4.</source>
        <translation>es ist für Version %1.%2.%3 des Frameworks gebaut, dies ist Version %4.</translation>
    </message>
    <message>
        <source>it could not be initialised.</source>
        <translation>es ließ sich nicht initialisieren.</translation>
    </message>
    <message>
        <source>it cannot be loaded (%1).</source>
        <translation>es lässt sich nicht laden (%1).</translation>
    </message>
    <message>
        <source>Plug-in &quot;%1&quot; was refused: %2</source>
        <translation>Das Plug-in „%1“ wurde abgelehnt: %2</translation>
    </message>
    <message>
        <source>There is no plug-in folder &quot;%1&quot;.</source>
        <translation>Es gibt keinen Plug-in-Ordner „%1“.</translation>
    </message>
</context>
<context>
    <name>PluginProbe</name>
    <message>
        <source>it was loaded and started</source>
        <translation>es geladen und gestartet wurde</translation>
    </message>
    <message>
        <source>it was ended</source>
        <translation>es beendet wurde</translation>
    </message>
    <message>
        <source>Plug-in &quot;%1&quot; was refused: it did not come back within %2 s while %3.</source>
        <translation>Plug-in „%1“ wurde abgelehnt: Es kam innerhalb von %2 s nicht zurück, während %3.</translation>
    </message>
    <message>
        <source>Plug-in &quot;%1&quot; was refused: it ended the program while %2.</source>
        <translation>Plug-in „%1“ wurde abgelehnt: Es beendete das Programm, während %2.</translation>
    </message>
</context>
<context>
    <name>CkQualityControls</name>
    <message>
        <source>What the curve shows</source>
        <translation>Was die Kurve zeigt</translation>
    </message>
    <message>
        <source>Draw Region</source>
        <translation>Region zeichnen</translation>
    </message>
    <message>
        <source>Restart</source>
        <translation>Neu beginnen</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Save CSV...</source>
        <translation>CSV speichern...</translation>
    </message>
    <message>
        <source>Pitch of the sensor&apos;s cells; the plane is fitted in space</source>
        <translation>Rastermaß der Sensorzellen; die Ebene wird im Raum angepasst</translation>
    </message>
    <message>
        <source>Pixels of a higher confidence value are not valid (lower is better)</source>
        <translation>Pixel mit einem größeren Konfidenzwert sind nicht gültig (kleiner ist besser)</translation>
    </message>
    <message>
        <source>Focal length</source>
        <translation>Brennweite</translation>
    </message>
    <message>
        <source>Cell size</source>
        <translation>Zellgröße</translation>
    </message>
    <message>
        <source>Confidence limit</source>
        <translation>Konfidenzgrenze</translation>
    </message>
    <message>
        <source>Drag a rectangle on the picture with the left mouse button</source>
        <translation>Ziehen Sie mit der linken Maustaste ein Rechteck im Bild auf</translation>
    </message>
    <message>
        <source>Discard the frames so far</source>
        <translation>Die bisherigen Bilder verwerfen</translation>
    </message>
    <message>
        <source>Copy the values to the clipboard</source>
        <translation>Die Werte in die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>Save the values of the last frames to a file</source>
        <translation>Die Werte der letzten Bilder in eine Datei speichern</translation>
    </message>
    <message>
        <source>Of the lens; the plane is fitted in space</source>
        <translation>Des Objektivs; die Ebene wird im Raum angepasst</translation>
    </message>
    <message>
        <source>The camera reports its focal length: %1 mm</source>
        <translation>Die Kamera meldet ihre Brennweite: %1 mm</translation>
    </message>
</context>
<context>
    <name>CkQualityHistory</name>
    <message>
        <source>%1 cannot be written: %2.</source>
        <translation>%1 kann nicht geschrieben werden: %2.</translation>
    </message>
</context>
<context>
    <name>CkQualityPanel</name>
    <message>
        <source>No view is active</source>
        <translation>Es ist keine Ansicht aktiv</translation>
    </message>
    <message>
        <source>The active view shows no picture. Open a depth picture of its chain to measure in it.</source>
        <translation>Die aktive Ansicht zeigt kein Bild. Öffnen Sie ein Tiefenbild ihrer Kette, um darin zu messen.</translation>
    </message>
    <message>
        <source>There is no picture yet</source>
        <translation>Es ist noch kein Bild da</translation>
    </message>
    <message>
        <source>No distances: no plane is fitted.</source>
        <translation>Keine Abstände: Es wird keine Ebene angepasst.</translation>
    </message>
    <message>
        <source>Drag a rectangle on the picture with the left mouse button</source>
        <translation>Ziehen Sie mit der linken Maustaste ein Rechteck im Bild auf</translation>
    </message>
    <message>
        <source>Save Values</source>
        <translation>Werte speichern</translation>
    </message>
    <message>
        <source>Comma separated values (*.csv)</source>
        <translation>Durch Kommas getrennte Werte (*.csv)</translation>
    </message>
    <message>
        <source>The panel Quality is hidden</source>
        <translation>Das Bedienfeld „Qualität“ ist nicht zu sehen</translation>
    </message>
    <message>
        <source>&amp;Draw Region</source>
        <translation>Region &amp;zeichnen</translation>
    </message>
    <message>
        <source>R&amp;estart Measurement</source>
        <translation>&amp;Messung neu beginnen</translation>
    </message>
    <message>
        <source>&amp;Copy Values</source>
        <translation>W&amp;erte kopieren</translation>
    </message>
    <message>
        <source>Save &amp;Values...</source>
        <translation>Werte speic&amp;hern...</translation>
    </message>
    <message numerus="yes">
        <source>%1: region at %2, %3 of %4 x %5 pixels, %n frame(s)</source>
        <translation>
            <numerusform>%1: Region bei %2, %3 mit %4 x %5 Pixeln, %n Bild</numerusform>
            <numerusform>%1: Region bei %2, %3 mit %4 x %5 Pixeln, %n Bilder</numerusform>
        </translation>
    </message>
    <message>
        <source>Saturated pixels may count as valid: %1.</source>
        <translation>Gesättigte Pixel zählen womöglich als gültig: %1.</translation>
    </message>
</context>
<context>
    <name>CkQualityPlot</name>
    <message>
        <source>Nothing to plot yet</source>
        <translation>Noch nichts zu zeichnen</translation>
    </message>
    <message numerus="yes">
        <source>last %n frame(s)</source>
        <translation>
            <numerusform>letztes Bild</numerusform>
            <numerusform>letzte %n Bilder</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CkRTTI</name>
    <message>
        <source>No class was given to register.</source>
        <translation>Es wurde keine Klasse zum Registrieren angegeben.</translation>
    </message>
    <message>
        <source>Class &quot;%1&quot; does not inherit &quot;%2&quot;.</source>
        <translation>Die Klasse „%1“ erbt nicht von „%2“.</translation>
    </message>
    <message>
        <source>Class &quot;%1&quot; has no invokable default constructor.</source>
        <translation>Die Klasse „%1“ hat keinen aufrufbaren Standardkonstruktor.</translation>
    </message>
    <message>
        <source>Identifier &quot;%1&quot; of class &quot;%2&quot; is taken by class &quot;%3&quot;.</source>
        <translation>Die Kennung „%1“ der Klasse „%2“ ist von der Klasse „%3“ belegt.</translation>
    </message>
    <message>
        <source>There is no class &quot;%1&quot;.</source>
        <translation>Es gibt keine Klasse „%1“.</translation>
    </message>
    <message>
        <source>An object of class &quot;%1&quot; could not be made.</source>
        <translation>Ein Objekt der Klasse „%1“ ließ sich nicht anlegen.</translation>
    </message>
</context>
<context>
    <name>CkRateGraph</name>
    <message>
        <source>Frames of the active view in each second of the last minute: shown (blue) and lost (red)</source>
        <translation>Bilder der aktiven Ansicht in jeder Sekunde der letzten Minute: gezeigte (blau) und verlorene (rot)</translation>
    </message>
</context>
<context>
    <name>CkRecordButton</name>
    <message>
        <source>Stop Recording</source>
        <translation>Aufnahme beenden</translation>
    </message>
    <message>
        <source>Record...</source>
        <translation>Aufnehmen...</translation>
    </message>
    <message>
        <source>Write the queued frames and close the file</source>
        <translation>Schreibt die wartenden Bilder und schließt die Datei</translation>
    </message>
    <message>
        <source>Record the camera&apos;s pictures as they are delivered, from the moment the camera runs</source>
        <translation>Nimmt die Bilder der Kamera auf, wie sie geliefert werden, sobald die Kamera läuft</translation>
    </message>
</context>
<context>
    <name>CkRecorder</name>
    <message>
        <source>A recording is running already.</source>
        <translation>Es läuft bereits eine Aufnahme.</translation>
    </message>
    <message>
        <source>There is no thread to record in.</source>
        <translation>Es gibt keinen Thread für die Aufnahme.</translation>
    </message>
</context>
<context>
    <name>CkRecordingController</name>
    <message>
        <source>&amp;Record the Source...</source>
        <translation>&amp;Quelle aufnehmen...</translation>
    </message>
    <message>
        <source>Record the &amp;View...</source>
        <translation>&amp;Ansicht aufnehmen...</translation>
    </message>
    <message>
        <source>Stop &amp;All Recordings</source>
        <translation>Alle Aufnahmen &amp;beenden</translation>
    </message>
    <message>
        <source>&amp;First Frame</source>
        <translation>&amp;Erstes Bild</translation>
    </message>
    <message>
        <source>Step &amp;Back</source>
        <translation>Schritt &amp;zurück</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>Ab&amp;spielen</translation>
    </message>
    <message>
        <source>&amp;Step Forward</source>
        <translation>Schritt &amp;vor</translation>
    </message>
    <message>
        <source>&amp;Last Frame</source>
        <translation>&amp;Letztes Bild</translation>
    </message>
    <message>
        <source>L&amp;oop</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>&amp;Every Frame</source>
        <translation>&amp;Jedes Bild</translation>
    </message>
    <message>
        <source>Real &amp;Time</source>
        <translation>Ech&amp;tzeit</translation>
    </message>
    <message>
        <source>Recordings and TIFF pictures</source>
        <translation>Aufnahmen und TIFF-Bilder</translation>
    </message>
    <message>
        <source>Pictures</source>
        <translation>Bilder</translation>
    </message>
    <message>
        <source>The active view shows no chain</source>
        <translation>Die aktive Ansicht zeigt keine Kette</translation>
    </message>
    <message>
        <source>Record &quot;%1&quot; as it is delivered</source>
        <translation>„%1“ aufnehmen, wie es geliefert wird</translation>
    </message>
    <message>
        <source>Record what the active view shows, after all processing</source>
        <translation>Aufnehmen, was die aktive Ansicht nach der gesamten Verarbeitung bekommt</translation>
    </message>
    <message>
        <source>Write the queued frames and close the files</source>
        <translation>Schreibt die wartenden Bilder und schließt die Dateien</translation>
    </message>
    <message>
        <source>Nothing is being recorded</source>
        <translation>Es wird nichts aufgenommen</translation>
    </message>
    <message>
        <source>The active view shows no recording</source>
        <translation>Die aktive Ansicht zeigt keine Aufnahme</translation>
    </message>
    <message>
        <source>, &lt;b style=&apos;color:#c02020&apos;&gt;%1 dropped&lt;/b&gt;</source>
        <translation>, &lt;b style=&apos;color:#c02020&apos;&gt;%1 verloren&lt;/b&gt;</translation>
    </message>
    <message numerus="yes">
        <source>&lt;span style=&apos;color:#d02020&apos;&gt;●&lt;/span&gt; Recording: %n frame(s)</source>
        <translation>
            <numerusform>&lt;span style=&apos;color:#d02020&apos;&gt;●&lt;/span&gt; Aufnahme: %n Bild</numerusform>
            <numerusform>&lt;span style=&apos;color:#d02020&apos;&gt;●&lt;/span&gt; Aufnahme: %n Bilder</numerusform>
        </translation>
    </message>
    <message>
        <source>The active view shows a single picture</source>
        <translation>Die aktive Ansicht zeigt ein einzelnes Bild</translation>
    </message>
</context>
<context>
    <name>CkRecordingJob</name>
    <message>
        <source>&quot;%1&quot;: there is nothing to record: the view shows no chain.</source>
        <translation>„%1“: Es gibt nichts aufzunehmen: Die Ansicht zeigt keine Kette.</translation>
    </message>
</context>
<context>
    <name>CkRecordingManager</name>
    <message>
        <source>Recording</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is being recorded to; choose another file.</source>
        <translation>In „%1“ wird gerade aufgenommen; wählen Sie eine andere Datei.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is open here and would be lost; choose another file, or close its views.</source>
        <translation>„%1“ ist hier geöffnet und ginge verloren; wählen Sie eine andere Datei oder schließen Sie ihre Ansichten.</translation>
    </message>
    <message>
        <source>Recording &quot;%1&quot; to %2</source>
        <translation>„%1“ wird in %2 aufgenommen</translation>
    </message>
    <message>
        <source>Recordings (*.tif)</source>
        <translation>Aufnahmen (*.tif)</translation>
    </message>
    <message>
        <source>Recordings, compressed without loss, slower (*.tif)</source>
        <translation>Aufnahmen, verlustfrei komprimiert, langsamer (*.tif)</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Aufnehmen</translation>
    </message>
    <message>
        <source>What was to be recorded has been closed.</source>
        <translation>Was aufgenommen werden sollte, wurde geschlossen.</translation>
    </message>
    <message numerus="yes">
        <source>%1: %n frame(s) recorded, %2 dropped</source>
        <translation>
            <numerusform>%1: %n Bild aufgenommen, %2 verloren</numerusform>
            <numerusform>%1: %n Bilder aufgenommen, %2 verloren</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The %n frame(s) before it are in the file and can be opened.</source>
        <translation>
            <numerusform>Das Bild davor steht in der Datei und kann geöffnet werden.</numerusform>
            <numerusform>Die %n Bilder davor stehen in der Datei und können geöffnet werden.</numerusform>
        </translation>
    </message>
    <message>
        <source>The file holds no frame.</source>
        <translation>Die Datei enthält kein Bild.</translation>
    </message>
    <message>
        <source>The recording ended early.

%1

%2 %3</source>
        <translation>Die Aufnahme endete vorzeitig.

%1

%2 %3</translation>
    </message>
    <message numerus="yes">
        <source>%n frame(s) were lost.</source>
        <translation>
            <numerusform>%n Bild ging verloren.</numerusform>
            <numerusform>%n Bilder gingen verloren.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CkRecordingOpener</name>
    <message>
        <source>Opening &quot;%1&quot;...</source>
        <translation>Öffne „%1“...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Open Recording</source>
        <translation>Aufnahme öffnen</translation>
    </message>
    <message>
        <source>&quot;%1&quot; was recorded with a processing chain:

%2

Open it with this chain?</source>
        <translation>„%1“ wurde mit einer Verarbeitungskette aufgenommen:

%2

Mit dieser Kette öffnen?</translation>
    </message>
    <message>
        <source>With the &amp;Chain</source>
        <translation>Mit der &amp;Kette</translation>
    </message>
    <message>
        <source>&amp;Pictures Only</source>
        <translation>Nur die &amp;Bilder</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is opened without its chain: %2</source>
        <translation>„%1“ wird ohne Kette geöffnet: %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: no new processing chain can be made.</source>
        <translation>„%1“: Es kann keine neue Verarbeitungskette angelegt werden.</translation>
    </message>
    <message numerus="yes">
        <source>Opening &quot;%1&quot;: %n frame(s) so far</source>
        <translation>
            <numerusform>Öffne „%1“: bisher %n Bild</numerusform>
            <numerusform>Öffne „%1“: bisher %n Bilder</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CkRecordingPanel</name>
    <message>
        <source>Nothing is being recorded.</source>
        <translation>Es wird nichts aufgenommen.</translation>
    </message>
    <message>
        <source>, %1 in the queue</source>
        <translation>, %1 in der Warteschlange</translation>
    </message>
    <message>
        <source>%1
recorded to %2</source>
        <translation>%1
aufgenommen in %2</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Write the queued frames and close the file</source>
        <translation>Schreibt die wartenden Bilder und schließt die Datei</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Play this recording</source>
        <translation>Diese Aufnahme abspielen</translation>
    </message>
    <message>
        <source>Remove this entry; the file is kept</source>
        <translation>Diese Zeile entfernen; die Datei bleibt</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Nimmt auf</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Writing the queued frames</source>
        <translation>Schreibt die wartenden Bilder</translation>
    </message>
    <message>
        <source>%1 dropped</source>
        <translation>%1 verloren</translation>
    </message>
    <message>
        <source>The file is being closed</source>
        <translation>Die Datei wird geschlossen</translation>
    </message>
    <message>
        <source>The file holds no frame</source>
        <translation>Die Datei enthält kein Bild</translation>
    </message>
    <message numerus="yes">
        <source>%n frame(s), %1, %2</source>
        <translation>
            <numerusform>%n Bild, %1, %2</numerusform>
            <numerusform>%n Bilder, %1, %2</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CkRecordingReader</name>
    <message>
        <source>&quot;%1&quot;, page %2: %3</source>
        <translation>„%1“, Seite %2: %3</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: %2</source>
        <translation>„%1“: %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: The file holds no picture.</source>
        <translation>„%1“: Die Datei enthält kein Bild.</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: There is not enough memory.</source>
        <translation>„%1“: Der Speicher reicht nicht aus.</translation>
    </message>
    <message>
        <source>There is no such page.</source>
        <translation>Diese Seite gibt es nicht.</translation>
    </message>
    <message>
        <source>There is not enough memory.</source>
        <translation>Der Speicher reicht nicht aus.</translation>
    </message>
    <message>
        <source>The file cannot be read (%1).</source>
        <translation>Die Datei ist nicht lesbar (%1).</translation>
    </message>
    <message>
        <source>This is no ordinary file.</source>
        <translation>Das ist keine gewöhnliche Datei.</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>Die Datei ist leer.</translation>
    </message>
    <message>
        <source>This is no recording and no other TIFF file.</source>
        <translation>Das ist keine Aufnahme und keine andere TIFF-Datei.</translation>
    </message>
    <message>
        <source>The file ends before the page begins.</source>
        <translation>Die Datei endet, bevor die Seite beginnt.</translation>
    </message>
    <message>
        <source>The file ends inside the page&apos;s directory.</source>
        <translation>Die Datei endet im Verzeichnis der Seite.</translation>
    </message>
    <message>
        <source>There is no directory where the page should have one.</source>
        <translation>Wo die Seite ihr Verzeichnis haben sollte, ist keines.</translation>
    </message>
    <message>
        <source>The file&apos;s pages point to each other in a circle.</source>
        <translation>Die Seiten der Datei verweisen im Kreis aufeinander.</translation>
    </message>
    <message>
        <source>Opening was cancelled.</source>
        <translation>Das Öffnen wurde abgebrochen.</translation>
    </message>
    <message>
        <source>The page&apos;s directory cannot be read.</source>
        <translation>Das Verzeichnis der Seite ist nicht lesbar.</translation>
    </message>
    <message>
        <source>The page has no pixels.</source>
        <translation>Die Seite hat keine Pixel.</translation>
    </message>
    <message>
        <source>The page declares %1 x %2 pixels, more than fit into this file or into 1 GiB.</source>
        <translation>Die Seite gibt %1 x %2 Pixel an, mehr als in diese Datei oder in 1 GiB passen.</translation>
    </message>
    <message>
        <source>The samples cannot be read.</source>
        <translation>Die Werte sind nicht lesbar.</translation>
    </message>
    <message>
        <source>Pages of %1 x %2 bits per pixel in this form are not supported.</source>
        <translation>Seiten mit %1 x %2 Bit je Pixel in dieser Form werden nicht unterstützt.</translation>
    </message>
    <message>
        <source>The page&apos;s directory asks for more than %1 MiB beside the samples.</source>
        <translation>Das Verzeichnis der Seite verlangt neben den Werten mehr als %1 MiB.</translation>
    </message>
    <message>
        <source>The file has more than %1 pages; the others are left out.</source>
        <translation>Die Datei hat mehr als %1 Seiten; die übrigen werden ausgelassen.</translation>
    </message>
    <message>
        <source>The page&apos;s text is longer than %1 MiB.</source>
        <translation>Der Text der Seite ist länger als %1 MiB.</translation>
    </message>
    <message>
        <source>The page declares %1 strips or tiles; 1 to %2 are read.</source>
        <translation>Die Seite gibt %1 Streifen oder Kacheln an; gelesen werden 1 bis %2.</translation>
    </message>
    <message>
        <source>The page declares %1 x %2 pixels in %3 compressed bytes; compressed pages are read up to %4 MiB and up to %5 times their compressed bytes.</source>
        <translation>Die Seite gibt %1 x %2 Pixel in %3 komprimierten Bytes an; komprimierte Seiten werden bis %4 MiB und bis zum %5-Fachen ihrer komprimierten Bytes gelesen.</translation>
    </message>
    <message>
        <source>A strip or tile of the page declares more compressed bytes than samples.</source>
        <translation>Ein Streifen oder eine Kachel der Seite gibt mehr komprimierte Bytes als Werte an.</translation>
    </message>
</context>
<context>
    <name>CkRecordingWriter</name>
    <message>
        <source>&quot;%1&quot;, page %2: %3</source>
        <translation>„%1“, Seite %2: %3</translation>
    </message>
    <message>
        <source>Writing failed (%1).</source>
        <translation>Das Schreiben ist gescheitert (%1).</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be written (%2).</source>
        <translation>„%1“ lässt sich nicht schreiben (%2).</translation>
    </message>
    <message>
        <source>No file is open.</source>
        <translation>Es ist keine Datei offen.</translation>
    </message>
    <message>
        <source>A picture of this format cannot be recorded.</source>
        <translation>Ein Bild dieses Formats kann nicht aufgenommen werden.</translation>
    </message>
    <message>
        <source>The picture is larger than 1 GiB.</source>
        <translation>Das Bild ist größer als 1 GiB.</translation>
    </message>
    <message>
        <source>There is not enough memory.</source>
        <translation>Der Speicher reicht nicht aus.</translation>
    </message>
    <message>
        <source>The page&apos;s text (metadata, chain) is longer than %1 MiB.</source>
        <translation>Der Text der Seite (Metadaten, Kette) ist länger als %1 MiB.</translation>
    </message>
</context>
<context>
    <name>CkSessionReader</name>
    <message>
        <source>Camera &quot;%1&quot; of the last session: %2</source>
        <translation>Kamera „%1“ der letzten Sitzung: %2</translation>
    </message>
    <message>
        <source>A chain of the last session: %1</source>
        <translation>Eine Kette der letzten Sitzung: %1</translation>
    </message>
    <message>
        <source>it is no session</source>
        <translation>das ist keine Sitzung</translation>
    </message>
    <message>
        <source>What was open in the last session cannot be read (%1); the viewer starts empty.</source>
        <translation>Was in der letzten Sitzung offen war, lässt sich nicht lesen (%1); der Betrachter startet leer.</translation>
    </message>
    <message>
        <source>A recording of the last session: %1</source>
        <translation>Eine Aufnahme der letzten Sitzung: %1</translation>
    </message>
</context>
<context>
    <name>CkShortcutsDialog</name>
    <message>
        <source>Keyboard and Mouse</source>
        <translation>Tastatur und Maus</translation>
    </message>
    <message>
        <source>Key</source>
        <translation>Taste</translation>
    </message>
    <message>
        <source>What it does</source>
        <translation>Wirkung</translation>
    </message>
    <message>
        <source>Mouse wheel</source>
        <translation>Mausrad</translation>
    </message>
    <message>
        <source>In a picture: zoom about the mouse</source>
        <translation>Im Bild: um den Mauszeiger herum vergrößern oder verkleinern</translation>
    </message>
    <message>
        <source>Drag, arrow keys</source>
        <translation>Ziehen, Pfeiltasten</translation>
    </message>
    <message>
        <source>In a picture: move it</source>
        <translation>Im Bild: verschieben</translation>
    </message>
    <message>
        <source>Double click</source>
        <translation>Doppelklick</translation>
    </message>
    <message>
        <source>In a picture: whole picture or 1:1</source>
        <translation>Im Bild: ganzes Bild oder 1:1</translation>
    </message>
    <message>
        <source>Right click</source>
        <translation>Rechtsklick</translation>
    </message>
    <message>
        <source>In a picture: context menu</source>
        <translation>Im Bild: Kontextmenü</translation>
    </message>
    <message>
        <source>In a 3D view: distance along the ray or the axis</source>
        <translation>In einer 3D-Ansicht: Abstand entlang des Strahls oder der Achse</translation>
    </message>
    <message>
        <source>Left button, drag</source>
        <translation>Linke Taste, ziehen</translation>
    </message>
    <message>
        <source>In a 3D view: move the scene</source>
        <translation>In einer 3D-Ansicht: Szene verschieben</translation>
    </message>
    <message>
        <source>Right button, drag</source>
        <translation>Rechte Taste, ziehen</translation>
    </message>
    <message>
        <source>In a 3D view: turn the scene</source>
        <translation>In einer 3D-Ansicht: Szene drehen</translation>
    </message>
    <message>
        <source>In a 3D view: nearer or further away</source>
        <translation>In einer 3D-Ansicht: näher heran oder weiter weg</translation>
    </message>
</context>
<context>
    <name>CkSimCamera</name>
    <message>
        <source>The camera is already running.</source>
        <translation>Die Kamera läuft bereits.</translation>
    </message>
    <message>
        <source>Nobody receives the camera&apos;s frames.</source>
        <translation>Niemand nimmt die Bilder der Kamera entgegen.</translation>
    </message>
    <message>
        <source>The camera&apos;s thread cannot be started.</source>
        <translation>Der Thread der Kamera lässt sich nicht starten.</translation>
    </message>
    <message>
        <source>ToF readout mode</source>
        <translation>ToF-Auslesemodus</translation>
    </message>
    <message>
        <source>What the sensor reads out. Any other value delivers plain grey pictures.</source>
        <translation>Was der Sensor ausliest. Jeder andere Wert liefert einfache Graubilder.</translation>
    </message>
    <message>
        <source>Grey, no ToF</source>
        <translation>Grau, kein ToF</translation>
    </message>
    <message>
        <source>A minus B</source>
        <translation>A minus B</translation>
    </message>
    <message>
        <source>A and B</source>
        <translation>A und B</translation>
    </message>
    <message>
        <source>Image data format</source>
        <translation>Bilddatenformat</translation>
    </message>
    <message>
        <source>Format of the frames. One that does not fit the readout mode delivers plain grey pictures.</source>
        <translation>Format der Bilder. Eines, das nicht zum Auslesemodus passt, liefert einfache Graubilder.</translation>
    </message>
    <message>
        <source>A minus B, 8 bit</source>
        <translation>A minus B, 8 Bit</translation>
    </message>
    <message>
        <source>A minus B, 16 bit</source>
        <translation>A minus B, 16 Bit</translation>
    </message>
    <message>
        <source>A minus B, 8 bit, second code</source>
        <translation>A minus B, 8 Bit, zweiter Code</translation>
    </message>
    <message>
        <source>A minus B, 16 bit, second code</source>
        <translation>A minus B, 16 Bit, zweiter Code</translation>
    </message>
    <message>
        <source>A and B, 8 bit</source>
        <translation>A und B, 8 Bit</translation>
    </message>
    <message>
        <source>A and B, 12 bit in 16</source>
        <translation>A und B, 12 Bit in 16</translation>
    </message>
    <message>
        <source>Modulation frequency</source>
        <translation>Modulationsfrequenz</translation>
    </message>
    <message>
        <source>Frequency of the modulated light. Distances repeat every 149.85 m divided by it in MHz.</source>
        <translation>Frequenz des modulierten Lichts. Abstände wiederholen sich alle 149,85 m, geteilt durch die Frequenz in MHz.</translation>
    </message>
    <message>
        <source>Phases</source>
        <translation>Phasen</translation>
    </message>
    <message>
        <source>Phase images of one measurement.</source>
        <translation>Phasenbilder einer Messung.</translation>
    </message>
    <message>
        <source>1 (0 degrees)</source>
        <translation>1 (0 Grad)</translation>
    </message>
    <message>
        <source>2 (0, 90 degrees)</source>
        <translation>2 (0, 90 Grad)</translation>
    </message>
    <message>
        <source>4 (every 90 degrees)</source>
        <translation>4 (alle 90 Grad)</translation>
    </message>
    <message>
        <source>8 (every 45 degrees)</source>
        <translation>8 (alle 45 Grad)</translation>
    </message>
    <message>
        <source>Phase images</source>
        <translation>Phasenbilder</translation>
    </message>
    <message>
        <source>How the phases of one measurement arrive.</source>
        <translation>Wie die Phasen einer Messung ankommen.</translation>
    </message>
    <message>
        <source>Stacked in one image</source>
        <translation>Gestapelt in einem Bild</translation>
    </message>
    <message>
        <source>Separate images</source>
        <translation>Einzelne Bilder</translation>
    </message>
    <message>
        <source>Format of the frames. Any other value delivers plain grey pictures.</source>
        <translation>Format der Bilder. Jeder andere Wert liefert einfache Graubilder.</translation>
    </message>
    <message>
        <source>Grey, 8 bit</source>
        <translation>Grau, 8 Bit</translation>
    </message>
    <message>
        <source>Grey, 16 bit</source>
        <translation>Grau, 16 Bit</translation>
    </message>
    <message>
        <source>X1X2X3, 8 bit</source>
        <translation>X1X2X3, 8 Bit</translation>
    </message>
    <message>
        <source>X1X2X3, 12 bit in 16</source>
        <translation>X1X2X3, 12 Bit in 16</translation>
    </message>
    <message>
        <source>Pulse duration</source>
        <translation>Pulsdauer</translation>
    </message>
    <message>
        <source>Length of the light pulse and of each window. Distances up to 0.29979 m per ns are measured.</source>
        <translation>Länge des Lichtpulses und jedes Fensters. Gemessen werden Abstände bis 0,29979 m je ns.</translation>
    </message>
    <message>
        <source>HDR sections</source>
        <translation>HDR-Abschnitte</translation>
    </message>
    <message>
        <source>Exposures of one measurement, each twice as sensitive as the one before.</source>
        <translation>Belichtungen einer Messung, jede doppelt so empfindlich wie die vorige.</translation>
    </message>
    <message>
        <source>Section images</source>
        <translation>Abschnittsbilder</translation>
    </message>
    <message>
        <source>How the sections of one measurement arrive.</source>
        <translation>Wie die Abschnitte einer Messung ankommen.</translation>
    </message>
    <message>
        <source>Section mode</source>
        <translation>Abschnittsmodus</translation>
    </message>
    <message>
        <source>With a reference, section 0 holds the dark level and background light that is subtracted from the others.</source>
        <translation>Mit Referenz enthält Abschnitt 0 Dunkelpegel und Hintergrundlicht, die von den anderen abgezogen werden.</translation>
    </message>
    <message>
        <source>Measurement only</source>
        <translation>Nur Messung</translation>
    </message>
    <message>
        <source>Reference first</source>
        <translation>Referenz zuerst</translation>
    </message>
    <message>
        <source>Converter</source>
        <translation>Wandler</translation>
    </message>
    <message>
        <source>Bits of the 16-bit formats. 16 bits show the accuracy of the processing rather than that of the sensor.</source>
        <translation>Bits der 16-Bit-Formate. 16 Bit zeigen eher die Genauigkeit der Verarbeitung als die des Sensors.</translation>
    </message>
    <message>
        <source>12 bit</source>
        <translation>12 Bit</translation>
    </message>
    <message>
        <source>16 bit</source>
        <translation>16 Bit</translation>
    </message>
    <message>
        <source>Built-in offset</source>
        <translation>Eingebauter Versatz</translation>
    </message>
    <message>
        <source>Constant error that the camera adds to every distance.</source>
        <translation>Konstanter Fehler, den die Kamera zu jedem Abstand addiert.</translation>
    </message>
    <message>
        <source>Focal length</source>
        <translation>Brennweite</translation>
    </message>
    <message>
        <source>Of the simulated lens; the pitch of the pixels is 10 um.</source>
        <translation>Die des simulierten Objektivs; das Pixelraster beträgt 10 µm.</translation>
    </message>
    <message>
        <source>Report focal length</source>
        <translation>Brennweite melden</translation>
    </message>
    <message>
        <source>Send the focal length with every frame. Views then use it in place of their own setting.</source>
        <translation>Die Brennweite mit jedem Bild senden. Ansichten verwenden sie dann statt ihrer eigenen Einstellung.</translation>
    </message>
    <message>
        <source>Frame rate</source>
        <translation>Bildrate</translation>
    </message>
    <message>
        <source>Measurements per second.</source>
        <translation>Messungen pro Sekunde.</translation>
    </message>
    <message>
        <source>Exposure</source>
        <translation>Belichtung</translation>
    </message>
    <message>
        <source>Time for which light is collected in one exposure. Near things need a shorter one: 0.4 m saturates after 200 us.</source>
        <translation>Zeit, in der bei einer Belichtung Licht gesammelt wird. Nahe Dinge brauchen eine kürzere: 0,4 m sättigt nach 200 µs.</translation>
    </message>
    <message>
        <source>Scene</source>
        <translation>Szene</translation>
    </message>
    <message>
        <source>What stands in front of the camera.</source>
        <translation>Was vor der Kamera steht.</translation>
    </message>
    <message>
        <source>Room with moving sphere</source>
        <translation>Raum mit bewegter Kugel</translation>
    </message>
    <message>
        <source>Flat wall</source>
        <translation>Ebene Wand</translation>
    </message>
    <message>
        <source>Wall distance</source>
        <translation>Wandabstand</translation>
    </message>
    <message>
        <source>Distance of the flat wall along the optical axis.</source>
        <translation>Abstand der ebenen Wand entlang der optischen Achse.</translation>
    </message>
    <message>
        <source>Wall reflectivity</source>
        <translation>Wandreflexion</translation>
    </message>
    <message>
        <source>Share of the light that the flat wall sends back.</source>
        <translation>Anteil des Lichts, den die ebene Wand zurückwirft.</translation>
    </message>
    <message>
        <source>Ambient light</source>
        <translation>Umgebungslicht</translation>
    </message>
    <message>
        <source>Brightness of the lamps. 100 % is ordinary room light.</source>
        <translation>Helligkeit der Lampen. 100 % ist gewöhnliches Raumlicht.</translation>
    </message>
    <message>
        <source>Noise</source>
        <translation>Rauschen</translation>
    </message>
    <message>
        <source>Shot noise and read noise of the sensor.</source>
        <translation>Schrotrauschen und Ausleserauschen des Sensors.</translation>
    </message>
    <message>
        <source>Noise seed</source>
        <translation>Startwert des Rauschens</translation>
    </message>
    <message>
        <source>The same seed gives the same noise in every frame.</source>
        <translation>Derselbe Startwert ergibt in jedem Bild dasselbe Rauschen.</translation>
    </message>
</context>
<context>
    <name>CkSimCameraDriver</name>
    <message>
        <source>Simulated ToF camera</source>
        <translation>Simulierte ToF-Kamera</translation>
    </message>
    <message>
        <source>Simulated hybrid ToF camera</source>
        <translation>Simulierte Hybrid-ToF-Kamera</translation>
    </message>
    <message>
        <source>Simulated grey camera</source>
        <translation>Simulierte Grauwertkamera</translation>
    </message>
    <message>
        <source>Simulated cameras</source>
        <translation>Simulierte Kameras</translation>
    </message>
    <message>
        <source>Not enough memory to open &quot;%1&quot;.</source>
        <translation>Der Speicher reicht nicht aus, um „%1“ zu öffnen.</translation>
    </message>
    <message>
        <source>There is no simulated camera &quot;%1&quot;.</source>
        <translation>Es gibt keine simulierte Kamera „%1“.</translation>
    </message>
</context>
<context>
    <name>CkStatusBar</name>
    <message>
        <source>Frames that the active view showed in the last second</source>
        <translation>Bilder, die die aktive Ansicht in der letzten Sekunde gezeigt hat</translation>
    </message>
    <message>
        <source>Frames that the active view or its chain lost since the chain was started</source>
        <translation>Bilder, die die aktive Ansicht oder ihre Kette seit dem Start der Kette verloren hat</translation>
    </message>
    <message>
        <source>- frames/s</source>
        <translation>- Bilder/s</translation>
    </message>
    <message>
        <source>%1 dropped</source>
        <translation>%1 verloren</translation>
    </message>
    <message>
        <source>%1 frames/s</source>
        <translation>%1 Bilder/s</translation>
    </message>
</context>
<context>
    <name>CkStillPicture</name>
    <message>
        <source>&quot;%1&quot;, page 1: %2</source>
        <translation>„%1“, Seite 1: %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: there is only one picture.</source>
        <translation>„%1“: Es gibt nur ein Bild.</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: There is not enough memory.</source>
        <translation>„%1“: Der Speicher reicht nicht aus.</translation>
    </message>
</context>
<context>
    <name>CkUnattendedRun</name>
    <message>
        <source>%1: there is no point cloud to write.</source>
        <translation>%1: Es ist keine Punktwolke zum Schreiben da.</translation>
    </message>
    <message>
        <source>%1: there is no 3D scene to take a picture of.</source>
        <translation>%1: Es ist keine 3D-Szene für ein Bild da.</translation>
    </message>
    <message>
        <source>%1: the picture of the 3D scene did not come.</source>
        <translation>%1: Das Bild der 3D-Szene ist ausgeblieben.</translation>
    </message>
    <message>
        <source>%1: the picture of the window cannot be written.</source>
        <translation>%1: Das Bild des Fensters lässt sich nicht schreiben.</translation>
    </message>
    <message numerus="yes">
        <source>Only %1 of %n frame(s) came.</source>
        <translation>
            <numerusform>Es kamen nur %1 von %n Bild.</numerusform>
            <numerusform>Es kamen nur %1 von %n Bildern.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CkVideoSource</name>
    <message>
        <source>&quot;%1&quot;: This is no ordinary file.</source>
        <translation>„%1“: Das ist keine gewöhnliche Datei.</translation>
    </message>
</context>
<context>
    <name>CkViewArea</name>
    <message>
        <source>Close View</source>
        <translation>Ansicht schließen</translation>
    </message>
    <message>
        <source>&quot;%1&quot; holds data that is lost when it closes. Close it?</source>
        <translation>„%1“ enthält Daten, die beim Schließen verloren gehen. Trotzdem schließen?</translation>
    </message>
    <message>
        <source>No view is open.

Open a camera from the Camera menu, a recording with Ctrl+Shift+O,
a chain file with Ctrl+O, or drop files here.</source>
        <translation>Es ist keine Ansicht offen.

Öffnen Sie eine Kamera im Menü „Kamera“, eine Aufnahme mit Strg+Umschalt+O,
eine Kettendatei mit Strg+O, oder ziehen Sie Dateien hierher.</translation>
    </message>
</context>
<context>
    <name>CkViewMeasurement</name>
    <message>
        <source>the camera&apos;s picture was missed</source>
        <translation>das Bild der Kamera wurde verpasst</translation>
    </message>
    <message>
        <source>the camera&apos;s picture does not show it</source>
        <translation>am Bild der Kamera ist es nicht zu erkennen</translation>
    </message>
</context>
<context>
    <name>CkViewMenu</name>
    <message>
        <source>F&amp;ull Screen</source>
        <translation>V&amp;ollbild</translation>
    </message>
    <message>
        <source>&amp;Tile</source>
        <translation>&amp;Nebeneinander</translation>
    </message>
    <message>
        <source>C&amp;ascade</source>
        <translation>&amp;Überlappend</translation>
    </message>
    <message>
        <source>Arrange Auto&amp;matically</source>
        <translation>Auto&amp;matisch anordnen</translation>
    </message>
    <message>
        <source>Tile the views whenever one is opened or closed</source>
        <translation>Die Ansichten neu anordnen, sobald eine dazukommt oder geschlossen wird</translation>
    </message>
    <message>
        <source>&amp;Next View</source>
        <translation>Nä&amp;chste Ansicht</translation>
    </message>
    <message>
        <source>&amp;Previous View</source>
        <translation>&amp;Vorige Ansicht</translation>
    </message>
    <message>
        <source>&amp;Close View</source>
        <translation>Ansicht &amp;schließen</translation>
    </message>
    <message>
        <source>&amp;Default Layout</source>
        <translation>S&amp;tandardanordnung</translation>
    </message>
    <message>
        <source>Put the panels back where they were in the beginning</source>
        <translation>Die Bedienfelder dorthin zurückstellen, wo sie am Anfang waren</translation>
    </message>
    <message>
        <source>Search the &amp;Log</source>
        <translation>Protokoll &amp;durchsuchen</translation>
    </message>
    <message>
        <source>No view is open</source>
        <translation>Es ist keine Ansicht offen</translation>
    </message>
</context>
<context>
    <name>CkViewNoticeController</name>
    <message>
        <source>&quot;%1&quot; is unplugged. The view goes on when it is plugged in again.</source>
        <translation>„%1“ ist abgezogen. Die Ansicht läuft weiter, sobald die Kamera wieder angesteckt ist.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is switched off.</source>
        <translation>„%1“ ist ausgeschaltet.</translation>
    </message>
    <message>
        <source>No picture yet. Start the camera to see one.</source>
        <translation>Noch kein Bild. Starten Sie die Kamera, um eines zu sehen.</translation>
    </message>
    <message>
        <source>No picture yet. The processing chain is stopped.</source>
        <translation>Noch kein Bild. Die Verarbeitungskette ist gestoppt.</translation>
    </message>
    <message>
        <source>No picture yet. Play the recording to see one.</source>
        <translation>Noch kein Bild. Spielen Sie die Aufnahme ab, um eines zu sehen.</translation>
    </message>
    <message>
        <source>No picture yet. The camera runs; the first picture is on its way.</source>
        <translation>Noch kein Bild. Die Kamera läuft; das erste Bild ist unterwegs.</translation>
    </message>
</context>
<context>
    <name>CkViewerSession</name>
    <message>
        <source>There is no camera.</source>
        <translation>Es gibt keine Kamera.</translation>
    </message>
    <message>
        <source>There is no camera &quot;%1&quot;; there are:
%2</source>
        <translation>Es gibt keine Kamera „%1“; vorhanden sind:
%2</translation>
    </message>
    <message>
        <source>No plug-in offers a 3D view.</source>
        <translation>Kein Plug-in bietet eine 3D-Ansicht an.</translation>
    </message>
    <message>
        <source>There is nothing named &quot;%1&quot; to trigger.</source>
        <translation>Es gibt nichts namens „%1“, das ausgelöst werden könnte.</translation>
    </message>
</context>
<context>
    <name>CkXmlReader</name>
    <message>
        <source>line %1, column %2: %3</source>
        <translation>Zeile %1, Spalte %2: %3</translation>
    </message>
    <message>
        <source>elements are nested deeper than %1 levels</source>
        <translation>Elemente sind tiefer als %1 Ebenen verschachtelt</translation>
    </message>
    <message>
        <source>there are more than %1 elements</source>
        <translation>es sind mehr als %1 Elemente</translation>
    </message>
    <message>
        <source>an element has more than %1 attributes</source>
        <translation>ein Element hat mehr als %1 Attribute</translation>
    </message>
    <message>
        <source>there are more than %1 attributes</source>
        <translation>es sind mehr als %1 Attribute</translation>
    </message>
    <message>
        <source>document type declarations are not read</source>
        <translation>Dokumenttypdeklarationen werden nicht gelesen</translation>
    </message>
    <message>
        <source>a tag or text is longer than %1 bytes</source>
        <translation>ein Tag oder Text ist länger als %1 Byte</translation>
    </message>
    <message>
        <source>it is larger than %1 bytes</source>
        <translation>sie ist größer als %1 Byte</translation>
    </message>
    <message>
        <source>it is no ordinary file</source>
        <translation>das ist keine gewöhnliche Datei</translation>
    </message>
</context>
<context>
    <name>PictureFile</name>
    <message>
        <source>plus 32768</source>
        <translation>plus 32768</translation>
    </message>
    <message>
        <source>unchanged</source>
        <translation>unverändert</translation>
    </message>
    <message>
        <source>65536 steps for 2 pi</source>
        <translation>65536 Stufen für 2 Pi</translation>
    </message>
    <message>
        <source>1 step = 0.001 %1</source>
        <translation>1 Stufe = 0,001 %1</translation>
    </message>
    <message>
        <source>There is no picture to save.</source>
        <translation>Es ist kein Bild da, das gespeichert werden könnte.</translation>
    </message>
    <message>
        <source>There is not enough memory for the picture.</source>
        <translation>Der Speicher reicht für das Bild nicht aus.</translation>
    </message>
    <message>
        <source>%1: this format requires the extension .%2.</source>
        <translation>%1: Dieses Format braucht die Endung .%2.</translation>
    </message>
</context>
<context>
    <name>PictureText</name>
    <message>
        <source>Blue</source>
        <translation>Blau</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>Grün</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>Rot</translation>
    </message>
    <message>
        <source>Alpha</source>
        <translation>Alpha</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Channel %1</source>
        <translation>Kanal %1</translation>
    </message>
    <message>
        <source>float</source>
        <translation>Gleitkomma</translation>
    </message>
    <message>
        <source>signed</source>
        <translation>mit Vorzeichen</translation>
    </message>
    <message>
        <source>unsigned</source>
        <translation>ohne Vorzeichen</translation>
    </message>
    <message>
        <source>%1 x %2, %3, %4 bit %5</source>
        <translation>%1 x %2, %3, %4 Bit %5</translation>
    </message>
    <message>
        <source>Phase shift</source>
        <translation>Phase</translation>
    </message>
    <message>
        <source>Confidence</source>
        <translation>Konfidenz</translation>
    </message>
    <message>
        <source>Depth</source>
        <translation>Tiefe</translation>
    </message>
    <message>
        <source>Grey</source>
        <translation>Grau</translation>
    </message>
    <message>
        <source>counts</source>
        <translation>Counts</translation>
    </message>
    <message>
        <source>Inverted grey</source>
        <translation>Grau, umgekehrt</translation>
    </message>
    <message>
        <source>Rainbow</source>
        <translation>Regenbogen</translation>
    </message>
    <message>
        <source>Hot</source>
        <translation>Glut</translation>
    </message>
    <message>
        <source>Violet to yellow</source>
        <translation>Violett bis Gelb</translation>
    </message>
    <message>
        <source>Spectrum</source>
        <translation>Spektrum</translation>
    </message>
    <message>
        <source>Blue to red</source>
        <translation>Blau bis Rot</translation>
    </message>
    <message numerus="yes">
        <source>%n channel(s)</source>
        <translation>
            <numerusform>%n Kanal</numerusform>
            <numerusform>%n Kanäle</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>QualityQuantities</name>
    <message>
        <source>Mean</source>
        <translation>Mittelwert</translation>
    </message>
    <message>
        <source>Mean of the valid pixels of the newest frame</source>
        <translation>Mittelwert der gültigen Pixel des neuesten Bildes</translation>
    </message>
    <message>
        <source>Std. dev. over the region</source>
        <translation>Standardabw. über die Region</translation>
    </message>
    <message>
        <source>Standard deviation of the valid pixels of the newest frame</source>
        <translation>Standardabweichung der gültigen Pixel des neuesten Bildes</translation>
    </message>
    <message>
        <source>Std. dev. over time</source>
        <translation>Standardabw. über die Zeit</translation>
    </message>
    <message>
        <source>How much a pixel varies from frame to frame: quadratic mean of the standard deviations that the pixels have had since the start</source>
        <translation>Wie sehr ein Pixel von Bild zu Bild schwankt: quadratisches Mittel der Standardabweichungen, die die Pixel seit Beginn hatten</translation>
    </message>
    <message>
        <source>Valid pixels</source>
        <translation>Gültige Pixel</translation>
    </message>
    <message>
        <source>Share of pixels that are finite, confident enough and not saturated</source>
        <translation>Anteil der Pixel, die endlich, verlässlich genug und nicht gesättigt sind</translation>
    </message>
    <message>
        <source>Tilt</source>
        <translation>Neigung</translation>
    </message>
    <message>
        <source>Angle between the optical axis and the normal of the plane through the points</source>
        <translation>Winkel zwischen der optischen Achse und der Normalen der Ebene durch die Punkte</translation>
    </message>
    <message>
        <source>Flatness</source>
        <translation>Ebenheit</translation>
    </message>
    <message>
        <source>From the point furthest in front of that plane to the one furthest behind it</source>
        <translation>Vom vordersten Punkt vor dieser Ebene bis zum hintersten dahinter</translation>
    </message>
    <message>
        <source>RMS from the plane</source>
        <translation>RMS zur Ebene</translation>
    </message>
    <message>
        <source>Quadratic mean of the points&apos; distances from that plane</source>
        <translation>Quadratisches Mittel der Abstände der Punkte von dieser Ebene</translation>
    </message>
</context>
<context>
    <name>RecordedChain</name>
    <message>
        <source>The chain in the recording cannot be read: %1.</source>
        <translation>Die Kette in der Aufnahme kann nicht gelesen werden: %1.</translation>
    </message>
    <message>
        <source>it is no chain</source>
        <translation>sie ist keine Kette</translation>
    </message>
</context>
<context>
    <name>Saturation</name>
    <message>
        <source>A minus B does not show whether A and B were saturated</source>
        <translation>An A minus B ist nicht zu erkennen, ob A und B gesättigt waren</translation>
    </message>
    <message>
        <source>Samples of this type have no upper limit</source>
        <translation>Werte dieser Art haben keinen Höchstwert</translation>
    </message>
    <message>
        <source>A computed picture does not show it; the picture of the camera does</source>
        <translation>An einem berechneten Bild ist es nicht zu erkennen, aber am Bild der Kamera</translation>
    </message>
</context>
<context>
    <name>SaveFileName</name>
    <message>
        <source>&quot;%1&quot;: files with the extension .%2 cannot be written here.

Possible extensions: %3.</source>
        <translation>„%1“: Mit der Endung .%2 wird hier nichts geschrieben.

Diese Endungen gibt es: %3.</translation>
    </message>
    <message>
        <source>%1 already exists.
Do you want to replace it?</source>
        <translation>%1 gibt es schon.
Soll die Datei ersetzt werden?</translation>
    </message>
</context>
</TS>
