<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AdjustProjectAspectDialog</name>
    <message>
        <location filename="../library/AppUtil/Dialog/NoticeDialogs.cpp" line="+110"/>
        <source>Adding files</source>
        <translation>Dateien hinzufügen</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>The aspect ratio of your files doesn&apos;t match the project</source>
        <translation>Das Seitenverhältnis Ihrer Dateien passt nicht zum Projekt</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Change the project settings to match the files?</source>
        <translation>Projekteinstellungen an die Dateien anpassen?</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Change</source>
        <translation>Ändern</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Don&apos;t Change</source>
        <translation>Nicht ändern</translation>
    </message>
</context>
<context>
    <name>Analyze</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="+80"/>
        <source>The chosen codec is not supported.</source>
        <translation>Der gewählte Codec wird nicht unterstützt.</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>No more space left on device</source>
        <translation>Auf dem Datenträger ist kein Speicherplatz mehr frei</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Sorry, this file is copyright protected and cannot be converted.</source>
        <translation>Diese Datei ist urheberrechtlich geschützt und kann leider nicht umgewandelt werden.</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Out of memory</source>
        <translation>Nicht genügend Arbeitsspeicher</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>The input file is corrupted or missing from the specified location.</source>
        <translation>Die Eingabedatei ist beschädigt oder fehlt am angegebenen Ort.</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>An unknown error has occurred. %1</source>
        <translation>Ein unbekannter Fehler ist aufgetreten. %1</translation>
    </message>
    <message>
        <location line="+86"/>
        <source>The file name cannot be read: it is not valid UTF-8.</source>
        <translation>Der Dateiname kann nicht gelesen werden: Er ist kein gültiges UTF-8.</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>The file is a symbolic link that leads back to itself.</source>
        <translation>Die Datei ist eine symbolische Verknüpfung, die auf sich selbst zurückführt.</translation>
    </message>
</context>
<context>
    <name>CantPasteEffectsDialog</name>
    <message>
        <location filename="../library/AppUtil/Dialog/NoticeDialogs.cpp" line="+45"/>
        <location line="+10"/>
        <source>Effects partially applied</source>
        <translation>Effekte teilweise angewendet</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Some tools require manual setup</source>
        <translation>Einige Werkzeuge müssen von Hand eingerichtet werden</translation>
    </message>
</context>
<context>
    <name>Capture</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="-115"/>
        <source>No more space left on device</source>
        <translation>Auf dem Datenträger ist kein Speicherplatz mehr frei</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Can not create output file</source>
        <translation>Die Ausgabedatei kann nicht erstellt werden</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Out of memory</source>
        <translation>Nicht genügend Arbeitsspeicher</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>An unknown error has occured</source>
        <translation>Ein unbekannter Fehler ist aufgetreten</translation>
    </message>
</context>
<context>
    <name>CaptureTools</name>
    <message>
        <location filename="../app/CaptureTools.cpp" line="+15"/>
        <source>Record the screen</source>
        <translation>Bildschirm aufnehmen</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Capture video</source>
        <translation>Video aufnehmen</translation>
    </message>
    <message>
        <location line="+17"/>
        <source>Capture needs the editor&apos;s inter-process layer, which is not running.</source>
        <translation>Für die Aufnahme wird die Prozesskommunikation des Editors benötigt, die nicht läuft.</translation>
    </message>
    <message>
        <location line="+28"/>
        <source>No capture application is installed.</source>
        <translation>Es ist keine Aufnahmeanwendung installiert.</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>A capture application is starting or running.</source>
        <translation>Eine Aufnahmeanwendung startet oder läuft bereits.</translation>
    </message>
</context>
<context>
    <name>Common</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="-56"/>
        <source>An unknown error has occurred</source>
        <translation>Ein unbekannter Fehler ist aufgetreten</translation>
    </message>
    <message>
        <location line="+138"/>
        <source>Please contact us at %1 to get assistance.</source>
        <translation>Bitte wenden Sie sich an %1, um Hilfe zu erhalten.</translation>
    </message>
</context>
<context>
    <name>Customization</name>
    <message>
        <location filename="../library/AppUtil/Customization.cpp" line="+91"/>
        <source>SupportCenter</source>
        <translation>Support-Center</translation>
    </message>
</context>
<context>
    <name>DialogGallery</name>
    <message>
        <location filename="../app/DialogGallery.cpp" line="+79"/>
        <source>The name cannot be empty</source>
        <translation>Der Name darf nicht leer sein</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>A project with this name exists and will be replaced</source>
        <translation>Ein Projekt mit diesem Namen ist vorhanden und wird ersetzt</translation>
    </message>
    <message>
        <location line="+18"/>
        <location line="+1"/>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <location line="-1"/>
        <source>The project has clips shorter than one frame. Export anyway?</source>
        <translation>Das Projekt enthält Clips, die kürzer als ein Bild sind. Trotzdem exportieren?</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Don&apos;t ask again</source>
        <translation>Nicht mehr fragen</translation>
    </message>
    <message>
        <source>OpenGL activation</source>
        <translation type="obsolete">OpenGL-Aktivierung</translation>
    </message>
    <message>
        <source>The program will restart to activate OpenGL. It can take some time.</source>
        <translation type="obsolete">Das Programm wird neu gestartet, um OpenGL zu aktivieren. Das kann einige Zeit dauern.</translation>
    </message>
    <message>
        <source>Restart</source>
        <translation type="obsolete">Neu starten</translation>
    </message>
    <message>
        <location line="+16"/>
        <source>Tip</source>
        <translation>Tipp</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Hold &lt;b&gt;Shift&lt;/b&gt; while dragging to snap clips to the playhead.</source>
        <translation>Halten Sie beim Ziehen die &lt;b&gt;Umschalttaste&lt;/b&gt; gedrückt, um Clips am Abspielkopf einrasten zu lassen.</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Don&apos;t show this again</source>
        <translation>Nicht mehr anzeigen</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Low disk space</source>
        <translation>Wenig Speicherplatz</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Less than 1 GB is free on the export drive.</source>
        <translation>Auf dem Exportlaufwerk ist weniger als 1 GB frei.</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Save project as</source>
        <translation>Projekt speichern unter</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Project name:</source>
        <translation>Projektname:</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>New folder</source>
        <translation>Neuer Ordner</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Create</source>
        <translation>Erstellen</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Folder name</source>
        <translation>Ordnername</translation>
    </message>
</context>
<context>
    <name>DialogStrategy</name>
    <message>
        <location filename="../library/AppUtil/Dialog/DefaultDialogStrategy.cpp" line="+72"/>
        <source>Save project</source>
        <translation>Projekt speichern</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Warning! Current project is not saved. Save project before operation?</source>
        <translation>Achtung! Das aktuelle Projekt ist nicht gespeichert. Projekt vor dem Vorgang speichern?</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Don&apos;t save</source>
        <translation>Nicht speichern</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>File &quot;%1&quot; already exists. Overwrite it?</source>
        <translation>Die Datei „%1“ ist bereits vorhanden. Überschreiben?</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>File exists</source>
        <translation>Datei vorhanden</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Folder &quot;%1&quot; already exists. Overwrite it?</source>
        <translation>Der Ordner „%1“ ist bereits vorhanden. Überschreiben?</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Folder exist</source>
        <translation>Ordner vorhanden</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Recover editing session</source>
        <translation>Bearbeitungssitzung wiederherstellen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Your last editing session ended unexpectedly. Do you want to restore it?</source>
        <translation>Ihre letzte Bearbeitungssitzung wurde unerwartet beendet. Möchten Sie sie wiederherstellen?</translation>
    </message>
    <message>
        <location line="+79"/>
        <location filename="../library/AppUtil/FileOpenHandler.cpp" line="+268"/>
        <source>Some of the files can&apos;t be opened.</source>
        <translation>Einige Dateien können nicht geöffnet werden.</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>&lt;br&gt;Please choose:&lt;br&gt;Remove unopened files from the project or keep them?</source>
        <translation>&lt;br&gt;Bitte wählen Sie:&lt;br&gt;Nicht geöffnete Dateien aus dem Projekt entfernen oder behalten?</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Can&apos;t open files</source>
        <translation>Dateien können nicht geöffnet werden</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Keep</source>
        <translation>Behalten</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <location line="+50"/>
        <source>Unknown problem has been detected.&lt;br&gt;&lt;br&gt;Please contact us at %1 to solve this problem.</source>
        <translation>Ein unbekanntes Problem ist aufgetreten.&lt;br&gt;&lt;br&gt;Bitte wenden Sie sich an %1, um das Problem zu lösen.</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Critical error</source>
        <translation>Kritischer Fehler</translation>
    </message>
    <message>
        <location line="+22"/>
        <source>Could not find the file %1 at the specified location: %2. The file may have been moved or deleted. Click Browse to find the file at its new location.</source>
        <translation>Die Datei %1 wurde am angegebenen Ort nicht gefunden: %2. Die Datei wurde möglicherweise verschoben oder gelöscht. Klicken Sie auf „Durchsuchen“, um die Datei an ihrem neuen Ort zu finden.</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Can&apos;t open the file</source>
        <translation>Die Datei kann nicht geöffnet werden</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Browse</source>
        <translation>Durchsuchen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Skip</source>
        <translation>Überspringen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Abort</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>Export</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="-123"/>
        <source>The chosen codec is not supported.</source>
        <translation>Der gewählte Codec wird nicht unterstützt.</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Can&apos;t export project because of problem with the Intel graphics chip. Try disabling Intel hardware acceleration in the Preferences.</source>
        <translation>Das Projekt kann wegen eines Problems mit dem Intel-Grafikchip nicht exportiert werden. Deaktivieren Sie die Intel-Hardwarebeschleunigung in den Einstellungen.</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>The frame size is not supported by selected codec encoding implementation.</source>
        <translation>Die Bildgröße wird von der gewählten Codec-Implementierung nicht unterstützt.</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Can not create output file</source>
        <translation>Die Ausgabedatei kann nicht erstellt werden</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>The input file is corrupted or missing from the specified location.</source>
        <translation>Die Eingabedatei ist beschädigt oder fehlt am angegebenen Ort.</translation>
    </message>
</context>
<context>
    <name>ExternalResourceInfoDialog</name>
    <message>
        <location filename="../library/AppUtil/Dialog/NoticeDialogs.cpp" line="+175"/>
        <location line="+5"/>
        <source>About this resource</source>
        <translation>Über diese Ressource</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Artist</source>
        <translation>Künstler</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>License</source>
        <translation>Lizenz</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Allowed</source>
        <translation>Erlaubt</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Not allowed</source>
        <translation>Nicht erlaubt</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Commercial use</source>
        <translation>Kommerzielle Nutzung</translation>
    </message>
</context>
<context>
    <name>FileOpenHandler</name>
    <message>
        <location filename="../library/AppUtil/FileOpenHandler.cpp" line="-32"/>
        <source>&lt;b&gt;%1&lt;/b&gt;: %2</source>
        <translation>&lt;b&gt;%1&lt;/b&gt;: %2</translation>
    </message>
    <message numerus="yes">
        <location line="+3"/>
        <source>and %n more file(s)</source>
        <translation>
            <numerusform>und %n weitere Datei</numerusform>
            <numerusform>und %n weitere Dateien</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>FreezeFrame</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="+89"/>
        <source>No more space left on device</source>
        <translation>Auf dem Datenträger ist kein Speicherplatz mehr frei</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Can not create output file</source>
        <translation>Die Ausgabedatei kann nicht erstellt werden</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Out of memory</source>
        <translation>Nicht genügend Arbeitsspeicher</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>An unknown error has occurred. %1</source>
        <translation>Ein unbekannter Fehler ist aufgetreten. %1</translation>
    </message>
</context>
<context>
    <name>GeneralButtonsTr</name>
    <message>
        <location filename="../platform/ui/Util/GeneralButtonsTr.cpp" line="+7"/>
        <source>Got It</source>
        <translation>Verstanden</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Do not show this again</source>
        <translation>Nicht mehr anzeigen</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Learn more</source>
        <translation>Mehr erfahren</translation>
    </message>
</context>
<context>
    <name>HostServices</name>
    <message>
        <location filename="../app/HostServices.cpp" line="+66"/>
        <location line="+22"/>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <location line="-21"/>
        <source>Supported &amp;formats</source>
        <translation>Unterstützte &amp;Formate</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Support center</source>
        <translation>&amp;Support-Center</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Contact support</source>
        <translation>Support &amp;kontaktieren</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Home page</source>
        <translation>&amp;Startseite</translation>
    </message>
    <message>
        <location line="+22"/>
        <source>Standard &amp;dialogs</source>
        <translation>Standard&amp;dialoge</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <location filename="../app/MainWindow.cpp" line="+121"/>
        <location line="+47"/>
        <source>Import</source>
        <translation>Import</translation>
    </message>
    <message>
        <location line="-46"/>
        <source>Drop media files here, name them on the command line, or launch the editor again with files: they appear in the media bin.</source>
        <translation>Legen Sie Mediendateien hier ab, nennen Sie sie auf der Befehlszeile oder starten Sie den Editor erneut mit Dateien: Sie erscheinen in der Medienablage.</translation>
    </message>
    <message>
        <location line="+2"/>
        <location line="+45"/>
        <source>Tools</source>
        <translation>Werkzeuge</translation>
    </message>
    <message>
        <location line="-45"/>
        <source>Capture the screen or a camera.</source>
        <translation>Bildschirm oder Kamera aufnehmen.</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Slideshow</source>
        <translation>Diashow</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Slideshow mode</source>
        <translation>Diashow-Modus</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Media bin</source>
        <translation>Medienablage</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Ready</source>
        <translation>Bereit</translation>
    </message>
    <message>
        <location line="+12"/>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Import</source>
        <translation>&amp;Import</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Tools</source>
        <translation>&amp;Werkzeuge</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
    <message numerus="yes">
        <location line="+34"/>
        <location line="+9"/>
        <source>%n file(s) added</source>
        <translation>
            <numerusform>%n Datei hinzugefügt</numerusform>
            <numerusform>%n Dateien hinzugefügt</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location line="+1"/>
        <source>%n file(s) added, %1 could not be opened</source>
        <translation>
            <numerusform>%n Datei hinzugefügt, %1 konnte(n) nicht geöffnet werden</numerusform>
            <numerusform>%n Dateien hinzugefügt, %1 konnte(n) nicht geöffnet werden</numerusform>
        </translation>
    </message>
    <message>
        <location line="+21"/>
        <source>Slideshow: waiting for files</source>
        <translation>Diashow: warte auf Dateien</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Slide %1 of %2
%3</source>
        <translation>Bild %1 von %2
%3</translation>
    </message>
    <message>
        <location filename="../app/main.cpp" line="+126"/>
        <source>Your Files</source>
        <translation>Ihre Dateien</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Effects</source>
        <translation>Effekte</translation>
    </message>
</context>
<context>
    <name>MediaBin</name>
    <message>
        <location filename="../app/MediaBin.cpp" line="+37"/>
        <source>Opening...</source>
        <translation>Wird geöffnet...</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Can&apos;t be opened: %1</source>
        <translation>Kann nicht geöffnet werden: %1</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>%1 fps</source>
        <translation>%1 fps</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>%1 %2 Hz</source>
        <translation>%1 %2 Hz</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>HDR</source>
        <translation>HDR</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>unsupported: %1</source>
        <translation>nicht unterstützt: %1</translation>
    </message>
    <message>
        <location line="+136"/>
        <source>File information...</source>
        <translation>Dateiinformationen...</translation>
    </message>
    <message>
        <location line="-81"/>
        <location line="+84"/>
        <source>Remove from project</source>
        <translation>Aus dem Projekt entfernen</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="-120"/>
        <location filename="fixed_contexts.cpp" line="+11"/>
        <source>Conversion error. Invalid preset settings: unsupported codec for specified format.</source>
        <translation>Konvertierungsfehler. Ungültige Voreinstellungen: Der Codec wird für das angegebene Format nicht unterstützt.</translation>
    </message>
    <message>
        <location line="+15"/>
        <location filename="fixed_contexts.cpp" line="+1"/>
        <source>No more space left on device</source>
        <translation>Kein Speicherplatz mehr auf dem Gerät</translation>
    </message>
    <message>
        <location line="+2"/>
        <location filename="fixed_contexts.cpp" line="+1"/>
        <source>Sorry, this file is copyright protected and cannot be converted.</source>
        <translation>Diese Datei ist urheberrechtlich geschützt und kann leider nicht konvertiert werden.</translation>
    </message>
    <message>
        <location line="+5"/>
        <location filename="fixed_contexts.cpp" line="+1"/>
        <source>Conversion error. Out of memory. Try reducing the width and height for the output file.</source>
        <translation>Konvertierungsfehler. Nicht genügend Arbeitsspeicher. Verringern Sie Breite und Höhe der Ausgabedatei.</translation>
    </message>
    <message>
        <location filename="../app/main.cpp" line="-1"/>
        <source>Files you added from outside the editor.</source>
        <translation>Dateien, die Sie von außerhalb des Editors hinzugefügt haben.</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Filters, transitions and titles.</source>
        <translation>Filter, Übergänge und Titel.</translation>
    </message>
</context>
<context>
    <name>RestartDialog</name>
    <message>
        <location filename="../app/DialogGallery.cpp" line="-20"/>
        <location filename="fixed_contexts.cpp" line="+3"/>
        <source>OpenGL activation</source>
        <translation>OpenGL-Aktivierung</translation>
    </message>
    <message>
        <location line="+1"/>
        <location filename="fixed_contexts.cpp" line="+1"/>
        <source>The program will restart to activate OpenGL. It can take some time.</source>
        <translation>Das Programm wird neu gestartet, um OpenGL zu aktivieren. Das kann einige Zeit dauern.</translation>
    </message>
    <message>
        <location line="+2"/>
        <location filename="fixed_contexts.cpp" line="+1"/>
        <source>Restart</source>
        <translation>Neu starten</translation>
    </message>
</context>
<context>
    <name>Stabilization</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="+57"/>
        <source>The frame size is not supported by selected codec encoding implementation.</source>
        <translation>Die Bildgröße wird von der gewählten Codec-Implementierung nicht unterstützt.</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>No more space left on device</source>
        <translation>Auf dem Datenträger ist kein Speicherplatz mehr frei</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Sorry, this file is copyright protected and cannot be converted.</source>
        <translation>Diese Datei ist urheberrechtlich geschützt und kann leider nicht umgewandelt werden.</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Can not create output file</source>
        <translation>Die Ausgabedatei kann nicht erstellt werden</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Out of memory</source>
        <translation>Nicht genügend Arbeitsspeicher</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>The input file is corrupted or missing from the specified location.</source>
        <translation>Die Eingabedatei ist beschädigt oder fehlt am angegebenen Ort.</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Path to stabilized files could not be used. Please select a different directory in Preferences.</source>
        <translation>Der Pfad für stabilisierte Dateien kann nicht verwendet werden. Bitte wählen Sie in den Einstellungen einen anderen Ordner.</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>An unknown error has occurred. %1</source>
        <translation>Ein unbekannter Fehler ist aufgetreten. %1</translation>
    </message>
</context>
<context>
    <name>Tavrin::Gui::FileInfoDialog</name>
    <message>
        <location filename="../platform/ui/Gui/FileInfoDialog.cpp" line="+54"/>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>%1 kbps</source>
        <translation>%1 kbit/s</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>File information</source>
        <translation>Dateiinformationen</translation>
    </message>
    <message>
        <location line="+29"/>
        <source>Video</source>
        <translation>Video</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Audio</source>
        <translation>Audio</translation>
    </message>
    <message>
        <location line="+22"/>
        <source>Format:</source>
        <translation>Format:</translation>
    </message>
    <message>
        <location line="+7"/>
        <location line="+45"/>
        <source>Codec:</source>
        <translation>Codec:</translation>
    </message>
    <message>
        <location line="-38"/>
        <source>Frame size:</source>
        <translation>Bildgröße:</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>%1 x %2</source>
        <translation>%1 × %2</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Aspect ratio:</source>
        <translation>Seitenverhältnis:</translation>
    </message>
    <message>
        <location line="+8"/>
        <location line="+29"/>
        <source>Duration:</source>
        <translation>Dauer:</translation>
    </message>
    <message>
        <location line="-22"/>
        <source>Frame rate:</source>
        <translation>Bildrate:</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>%1 fps</source>
        <translation>%1 B/s</translation>
    </message>
    <message>
        <location line="+7"/>
        <location line="+28"/>
        <source>Bit rate:</source>
        <translation>Bitrate:</translation>
    </message>
    <message>
        <location line="-7"/>
        <source>Sample rate:</source>
        <translation>Abtastrate:</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>%1 Hz</source>
        <translation>%1 Hz</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Channels:</source>
        <translation>Kanäle:</translation>
    </message>
</context>
<context>
    <name>UnsupportedCodecInfoDialog</name>
    <message>
        <location filename="../library/AppUtil/Dialog/NoticeDialogs.cpp" line="-116"/>
        <location line="+35"/>
        <source>H.265-encoded files are not supported</source>
        <translation>H.265-kodierte Dateien werden nicht unterstützt</translation>
    </message>
    <message>
        <location line="-22"/>
        <source>%1 the files to a supported format</source>
        <translation>die Dateien in ein unterstütztes Format %1</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>converting</source>
        <translation>konvertieren</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>videos</source>
        <translation>Videos</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>images</source>
        <translation>Bilder</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>purchasing the H.265 support extension for %1 and %2 in the Microsoft Store</source>
        <translation>die H.265-Erweiterung für %1 und %2 im Microsoft Store kaufen</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>purchasing the H.265 support extension for %1 in the Microsoft Store</source>
        <translation>die H.265-Erweiterung für %1 im Microsoft Store kaufen</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>%1 programs cannot correctly display imported files because they do not support the codec. This can be resolved by: %2</source>
        <translation>%1-Programme können die importierten Dateien nicht richtig anzeigen, weil sie den Codec nicht unterstützen. So lässt sich das beheben: %2</translation>
    </message>
</context>
<context>
    <name>mainWindow.codecWarningWindow</name>
    <message>
        <location filename="../library/AppUtil/FileOpenHandler.cpp" line="+22"/>
        <source>Some videos used in this project could not be opened. They may be corrupted, or their codecs &lt;a href=&quot;%1&quot;&gt;are not supported.&lt;/a&gt;</source>
        <translation>Einige Videos dieses Projekts konnten nicht geöffnet werden. Sie sind möglicherweise beschädigt, oder ihre Codecs &lt;a href=&quot;%1&quot;&gt;werden nicht unterstützt.&lt;/a&gt;</translation>
    </message>
</context>
<context>
    <name>mainWindow.hdrColorConversionDialog</name>
    <message>
        <location line="+20"/>
        <source>Automatic color conversion</source>
        <translation>Automatische Farbumwandlung</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>You&apos;ve added an HDR video. We&apos;ve converted it to SDR so the colors in the video are correctly displayed within the program. The changes won&apos;t affect anything you’re working on in %1</source>
        <translation>Sie haben ein HDR-Video hinzugefügt. Wir haben es in SDR umgewandelt, damit die Farben im Programm richtig angezeigt werden. Die Änderungen wirken sich auf nichts aus, woran Sie in %1 arbeiten</translation>
    </message>
</context>
</TS>
