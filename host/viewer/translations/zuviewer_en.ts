<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>CkQualityPanel</name>
    <message numerus="yes">
        <source>%1: region at %2, %3 of %4 x %5 pixels, %n frame(s)</source>
        <translation>
            <numerusform>%1: region at %2, %3 of %4 x %5 pixels, %n frame</numerusform>
            <numerusform>%1: region at %2, %3 of %4 x %5 pixels, %n frames</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CkQualityPlot</name>
    <message numerus="yes">
        <source>last %n frame(s)</source>
        <translation>
            <numerusform>last frame</numerusform>
            <numerusform>last %n frames</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CkRecordingController</name>
    <message numerus="yes">
        <source>&lt;span style=&apos;color:#d02020&apos;&gt;●&lt;/span&gt; Recording: %n frame(s)</source>
        <translation>
            <numerusform>&lt;span style=&apos;color:#d02020&apos;&gt;●&lt;/span&gt; Recording: %n frame</numerusform>
            <numerusform>&lt;span style=&apos;color:#d02020&apos;&gt;●&lt;/span&gt; Recording: %n frames</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CkRecordingManager</name>
    <message numerus="yes">
        <source>%1: %n frame(s) recorded, %2 dropped</source>
        <translation>
            <numerusform>%1: %n frame recorded, %2 dropped</numerusform>
            <numerusform>%1: %n frames recorded, %2 dropped</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The %n frame(s) before it are in the file and can be opened.</source>
        <translation>
            <numerusform>The frame before it is in the file and can be opened.</numerusform>
            <numerusform>The %n frames before it are in the file and can be opened.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n frame(s) were lost.</source>
        <translation>
            <numerusform>%n frame was lost.</numerusform>
            <numerusform>%n frames were lost.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CkRecordingOpener</name>
    <message numerus="yes">
        <source>Opening &quot;%1&quot;: %n frame(s) so far</source>
        <translation>
            <numerusform>Opening &quot;%1&quot;: %n frame so far</numerusform>
            <numerusform>Opening &quot;%1&quot;: %n frames so far</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CkRecordingPanel</name>
    <message numerus="yes">
        <source>%n frame(s), %1, %2</source>
        <translation>
            <numerusform>%n frame, %1, %2</numerusform>
            <numerusform>%n frames, %1, %2</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CkUnattendedRun</name>
    <message numerus="yes">
        <source>Only %1 of %n frame(s) came.</source>
        <translation>
            <numerusform>Only %1 of %n frame came.</numerusform>
            <numerusform>Only %1 of %n frames came.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PictureText</name>
    <message numerus="yes">
        <source>%n channel(s)</source>
        <translation>
            <numerusform>%n channel</numerusform>
            <numerusform>%n channels</numerusform>
        </translation>
    </message>
</context>
</TS>
