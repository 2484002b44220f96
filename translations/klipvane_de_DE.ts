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
    <name>AdjustmentsPanel</name>
    <message>
        <location filename="../app/AdjustmentsPanel.cpp" line="+26"/>
        <source>mixed</source>
        <translation>gemischt</translation>
    </message>
    <message>
        <location line="+38"/>
        <source>Adjustment</source>
        <translation>Anpassung</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Intensity</source>
        <translation>Intensität</translation>
    </message>
    <message>
        <location line="+0"/>
        <location line="+86"/>
        <source>Bypass</source>
        <translation>Bypass</translation>
    </message>
    <message>
        <location line="-57"/>
        <source>Select clips on the timeline to see their adjustments.</source>
        <translation>Wählen Sie Clips in der Zeitleiste aus, um ihre Anpassungen zu sehen.</translation>
    </message>
    <message numerus="yes">
        <location line="+1"/>
        <source>Adjustments of %n selected clip(s)</source>
        <translation>
            <numerusform>Anpassungen von %n ausgewähltem Clip</numerusform>
            <numerusform>Anpassungen von %n ausgewählten Clips</numerusform>
        </translation>
    </message>
    <message>
        <location line="+34"/>
        <source>The selected clips differ</source>
        <translation>Die ausgewählten Clips unterscheiden sich</translation>
    </message>
    <message>
        <location line="+22"/>
        <source>Bypassed on some of the selected clips</source>
        <translation>Bei einigen der ausgewählten Clips im Bypass</translation>
    </message>
    <message>
        <location line="+17"/>
        <source>Remove from the selected clips</source>
        <translation>Aus den ausgewählten Clips entfernen</translation>
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
        <location filename="../app/CaptureTools.cpp" line="+16"/>
        <source>Record the screen</source>
        <translation>Bildschirm aufnehmen</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Capture video</source>
        <translation>Video aufnehmen</translation>
    </message>
    <message>
        <location line="+19"/>
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
    <name>ClipActions</name>
    <message>
        <location filename="../app/ClipActions.cpp" line="+62"/>
        <source>Change speed</source>
        <translation>Geschwindigkeit ändern</translation>
    </message>
    <message>
        <location line="+6"/>
        <location line="+47"/>
        <source>Reverse</source>
        <translation>Rückwärts abspielen</translation>
    </message>
    <message>
        <location line="-41"/>
        <location line="+43"/>
        <source>Original tone</source>
        <translation>Tonhöhe beibehalten</translation>
    </message>
    <message>
        <location line="-36"/>
        <location line="+38"/>
        <source>Stabilize</source>
        <translation>Stabilisieren</translation>
    </message>
    <message>
        <location line="-24"/>
        <source>Speed</source>
        <translation>Geschwindigkeit</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>%1×</source>
        <translation>%1×</translation>
    </message>
</context>
<context>
    <name>ClipAdjustmentsProvider</name>
    <message>
        <location filename="../library/AppUtil/Editing/ClipAdjustments.cpp" line="+92"/>
        <source>Speed</source>
        <translation>Geschwindigkeit</translation>
    </message>
    <message>
        <location line="+15"/>
        <source>Original tone</source>
        <translation>Tonhöhe beibehalten</translation>
    </message>
    <message>
        <location line="+15"/>
        <source>Reverse</source>
        <translation>Rückwärts</translation>
    </message>
    <message>
        <location line="+72"/>
        <source>Stabilization</source>
        <translation>Stabilisierung</translation>
    </message>
    <message>
        <location line="+46"/>
        <source>Filter: </source>
        <translation>Filter: </translation>
    </message>
    <message>
        <location line="+87"/>
        <source>Remove %1</source>
        <translation>%1 entfernen</translation>
    </message>
</context>
<context>
    <name>ClipServices</name>
    <message>
        <location filename="../app/ClipServices.cpp" line="+51"/>
        <source>Adjustments</source>
        <translation>Anpassungen</translation>
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
        <location filename="../app/DialogGallery.cpp" line="+80"/>
        <source>The name cannot be empty</source>
        <translation>Der Name darf nicht leer sein</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>A project with this name exists and will be replaced</source>
        <translation>Ein Projekt mit diesem Namen ist vorhanden und wird ersetzt</translation>
    </message>
    <message>
        <location line="+28"/>
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
    <name>DisplayMenu</name>
    <message>
        <location filename="../app/DisplayMenu.cpp" line="+72"/>
        <source>&amp;Display</source>
        <translation>&amp;Anzeige</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>&amp;Hardware OpenGL</source>
        <translation>&amp;Hardware-OpenGL</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>&amp;Software OpenGL</source>
        <translation>&amp;Software-OpenGL</translation>
    </message>
    <message>
        <location line="+36"/>
        <location line="+17"/>
        <source>OpenGL</source>
        <translation>OpenGL</translation>
    </message>
    <message>
        <location line="-17"/>
        <source>The editor could not restart. %1 OpenGL will be used from the next start.</source>
        <translation>Der Editor konnte nicht neu gestartet werden. Ab dem nächsten Start wird %1-OpenGL verwendet.</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Software</source>
        <translation>Software</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Hardware</source>
        <translation>Hardware</translation>
    </message>
    <message>
        <location line="+12"/>
        <source>software</source>
        <translation>Software</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>hardware</source>
        <translation>Hardware</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>The editor did not start with %1 OpenGL, so it went back to %2 OpenGL.</source>
        <translation>Der Editor ist mit %1-OpenGL nicht gestartet und ist deshalb zu %2-OpenGL zurückgekehrt.</translation>
    </message>
</context>
<context>
    <name>DropTargets</name>
    <message>
        <location filename="../app/DropTargets.cpp" line="+141"/>
        <source>Edit title</source>
        <translation>Titel bearbeiten</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <location line="+200"/>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Your title</source>
        <translation>Ihr Titel</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Lower third</source>
        <translation>Bauchbinde</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Name — Role</source>
        <translation>Name – Funktion</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Caption</source>
        <translation>Untertitel</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Caption text</source>
        <translation>Untertiteltext</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Drag onto the timeline</source>
        <translation>In die Zeitleiste ziehen</translation>
    </message>
</context>
<context>
    <name>EffectsPage</name>
    <message>
        <location filename="../app/EffectsPage.cpp" line="+52"/>
        <source>Select clips on the timeline, then apply an effect to them, or drag it onto a clip.</source>
        <translation>Wählen Sie Clips in der Zeitleiste aus und wenden Sie dann einen Effekt darauf an, oder ziehen Sie ihn auf einen Clip.</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Apply to selected clips</source>
        <translation>Auf ausgewählte Clips anwenden</translation>
    </message>
    <message>
        <location line="+43"/>
        <source>Apply %1</source>
        <translation>%1 anwenden</translation>
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
        <location filename="../app/HostServices.cpp" line="+71"/>
        <location line="+24"/>
        <location filename="../app/UsageUi.cpp" line="+41"/>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <location line="-23"/>
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
        <location line="+24"/>
        <source>Standard &amp;dialogs</source>
        <translation>Standard&amp;dialoge</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <location filename="../app/MainWindow.cpp" line="+123"/>
        <location line="+48"/>
        <source>Import</source>
        <translation>Import</translation>
    </message>
    <message>
        <location line="-47"/>
        <source>Drop media files here, name them on the command line, or launch the editor again with files: they appear in the media bin.</source>
        <translation>Legen Sie Mediendateien hier ab, nennen Sie sie auf der Befehlszeile oder starten Sie den Editor erneut mit Dateien: Sie erscheinen in der Medienablage.</translation>
    </message>
    <message>
        <location line="+2"/>
        <location line="+46"/>
        <source>Tools</source>
        <translation>Werkzeuge</translation>
    </message>
    <message>
        <location line="-46"/>
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
        <location filename="../app/DisplayMenu.cpp" line="-75"/>
        <location line="+3"/>
        <location filename="../app/MainWindow.cpp" line="+12"/>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <location filename="../app/MainWindow.cpp" line="+2"/>
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
        <location line="+63"/>
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
        <location filename="../app/main.cpp" line="+195"/>
        <source>Your Files</source>
        <translation>Ihre Dateien</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Overlays</source>
        <translation>Einblendungen</translation>
    </message>
    <message>
        <location filename="../app/ClipServices.cpp" line="-5"/>
        <source>Effects</source>
        <translation>Effekte</translation>
    </message>
</context>
<context>
    <name>MediaBin</name>
    <message>
        <location filename="../app/MediaBin.cpp" line="+42"/>
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
        <location line="+159"/>
        <source>File information...</source>
        <translation>Dateiinformationen...</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Show in File Manager</source>
        <translation>Im Dateimanager anzeigen</translation>
    </message>
    <message>
        <location line="-107"/>
        <location line="+105"/>
        <source>Remove from project</source>
        <translation>Aus dem Projekt entfernen</translation>
    </message>
</context>
<context>
    <name>MissingFilesDialog</name>
    <message>
        <location filename="../library/AppUtil/Dialog/MissingFilesDialog/MissingFilesDialog.cpp" line="+111"/>
        <source>Please, specify the folder with lost files</source>
        <translation>Bitte geben Sie den Ordner mit den fehlenden Dateien an</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Your files were moved or deleted, please specify its new location to restore your project.</source>
        <translation>Ihre Dateien wurden verschoben oder gelöscht. Bitte geben Sie ihren neuen Speicherort an, um Ihr Projekt wiederherzustellen.</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Old path</source>
        <translation>Alter Pfad</translation>
    </message>
    <message>
        <location line="+28"/>
        <source>File search in progress...</source>
        <translation>Dateisuche läuft...</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Cancel Search</source>
        <translation>Suche abbrechen</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Skip</source>
        <translation>Überspringen</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Specify folder</source>
        <translation>Ordner angeben</translation>
    </message>
    <message>
        <location line="+77"/>
        <source>Open Directory</source>
        <translation>Ordner öffnen</translation>
    </message>
    <message>
        <location line="+80"/>
        <source>Locate this file</source>
        <translation>Diese Datei suchen</translation>
    </message>
</context>
<context>
    <name>PreviewArea</name>
    <message>
        <location filename="../app/PreviewArea.cpp" line="+87"/>
        <location line="+58"/>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <location line="-56"/>
        <source>Rotate</source>
        <translation>Drehen</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Turns the selected clip a quarter turn clockwise</source>
        <translation>Dreht den ausgewählten Clip um eine Vierteldrehung im Uhrzeigersinn</translation>
    </message>
    <message>
        <location line="+54"/>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <location filename="../app/PreviewScript.cpp" line="+26"/>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
</context>
<context>
    <name>Project</name>
    <message>
        <location filename="../platform/model/Effect/Effect.cpp" line="+139"/>
        <source>unknown effect &quot;%1&quot;</source>
        <translation>unbekannter Effekt „%1“</translation>
    </message>
    <message>
        <location line="+4"/>
        <location filename="../platform/model/Timeline/TimelineModel.cpp" line="+297"/>
        <source>empty</source>
        <translation>leer</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>not a quarter turn</source>
        <translation>keine Vierteldrehung</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>not six numbers</source>
        <translation>keine sechs Zahlen</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>cannot be inverted</source>
        <translation>nicht invertierbar</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>groups nested too deep</source>
        <translation>Gruppen zu tief verschachtelt</translation>
    </message>
    <message>
        <location filename="../platform/model/Project/ProjectFile.cpp" line="+126"/>
        <source>The project could not be written: %1</source>
        <translation>Das Projekt konnte nicht geschrieben werden: %1</translation>
    </message>
    <message>
        <location line="+16"/>
        <source>The file does not exist.</source>
        <translation>Die Datei ist nicht vorhanden.</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>The file is %1 MB; a project is never larger than %2 MB.</source>
        <translation>Die Datei ist %1 MB groß; ein Projekt ist nie größer als %2 MB.</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>The file could not be read: %1</source>
        <translation>Die Datei konnte nicht gelesen werden: %1</translation>
    </message>
    <message>
        <location line="+18"/>
        <source>The file is larger than %1 MB; a project is never that large.</source>
        <translation>Die Datei ist größer als %1 MB; so groß ist ein Projekt nie.</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>The file is damaged or incomplete (%1 at byte %2).</source>
        <translation>Die Datei ist beschädigt oder unvollständig (%1 bei Byte %2).</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>The file is not a Klipvane project.</source>
        <translation>Die Datei ist kein Klipvane-Projekt.</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>The project was saved by a newer version of Klipvane (format %1); this version reads format %2 and older.</source>
        <translation>Das Projekt wurde mit einer neueren Version von Klipvane gespeichert (Format %1); diese Version liest Format %2 und älter.</translation>
    </message>
    <message>
        <location line="+16"/>
        <source>not two whole numbers from 1 to 1000</source>
        <translation>keine zwei ganzen Zahlen von 1 bis 1000</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>neither &quot;video&quot; nor &quot;audio&quot;</source>
        <translation>weder „video“ noch „audio“</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>not an absolute path</source>
        <translation>kein absoluter Pfad</translation>
    </message>
    <message>
        <location line="+28"/>
        <location line="+13"/>
        <source>The project is damaged: %1</source>
        <translation>Das Projekt ist beschädigt: %1</translation>
    </message>
    <message>
        <location filename="../platform/model/Project/Relink.cpp" line="+84"/>
        <source>The folder %1 could not be made.</source>
        <translation>Der Ordner %1 konnte nicht angelegt werden.</translation>
    </message>
    <message>
        <location line="+15"/>
        <source>%1 could not be copied: %2</source>
        <translation>%1 konnte nicht kopiert werden: %2</translation>
    </message>
    <message>
        <location filename="../platform/model/Serialize/JsonReader.cpp" line="+45"/>
        <source>missing</source>
        <translation>fehlt</translation>
    </message>
    <message>
        <location line="+10"/>
        <location line="+85"/>
        <source>not an object</source>
        <translation>kein Objekt</translation>
    </message>
    <message>
        <location line="-75"/>
        <source>not a list</source>
        <translation>keine Liste</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>more than %1 entries</source>
        <translation>mehr als %1 Einträge</translation>
    </message>
    <message>
        <location line="+12"/>
        <source>not a text</source>
        <translation>kein Text</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>longer than %1 characters</source>
        <translation>länger als %1 Zeichen</translation>
    </message>
    <message>
        <location line="+15"/>
        <source>not a number from %1 to %2</source>
        <translation>keine Zahl von %1 bis %2</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>not a whole number from %1 to %2</source>
        <translation>keine ganze Zahl von %1 bis %2</translation>
    </message>
    <message>
        <location line="+12"/>
        <source>not true or false</source>
        <translation>weder wahr noch falsch</translation>
    </message>
    <message>
        <location filename="../platform/model/Serialize/Serialize.cpp" line="+23"/>
        <source>unknown format %1</source>
        <translation>unbekanntes Format %1</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>unknown type &quot;%1&quot;</source>
        <translation>unbekannter Typ „%1“</translation>
    </message>
</context>
<context>
    <name>ProjectController</name>
    <message>
        <location filename="../app/ProjectController.cpp" line="+72"/>
        <source>Timeline</source>
        <translation>Zeitleiste</translation>
    </message>
    <message>
        <location line="+41"/>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>&amp;New</source>
        <translation>&amp;Neu</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Open...</source>
        <translation>Ö&amp;ffnen...</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Save &amp;As...</source>
        <translation>Speichern &amp;unter...</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Save &amp;Portable Project...</source>
        <translation>&amp;Portables Projekt speichern...</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Project se&amp;ttings...</source>
        <translation>Projekt&amp;einstellungen...</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Select &amp;all clips</source>
        <translation>&amp;Alle Clips auswählen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Remove selected clips</source>
        <translation>Ausgewählte Clips &amp;entfernen</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <location line="+38"/>
        <source>Open project</source>
        <translation>Projekt öffnen</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>%1 cannot be opened.

%2</source>
        <translation>%1 kann nicht geöffnet werden.

%2</translation>
    </message>
    <message>
        <location line="+21"/>
        <source>size differs</source>
        <translation>Größe weicht ab</translation>
    </message>
    <message>
        <location line="+72"/>
        <source>Save project</source>
        <translation>Projekt speichern</translation>
    </message>
    <message>
        <location line="+55"/>
        <source>No recent projects</source>
        <translation>Keine zuletzt geöffneten Projekte</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Project settings</source>
        <translation>Projekteinstellungen</translation>
    </message>
    <message>
        <location line="+18"/>
        <source>Frame width</source>
        <translation>Bildbreite</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Frame height</source>
        <translation>Bildhöhe</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Frame rate</source>
        <translation>Bildrate</translation>
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
        <location filename="../app/main.cpp" line="-29"/>
        <source>Files you added from outside the editor.</source>
        <translation>Dateien, die Sie von außerhalb des Editors hinzugefügt haben.</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Titles and captions: drag one onto the timeline.</source>
        <translation>Titel und Untertitel: Ziehen Sie einen davon in die Zeitleiste.</translation>
    </message>
    <message>
        <location filename="../library/AppUtil/FileDialog.cpp" line="+98"/>
        <source>Open Video Files</source>
        <translation>Videodateien öffnen</translation>
    </message>
    <message>
        <location line="+1"/>
        <location line="+181"/>
        <source>Open Audio Files</source>
        <translation>Audiodateien öffnen</translation>
    </message>
    <message>
        <location line="-180"/>
        <source>Open Image Files</source>
        <translation>Bilddateien öffnen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Open Media Files</source>
        <translation>Mediendateien öffnen</translation>
    </message>
    <message>
        <location line="+11"/>
        <location line="+1"/>
        <location line="+1"/>
        <location line="+1"/>
        <location line="+1"/>
        <source>Media Files</source>
        <translation>Mediendateien</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>All Supported Files</source>
        <translation>Alle unterstützten Dateien</translation>
    </message>
    <message>
        <location line="+18"/>
        <source>Failed to open files</source>
        <translation>Dateien konnten nicht geöffnet werden</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Cannot open files: </source>
        <translation>Folgende Dateien können nicht geöffnet werden: </translation>
    </message>
    <message>
        <location line="+45"/>
        <source>Open Folder</source>
        <translation>Ordner öffnen</translation>
    </message>
    <message>
        <location line="+10"/>
        <source>Project files (%1)</source>
        <translation>Projektdateien (%1)</translation>
    </message>
    <message>
        <location line="+59"/>
        <source>Open Lut Table file</source>
        <translation>LUT-Datei öffnen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Lut cube files (%1)</source>
        <translation>LUT-Cube-Dateien (%1)</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Open Project</source>
        <translation>Projekt öffnen</translation>
    </message>
    <message>
        <location line="+22"/>
        <location line="+27"/>
        <source>Save Project</source>
        <translation>Projekt speichern</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Can not save project file</source>
        <translation>Die Projektdatei kann nicht gespeichert werden</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Save Snapshot</source>
        <translation>Schnappschuss speichern</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Snapshot files (%1%2)</source>
        <translation>Schnappschussdateien (%1%2)</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>snapshot</source>
        <translation>Schnappschuss</translation>
    </message>
    <message>
        <location line="+14"/>
        <location line="+9"/>
        <source>Select Folder</source>
        <translation>Ordner auswählen</translation>
    </message>
    <message>
        <location line="+32"/>
        <source>Find missing file:</source>
        <translation>Fehlende Datei suchen:</translation>
    </message>
    <message>
        <location filename="../platform/core/Conf/FormatFile.cpp" line="+27"/>
        <source>Video Files</source>
        <translation>Videodateien</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Audio Files</source>
        <translation>Audiodateien</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Image Files</source>
        <translation>Bilddateien</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>DVD Files</source>
        <translation>DVD-Dateien</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>All Files</source>
        <translation>Alle Dateien</translation>
    </message>
    <message>
        <location filename="../app/ImportMenu.cpp" line="+29"/>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <location line="+53"/>
        <source>Import &amp;Files...</source>
        <translation>&amp;Dateien importieren...</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Import F&amp;older...</source>
        <translation>&amp;Ordner importieren...</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Import &amp;Image Folder...</source>
        <translation>B&amp;ildordner importieren...</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Save &amp;Snapshot...</source>
        <translation>S&amp;chnappschuss speichern...</translation>
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
    <name>Timeline</name>
    <message>
        <location filename="../library/AppUtil/Editing/ClipAdjustments.cpp" line="-16"/>
        <location filename="../platform/model/Timeline/TimelineModel.cpp" line="+1023"/>
        <source>Change %1</source>
        <translation>%1 ändern</translation>
    </message>
    <message>
        <location filename="../platform/model/Timeline/TimelineModel.cpp" line="-938"/>
        <source>Move clip</source>
        <translation>Clip verschieben</translation>
    </message>
    <message>
        <location line="+75"/>
        <source>Edit text</source>
        <translation>Text bearbeiten</translation>
    </message>
    <message>
        <location line="+23"/>
        <source>Change project video</source>
        <translation>Videoeinstellungen des Projekts ändern</translation>
    </message>
    <message>
        <location line="+75"/>
        <source>a project has 1 to 64 tracks</source>
        <translation>ein Projekt hat 1 bis 64 Spuren</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>two clips have the id &quot;%1&quot;</source>
        <translation>zwei Clips haben die ID „%1“</translation>
    </message>
    <message>
        <location line="-20"/>
        <source>clip &quot;%1&quot; is on track %2, which does not exist</source>
        <translation>Clip „%1“ liegt auf Spur %2, die es nicht gibt</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>clip &quot;%1&quot; is on a track of the wrong kind</source>
        <translation>Clip „%1“ liegt auf einer Spur der falschen Art</translation>
    </message>
    <message>
        <location line="+27"/>
        <source>clip &quot;%1&quot; belongs to a group that does not exist</source>
        <translation>Clip „%1“ gehört zu einer Gruppe, die es nicht gibt</translation>
    </message>
    <message numerus="yes">
        <location line="+391"/>
        <source>Place %n clip(s)</source>
        <translation>
            <numerusform>%n Clip platzieren</numerusform>
            <numerusform>%n Clips platzieren</numerusform>
        </translation>
    </message>
    <message>
        <location line="+27"/>
        <source>Apply %1</source>
        <translation>%1 anwenden</translation>
    </message>
    <message>
        <location line="+32"/>
        <location line="+229"/>
        <source>Add %1</source>
        <translation>%1 hinzufügen</translation>
    </message>
    <message numerus="yes">
        <location line="-156"/>
        <source>Remove %n clip(s)</source>
        <translation>
            <numerusform>%n Clip entfernen</numerusform>
            <numerusform>%n Clips entfernen</numerusform>
        </translation>
    </message>
    <message>
        <location line="+91"/>
        <source>Change speed</source>
        <translation>Geschwindigkeit ändern</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Reverse</source>
        <translation>Rückwärts abspielen</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Play forward</source>
        <translation>Vorwärts abspielen</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Original tone</source>
        <translation>Tonhöhe beibehalten</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>Stabilize</source>
        <translation>Stabilisieren</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Stop stabilizing</source>
        <translation>Stabilisierung aufheben</translation>
    </message>
    <message>
        <location line="+49"/>
        <source>Remove effect</source>
        <translation>Effekt entfernen</translation>
    </message>
</context>
<context>
    <name>TimelinePanel</name>
    <message>
        <location filename="../app/TimelinePanel.cpp" line="+243"/>
        <source>%1 (missing)</source>
        <translation>%1 (fehlt)</translation>
    </message>
    <message>
        <location line="+126"/>
        <source>Place selected media here</source>
        <translation>Ausgewählte Medien hier platzieren</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>Select all</source>
        <translation>Alles auswählen</translation>
    </message>
    <message>
        <location line="+69"/>
        <source>Place on timeline</source>
        <translation>In Zeitleiste platzieren</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Puts the media selected in the bin at the end of the timeline</source>
        <translation>Setzt die in der Medienablage ausgewählten Medien ans Ende der Zeitleiste</translation>
    </message>
    <message>
        <location line="+16"/>
        <source>Project settings...</source>
        <translation>Projekteinstellungen...</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <location line="+70"/>
        <source>%1×%2 · %3 fps</source>
        <translation>%1×%2 · %3 fps</translation>
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
    <name>UsageUi</name>
    <message>
        <location filename="../app/UsageUi.cpp" line="+2"/>
        <source>&amp;Settings</source>
        <translation>&amp;Einstellungen</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>&amp;Preferences...</source>
        <translation>&amp;Einstellungen...</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>Usage &amp;Data...</source>
        <translation>&amp;Nutzungsdaten...</translation>
    </message>
    <message>
        <location line="+45"/>
        <source>Klipvane records which commands, buttons and menu entries you use, and when. Nothing else: no file names, no folders, no names of you or your computer.</source>
        <translation>Klipvane zeichnet auf, welche Befehle, Schaltflächen und Menüeinträge Sie verwenden und wann. Sonst nichts: keine Dateinamen, keine Ordner, weder Ihren Namen noch den Ihres Computers.</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>As above, and the details of each: the page shown, the format of a file that failed to open, whether you removed failed files. Still no file names, folders or identifiers.</source>
        <translation>Wie oben, dazu jeweils die Einzelheiten: die angezeigte Seite, das Format einer Datei, die sich nicht öffnen ließ, und ob Sie nicht geöffnete Dateien entfernt haben. Weiterhin keine Dateinamen, Ordner oder Kennungen.</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Nothing is recorded.</source>
        <translation>Es wird nichts aufgezeichnet.</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>basic</source>
        <comment>usage recording level</comment>
        <translation>grundlegend</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>detailed</source>
        <comment>usage recording level</comment>
        <translation>ausführlich</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>off</source>
        <comment>usage recording level</comment>
        <translation>aus</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Klipvane can keep a record of how you use it, on this computer only: nothing is sent anywhere. You can read the record under Help &gt; Usage Data and delete it there.</source>
        <translation>Klipvane kann aufzeichnen, wie Sie das Programm verwenden, und zwar nur auf diesem Computer: Es wird nichts übertragen. Sie können die Aufzeichnung unter Hilfe &gt; Nutzungsdaten einsehen und dort löschen.</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Do not record anything</source>
        <translation>Nichts aufzeichnen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Record which commands I use</source>
        <translation>Aufzeichnen, welche Befehle ich verwende</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Record which commands I use, with their details</source>
        <translation>Aufzeichnen, welche Befehle ich verwende, mit Einzelheiten</translation>
    </message>
    <message>
        <location line="+37"/>
        <source>Usage Data</source>
        <translation>Nutzungsdaten</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>When</source>
        <translation>Wann</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>What</source>
        <translation>Was</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Where</source>
        <translation>Wo</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Details</source>
        <translation>Details</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Delete the Record</source>
        <translation>Aufzeichnung löschen</translation>
    </message>
    <message numerus="yes">
        <location line="+15"/>
        <source>Recording: %1. %n record(s), kept in %2.</source>
        <translation>
            <numerusform>Aufzeichnung: %1. %n Eintrag, gespeichert in %2.</numerusform>
            <numerusform>Aufzeichnung: %1. %n Einträge, gespeichert in %2.</numerusform>
        </translation>
    </message>
    <message>
        <location line="+3"/>
        <source>That file cannot be written or is damaged: this session&apos;s records are kept in memory only.</source>
        <translation>Diese Datei kann nicht geschrieben werden oder ist beschädigt: Die Einträge dieser Sitzung werden nur im Arbeitsspeicher gehalten.</translation>
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
