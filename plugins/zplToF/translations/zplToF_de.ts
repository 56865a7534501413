<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>CkToF3DMdiView</name>
    <message>
        <source> (ToF 3D)</source>
        <translation> (ToF 3D)</translation>
    </message>
    <message>
        <source>ToF 3D view</source>
        <translation>ToF-3D-Ansicht</translation>
    </message>
    <message>
        <source>Settings...</source>
        <translation>Einstellungen...</translation>
    </message>
    <message>
        <source>Z-Zoom</source>
        <translation>Z-Zoom</translation>
    </message>
    <message>
        <source>Screenshot</source>
        <translation>Bildschirmfoto</translation>
    </message>
    <message>
        <source>Export data</source>
        <translation>Daten exportieren</translation>
    </message>
    <message>
        <source>Default position</source>
        <translation>Ausgangsposition</translation>
    </message>
    <message>
        <source>Error creating 3D widget. Please make sure OpenGL drivers are avilable on your computer.</source>
        <translation>Die 3D-Anzeige konnte nicht erstellt werden. Bitte prüfen Sie, ob auf Ihrem Rechner OpenGL-Treiber vorhanden sind.</translation>
    </message>
    <message>
        <source>Save Screenshot to File</source>
        <translation>Bildschirmfoto in Datei speichern</translation>
    </message>
    <message>
        <source>Width: %1 m Height: %2 m Depth: %3 m</source>
        <translation>Breite: %1 m Höhe: %2 m Tiefe: %3 m</translation>
    </message>
</context>
<context>
    <name>CkToFCalibrateOffsetDlg</name>
    <message>
        <source>Calibrate ToF Distance Offset</source>
        <translation>ToF-Abstandsversatz kalibrieren</translation>
    </message>
    <message>
        <source>To calibrate ToF camera offset value, please place the camera in front of a wall, facing it at distance 40 cm (15&quot;).

The cffset will be applied in the ToF 3D view.</source>
        <translation>Um den Abstandsversatz der ToF-Kamera zu kalibrieren, stellen Sie die Kamera bitte im Abstand von 40 cm (15&quot;) so auf, dass sie auf eine Wand blickt.

Der Versatz wird in der ToF-3D-Ansicht angewendet.</translation>
    </message>
    <message>
        <source>Frames to average:</source>
        <translation>Bilder für den Mittelwert:</translation>
    </message>
    <message>
        <source>Number of frames that are averaged, 3 to 9.
More frames make the offset less noisy and take longer.</source>
        <translation>Anzahl der Bilder, die gemittelt werden, 3 bis 9.
Mehr Bilder mindern das Rauschen des Versatzes und dauern länger.</translation>
    </message>
    <message>
        <source>Camera distance:</source>
        <translation>Kameraabstand:</translation>
    </message>
    <message>
        <source>True distance from the camera to the wall in the unit beside.
The offset makes up for what the camera measures differently.</source>
        <translation>Wahrer Abstand der Kamera von der Wand in der Einheit daneben.
Der Versatz gleicht aus, was die Kamera abweichend misst.</translation>
    </message>
    <message>
        <source>Unit of the distance and of the result. One inch is 2.54 cm.</source>
        <translation>Einheit des Abstands und des Ergebnisses. Ein Zoll sind 2,54 cm.</translation>
    </message>
    <message>
        <source>cm</source>
        <translation>cm</translation>
    </message>
    <message>
        <source>inches</source>
        <translation>Zoll</translation>
    </message>
    <message>
        <source>Progress:</source>
        <translation>Fortschritt:</translation>
    </message>
    <message>
        <source>Please set the distance as decimal number.</source>
        <translation>Bitte geben Sie den Abstand als Dezimalzahl ein.</translation>
    </message>
    <message>
        <source>Unexpected image format received. Calibration expects phase shift image as input.</source>
        <translation>Unerwartetes Bildformat empfangen. Die Kalibrierung erwartet ein Phasenverschiebungsbild.</translation>
    </message>
    <message>
        <source>Progresss: %1 / %2</source>
        <translation>Fortschritt: %1 / %2</translation>
    </message>
    <message>
        <source>Modulation frequency not present in image metadata.</source>
        <translation>Die Modulationsfrequenz fehlt in den Bildmetadaten.</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Ergebnis</translation>
    </message>
    <message>
        <source>Measured distance: %1 %2

Calculated offset: %3 %2</source>
        <translation>Gemessener Abstand: %1 %2

Berechneter Versatz: %3 %2</translation>
    </message>
</context>
<context>
    <name>CkToFOpticalPathSettingsDlg</name>
    <message>
        <source>3D View Settings</source>
        <translation>Einstellungen der 3D-Ansicht</translation>
    </message>
    <message>
        <source>Confidence threshold:</source>
        <translation>Konfidenzschwelle:</translation>
    </message>
    <message>
        <source>Largest confidence value that still counts (no unit; lower is better).
Pixels above it are not shown. Acts at once.</source>
        <translation>Größter Konfidenzwert, der noch zählt (ohne Einheit; kleiner ist besser).
Pixel darüber werden nicht gezeigt. Wirkt sofort.</translation>
    </message>
    <message>
        <source>0.01</source>
        <translation>0,01</translation>
    </message>
    <message>
        <source>On: the points are placed in mm along the rays of the lens.
Off: the distance is shown over the flat picture.</source>
        <translation>Ein: Die Punkte liegen in mm auf den Strahlen des Objektivs.
Aus: Der Abstand wird über dem flachen Bild gezeigt.</translation>
    </message>
    <message>
        <source>Show with lens projection</source>
        <translation>Mit Objektivprojektion anzeigen</translation>
    </message>
    <message>
        <source>Optical path parameters</source>
        <translation>Parameter des Strahlengangs</translation>
    </message>
    <message>
        <source>ToF modulation frequency:</source>
        <translation>ToF-Modulationsfrequenz:</translation>
    </message>
    <message>
        <source>Modulation frequency of the light source in MHz.
Half of its wavelength is the largest distance that can be told apart.</source>
        <translation>Modulationsfrequenz der Lichtquelle in MHz.
Die halbe Wellenlänge ist der größte eindeutige Abstand.</translation>
    </message>
    <message>
        <source>MHz</source>
        <translation>MHz</translation>
    </message>
    <message>
        <source>Optical center offset X:</source>
        <translation>Versatz der optischen Mitte X:</translation>
    </message>
    <message>
        <source>Where the optical axis meets the chip, in mm to the right of the picture center.
Shifts the point cloud sideways.</source>
        <translation>Wo die optische Achse den Chip trifft, in mm rechts der Bildmitte.
Verschiebt die Punktwolke seitwärts.</translation>
    </message>
    <message>
        <source>mm (right)</source>
        <translation>mm (rechts)</translation>
    </message>
    <message>
        <source>Y:</source>
        <translation>Y:</translation>
    </message>
    <message>
        <source>Where the optical axis meets the chip, in mm above the picture center.
Shifts the point cloud up or down.</source>
        <translation>Wo die optische Achse den Chip trifft, in mm über der Bildmitte.
Verschiebt die Punktwolke nach oben oder unten.</translation>
    </message>
    <message>
        <source>mm (up)</source>
        <translation>mm (oben)</translation>
    </message>
    <message>
        <source>Lens focal length:</source>
        <translation>Brennweite des Objektivs:</translation>
    </message>
    <message>
        <source>Focal length of the lens in mm, above 0.
The longer it is, the narrower the point cloud.</source>
        <translation>Brennweite des Objektivs in mm, größer als 0.
Je länger sie ist, desto schmaler die Punktwolke.</translation>
    </message>
    <message>
        <source>mm</source>
        <translation>mm</translation>
    </message>
    <message>
        <source>Chip cell size:</source>
        <translation>Zellgröße des Chips:</translation>
    </message>
    <message>
        <source>Distance between two pixels on the chip in µm, above 0.
The larger it is, the wider the point cloud.</source>
        <translation>Abstand zweier Pixel auf dem Chip in µm, größer als 0.
Je größer er ist, desto breiter die Punktwolke.</translation>
    </message>
    <message>
        <source>µm</source>
        <translation>µm</translation>
    </message>
    <message>
        <source>Real distance offset:</source>
        <translation>Abstandsversatz:</translation>
    </message>
    <message>
        <source>Offset in m that is added to every measured distance.
The distance offset calibration sets it.</source>
        <translation>Versatz in m, der zu jedem gemessenen Abstand addiert wird.
Die Kalibrierung des Abstandsversatzes setzt ihn.</translation>
    </message>
    <message>
        <source>m</source>
        <translation>m</translation>
    </message>
    <message>
        <source>On: distances along the ray of each pixel are turned into distances along the optical axis, so that a wall is flat.
Acts with lens projection, after OK.</source>
        <translation>Ein: Abstände entlang des Strahls jedes Pixels werden in Abstände entlang der optischen Achse umgerechnet, damit eine Wand eben ist.
Wirkt mit Objektivprojektion, nach OK.</translation>
    </message>
    <message>
        <source>Transform to orthogonal distance</source>
        <translation>In orthogonalen Abstand umrechnen</translation>
    </message>
    <message>
        <source>Frames the volume that can be measured. Acts at once.</source>
        <translation>Rahmt den Messraum ein. Wirkt sofort.</translation>
    </message>
    <message>
        <source>Show bounding box</source>
        <translation>Begrenzungsquader anzeigen</translation>
    </message>
    <message>
        <source>Background color:</source>
        <translation>Hintergrundfarbe:</translation>
    </message>
    <message>
        <source>Color behind the point cloud. Acts at once.</source>
        <translation>Farbe hinter der Punktwolke. Wirkt sofort.</translation>
    </message>
    <message>
        <source>Shows fewer frames than arrive, to spare the computer.</source>
        <translation>Zeigt weniger Bilder, als ankommen, um den Rechner zu entlasten.</translation>
    </message>
    <message>
        <source>Limit input data refresh rate:</source>
        <translation>Bildrate der Eingangsdaten begrenzen:</translation>
    </message>
    <message>
        <source>Most frames per second that are shown.</source>
        <translation>Höchste Zahl der Bilder pro Sekunde, die gezeigt werden.</translation>
    </message>
    <message>
        <source>FPS</source>
        <translation>Bilder/s</translation>
    </message>
    <message>
        <source>Controls:</source>
        <translation>Bedienung:</translation>
    </message>
    <message>
        <source>3D view controls:
 - Left mouse button: move
 - Right mouse button: rotate
 - Wheel: zoom</source>
        <translation>Bedienung der 3D-Ansicht:
 - Linke Maustaste: verschieben
 - Rechte Maustaste: drehen
 - Mausrad: Zoom</translation>
    </message>
</context>
<context>
    <name>CkToFPlugin</name>
    <message>
        <source>Time of Flight Processing (ToF)</source>
        <translation>Time-of-Flight-Verarbeitung (ToF)</translation>
    </message>
    <message>
        <source>Open ToF 3D View</source>
        <translation>ToF-3D-Ansicht öffnen</translation>
    </message>
    <message>
        <source>Open All ToF Processing Views</source>
        <translation>Alle ToF-Verarbeitungsansichten öffnen</translation>
    </message>
    <message>
        <source>Calibrate distance offset...</source>
        <translation>Abstandsversatz kalibrieren...</translation>
    </message>
    <message>
        <source>ToF Images Visualization</source>
        <translation>Darstellung von ToF-Bildern</translation>
    </message>
    <message>
        <source>Plugin for ToF camera output visualization and processing.</source>
        <translation>Plug-in zur Darstellung und Verarbeitung der Bilder von ToF-Kameras.</translation>
    </message>
    <message>
        <source>

Do you want to update the camera parameters automatically?</source>
        <translation>

Sollen die Kameraparameter automatisch angepasst werden?</translation>
    </message>
    <message>
        <source>Invalid input image</source>
        <translation>Ungültiges Eingangsbild</translation>
    </message>
    <message>
        <source>ToF 3D view works with (A and B) RAWX2 image or (A-B) RAW image containing all phases, or the image with ToF phase-shift and confidence, or X1X2X3 RAWX3 image.</source>
        <translation>Die ToF-3D-Ansicht arbeitet mit RAWX2-Bildern (A und B) oder RAW-Bildern (A-B), die alle Phasen enthalten, mit Bildern aus ToF-Phasenverschiebung und Konfidenz oder mit RAWX3-Bildern (X1X2X3).</translation>
    </message>
    <message>
        <source>ToF 3D view expects ToF image containing all phases</source>
        <translation>Die ToF-3D-Ansicht erwartet ein ToF-Bild mit allen Phasen</translation>
    </message>
    <message>
        <source>Please add ToF Processing into the chain before the current view.</source>
        <translation>Bitte fügen Sie vor der aktuellen Ansicht eine ToF-Verarbeitung in die Kette ein.</translation>
    </message>
    <message>
        <source>ToF processing needs (A and B) RAWX2, or (A minus B) RAW image, or X1X2X3 RAWX3 image.</source>
        <translation>Die ToF-Verarbeitung benötigt RAWX2-Bilder (A und B), RAW-Bilder (A minus B) oder RAWX3-Bilder (X1X2X3).</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Active camera is not the ToF camera.</source>
        <translation>Die aktive Kamera ist keine ToF-Kamera.</translation>
    </message>
    <message>
        <source>Cannot set (A and B) or (A-B) reaout mode to camera.</source>
        <translation>Der Auslesemodus (A und B) oder (A-B) konnte an der Kamera nicht eingestellt werden.</translation>
    </message>
    <message>
        <source>Cannot insert ToF processing to chain.</source>
        <translation>Die ToF-Verarbeitung konnte nicht in die Kette eingefügt werden.</translation>
    </message>
    <message>
        <source>ToF Processing:</source>
        <translation>ToF:</translation>
    </message>
    <message>
        <source>Open 3D View</source>
        <translation>3D-Ansicht öffnen</translation>
    </message>
    <message>
        <source>No view is active</source>
        <translation>Es ist keine Ansicht aktiv</translation>
    </message>
    <message>
        <source>The active view does not show a ToF camera</source>
        <translation>Die aktive Ansicht zeigt keine ToF-Kamera</translation>
    </message>
</context>
<context>
    <name>CkToFProcessCnbl</name>
    <message>
        <source>The input image data type is not supported.</source>
        <translation>Der Datentyp des Eingangsbilds wird nicht unterstützt.</translation>
    </message>
    <message>
        <source>The input image must be RAWX2 image with A and B channel.</source>
        <translation>Das Eingangsbild muss ein RAWX2-Bild mit Kanal A und B sein.</translation>
    </message>
    <message>
        <source>The input image must be RAWX2 image with A and B channel, or RAW A minus B ToF image, or X1X2X3 ToF image.</source>
        <translation>Das Eingangsbild muss ein RAWX2-Bild mit Kanal A und B, ein RAW-ToF-Bild A minus B oder ein ToF-Bild X1X2X3 sein.</translation>
    </message>
    <message>
        <source>The input image must be RAWX2 image with A and B channels, or RAW A minus B ToF image, or X1X2X3 ToF image.</source>
        <translation>Das Eingangsbild muss ein RAWX2-Bild mit den Kanälen A und B, ein RAW-ToF-Bild A minus B oder ein ToF-Bild X1X2X3 sein.</translation>
    </message>
    <message>
        <source>2 phases processing requires phases with 0 and 90 deg.</source>
        <translation>Die Verarbeitung von 2 Phasen benötigt Phasen mit 0 und 90 Grad.</translation>
    </message>
    <message>
        <source>4 phases processing requires phases with 0, 90, 180 and 270 deg.</source>
        <translation>Die Verarbeitung von 4 Phasen benötigt Phasen mit 0, 90, 180 und 270 Grad.</translation>
    </message>
    <message>
        <source>8 phases processing requires phases with 0, 45, 90, 135, 180, 225, 270 and 315 deg.</source>
        <translation>Die Verarbeitung von 8 Phasen benötigt Phasen mit 0, 45, 90, 135, 180, 225, 270 und 315 Grad.</translation>
    </message>
    <message>
        <source>ToF processing requires 2, 4 or 8 phases.</source>
        <translation>Die ToF-Verarbeitung benötigt 2, 4 oder 8 Phasen.</translation>
    </message>
    <message>
        <source>Processes ToF images.&lt;ul&gt;&lt;li&gt;&lt;b&gt;Phase shift&lt;/b&gt;: measured phase shift between sent and reflected light. [0; 2PI]&lt;/li&gt;&lt;li&gt;&lt;b&gt;Amplitude&lt;/b&gt;: strength of the reflected light&lt;/li&gt;&lt;li&gt;&lt;b&gt;Intensity&lt;/b&gt;: strength of the ambient light&lt;/li&gt;&lt;li&gt;&lt;b&gt;Confidence&lt;/b&gt;: standard deviation of phase shift measurement. (lower is better)&lt;/li&gt;&lt;/ul&gt;Phase shift of 2PI is equivalent to the maximum measurable distance.</source>
        <translation>Verarbeitet ToF-Bilder.&lt;ul&gt;&lt;li&gt;&lt;b&gt;Phasenverschiebung&lt;/b&gt;: gemessene Phasenverschiebung zwischen gesendetem und reflektiertem Licht. [0; 2PI]&lt;/li&gt;&lt;li&gt;&lt;b&gt;Amplitude&lt;/b&gt;: Stärke des reflektierten Lichts&lt;/li&gt;&lt;li&gt;&lt;b&gt;Intensität&lt;/b&gt;: Stärke des Umgebungslichts&lt;/li&gt;&lt;li&gt;&lt;b&gt;Konfidenz&lt;/b&gt;: Standardabweichung der Phasenmessung. (kleiner ist besser)&lt;/li&gt;&lt;/ul&gt;Eine Phasenverschiebung von 2PI entspricht dem größten messbaren Abstand.</translation>
    </message>
    <message>
        <source>The set of phase images needs more than 1 GiB of memory.</source>
        <translation>Der Satz der Phasenbilder benötigt mehr als 1 GiB Speicher.</translation>
    </message>
    <message>
        <source>The block works on pictures only.</source>
        <translation>Der Block arbeitet nur mit Bildern.</translation>
    </message>
    <message>
        <source>The picture has no pixels.</source>
        <translation>Das Bild hat keine Pixel.</translation>
    </message>
    <message>
        <source>The block is set to a transform that does not exist. Choose one of those in its settings.</source>
        <translation>Der Block ist auf eine Umrechnung eingestellt, die es nicht gibt. Wählen Sie eine von denen in seinen Einstellungen.</translation>
    </message>
    <message>
        <source>There is not enough memory for the images of a set.</source>
        <translation>Der Speicher reicht nicht für die Bilder eines Satzes.</translation>
    </message>
    <message>
        <source>The images of the set have another number or size than the chain was started for. Stop the chain and start it again.</source>
        <translation>Anzahl oder Größe der Bilder des Satzes sind andere als beim Start der Kette. Stoppen Sie die Kette und starten Sie sie neu.</translation>
    </message>
    <message>
        <source>The index of the image is outside its set.</source>
        <translation>Der Index des Bilds liegt außerhalb seines Satzes.</translation>
    </message>
    <message>
        <source>The chain was started for sections without a reference section. Stop the chain and start it again.</source>
        <translation>Die Kette wurde für Abschnitte ohne Referenzabschnitt gestartet. Stoppen Sie die Kette und starten Sie sie neu.</translation>
    </message>
    <message>
        <source>The section has another size or sample type than its reference section.</source>
        <translation>Der Abschnitt hat eine andere Größe oder einen anderen Datentyp als sein Referenzabschnitt.</translation>
    </message>
    <message>
        <source>There is nothing to merge: the hybrid picture has fewer than two sections.</source>
        <translation>Es gibt nichts zu verrechnen: Das Hybridbild hat weniger als zwei Abschnitte.</translation>
    </message>
    <message>
        <source>Nothing is left of the picture: it has too few rows for its phases, or too few columns.</source>
        <translation>Vom Bild bleibt nichts übrig: Es hat zu wenige Zeilen für seine Phasen oder zu wenige Spalten.</translation>
    </message>
    <message>
        <source>Pictures of this sample type or layout cannot be processed.</source>
        <translation>Bilder dieses Datentyps oder Aufbaus können nicht verarbeitet werden.</translation>
    </message>
</context>
<context>
    <name>CkToFProcessWidget</name>
    <message>
        <source>ToF Image Processing</source>
        <translation>ToF-Bildverarbeitung</translation>
    </message>
    <message>
        <source>Intensity [in: RawX2 (A and B), Raw Hybrid ToF]</source>
        <translation>Intensität [Eingang: RawX2 (A und B), Raw-Hybrid-ToF]</translation>
    </message>
    <message>
        <source>Amplitude [in: RawX2 (A and B), Raw (A-B), Raw Hybrid ToF]</source>
        <translation>Amplitude [Eingang: RawX2 (A und B), Raw (A-B), Raw-Hybrid-ToF]</translation>
    </message>
    <message>
        <source>Phase shift (depth) and confidence [in: RawX2 (A and B), Raw (A-B), Raw Hybrid ToF]</source>
        <translation>Phasenverschiebung (Tiefe) und Konfidenz [Eingang: RawX2 (A und B), Raw (A-B), Raw-Hybrid-ToF]</translation>
    </message>
    <message>
        <source>Concatenate phases coming as separate images from camera</source>
        <translation>Einzeln von der Kamera kommende Phasen zusammenfügen</translation>
    </message>
</context>
</TS>
