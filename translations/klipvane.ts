<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>AdjustProjectAspectDialog</name>
    <message>
        <location filename="../library/AppUtil/Dialog/NoticeDialogs.cpp" line="+110"/>
        <source>Adding files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+13"/>
        <source>The aspect ratio of your files doesn&apos;t match the project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Change the project settings to match the files?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Change</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Don&apos;t Change</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>AdjustmentsPanel</name>
    <message>
        <location filename="../app/AdjustmentsPanel.cpp" line="+26"/>
        <source>mixed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+38"/>
        <source>Adjustment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Intensity</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <location line="+86"/>
        <source>Bypass</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-57"/>
        <source>Select clips on the timeline to see their adjustments.</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <location line="+1"/>
        <source>Adjustments of %n selected clip(s)</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <location line="+34"/>
        <source>The selected clips differ</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+22"/>
        <source>Bypassed on some of the selected clips</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+17"/>
        <source>Remove from the selected clips</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Analyze</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="+80"/>
        <source>The chosen codec is not supported.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>No more space left on device</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Sorry, this file is copyright protected and cannot be converted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Out of memory</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>The input file is corrupted or missing from the specified location.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>An unknown error has occurred. %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+86"/>
        <source>The file name cannot be read: it is not valid UTF-8.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>The file is a symbolic link that leads back to itself.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CantPasteEffectsDialog</name>
    <message>
        <location filename="../library/AppUtil/Dialog/NoticeDialogs.cpp" line="+45"/>
        <location line="+10"/>
        <source>Effects partially applied</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Some tools require manual setup</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Capture</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="-115"/>
        <source>No more space left on device</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Can not create output file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Out of memory</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>An unknown error has occured</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CaptureTools</name>
    <message>
        <location filename="../app/CaptureTools.cpp" line="+16"/>
        <source>Record the screen</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Capture video</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+19"/>
        <source>Capture needs the editor&apos;s inter-process layer, which is not running.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+28"/>
        <source>No capture application is installed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>A capture application is starting or running.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ClipActions</name>
    <message>
        <location filename="../app/ClipActions.cpp" line="+62"/>
        <source>Change speed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+6"/>
        <location line="+47"/>
        <source>Reverse</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-41"/>
        <location line="+43"/>
        <source>Original tone</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-36"/>
        <location line="+38"/>
        <source>Stabilize</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-24"/>
        <source>Speed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>%1×</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ClipAdjustmentsProvider</name>
    <message>
        <location filename="../library/AppUtil/Editing/ClipAdjustments.cpp" line="+92"/>
        <source>Speed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+15"/>
        <source>Original tone</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+15"/>
        <source>Reverse</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+72"/>
        <source>Stabilization</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+46"/>
        <source>Filter: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+87"/>
        <source>Remove %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ClipServices</name>
    <message>
        <location filename="../app/ClipServices.cpp" line="+51"/>
        <source>Adjustments</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Common</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="-56"/>
        <source>An unknown error has occurred</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+138"/>
        <source>Please contact us at %1 to get assistance.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Customization</name>
    <message>
        <location filename="../library/AppUtil/Customization.cpp" line="+91"/>
        <source>SupportCenter</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DialogGallery</name>
    <message>
        <location filename="../app/DialogGallery.cpp" line="+80"/>
        <source>The name cannot be empty</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+9"/>
        <source>A project with this name exists and will be replaced</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+28"/>
        <location line="+1"/>
        <source>Export</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-1"/>
        <source>The project has clips shorter than one frame. Export anyway?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Don&apos;t ask again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+16"/>
        <source>Tip</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Hold &lt;b&gt;Shift&lt;/b&gt; while dragging to snap clips to the playhead.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Don&apos;t show this again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Low disk space</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Less than 1 GB is free on the export drive.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Save project as</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Project name:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>New folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Create</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Folder name</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DialogStrategy</name>
    <message>
        <location filename="../library/AppUtil/Dialog/DefaultDialogStrategy.cpp" line="+72"/>
        <source>Save project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Warning! Current project is not saved. Save project before operation?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Don&apos;t save</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+9"/>
        <source>File &quot;%1&quot; already exists. Overwrite it?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>File exists</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Folder &quot;%1&quot; already exists. Overwrite it?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Folder exist</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Recover editing session</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Your last editing session ended unexpectedly. Do you want to restore it?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+79"/>
        <location filename="../library/AppUtil/FileOpenHandler.cpp" line="+268"/>
        <source>Some of the files can&apos;t be opened.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>&lt;br&gt;Please choose:&lt;br&gt;Remove unopened files from the project or keep them?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Can&apos;t open files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Keep</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Remove</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+50"/>
        <source>Unknown problem has been detected.&lt;br&gt;&lt;br&gt;Please contact us at %1 to solve this problem.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Critical error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+22"/>
        <source>Could not find the file %1 at the specified location: %2. The file may have been moved or deleted. Click Browse to find the file at its new location.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Can&apos;t open the file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Browse</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Skip</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Abort</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DisplayMenu</name>
    <message>
        <location filename="../app/DisplayMenu.cpp" line="+72"/>
        <source>&amp;Display</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>&amp;Hardware OpenGL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>&amp;Software OpenGL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+36"/>
        <location line="+17"/>
        <source>OpenGL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-17"/>
        <source>The editor could not restart. %1 OpenGL will be used from the next start.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Software</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Hardware</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+12"/>
        <source>software</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>hardware</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>The editor did not start with %1 OpenGL, so it went back to %2 OpenGL.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DropTargets</name>
    <message>
        <location filename="../app/DropTargets.cpp" line="+141"/>
        <source>Edit title</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+200"/>
        <source>Title</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Your title</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Lower third</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Name — Role</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Caption</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Caption text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Drag onto the timeline</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>EffectsPage</name>
    <message>
        <location filename="../app/EffectsPage.cpp" line="+52"/>
        <source>Select clips on the timeline, then apply an effect to them, or drag it onto a clip.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Apply to selected clips</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+43"/>
        <source>Apply %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Export</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="-123"/>
        <source>The chosen codec is not supported.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Can&apos;t export project because of problem with the Intel graphics chip. Try disabling Intel hardware acceleration in the Preferences.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>The frame size is not supported by selected codec encoding implementation.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Can not create output file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>The input file is corrupted or missing from the specified location.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ExternalResourceInfoDialog</name>
    <message>
        <location filename="../library/AppUtil/Dialog/NoticeDialogs.cpp" line="+175"/>
        <location line="+5"/>
        <source>About this resource</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Artist</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>License</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Allowed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Not allowed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Commercial use</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>FileOpenHandler</name>
    <message>
        <location filename="../library/AppUtil/FileOpenHandler.cpp" line="-32"/>
        <source>&lt;b&gt;%1&lt;/b&gt;: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <location line="+3"/>
        <source>and %n more file(s)</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
</context>
<context>
    <name>FreezeFrame</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="+89"/>
        <source>No more space left on device</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Can not create output file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Out of memory</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>An unknown error has occurred. %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>GeneralButtonsTr</name>
    <message>
        <location filename="../platform/ui/Util/GeneralButtonsTr.cpp" line="+7"/>
        <source>Got It</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Do not show this again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Close</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Learn more</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>HostServices</name>
    <message>
        <location filename="../app/HostServices.cpp" line="+71"/>
        <location line="+24"/>
        <location filename="../app/UsageUi.cpp" line="+41"/>
        <source>&amp;Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-23"/>
        <source>Supported &amp;formats</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Support center</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Contact support</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Home page</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+24"/>
        <source>Standard &amp;dialogs</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <location filename="../app/MainWindow.cpp" line="+123"/>
        <location line="+48"/>
        <source>Import</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-47"/>
        <source>Drop media files here, name them on the command line, or launch the editor again with files: they appear in the media bin.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <location line="+46"/>
        <source>Tools</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-46"/>
        <source>Capture the screen or a camera.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Slideshow</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Slideshow mode</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Media bin</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Ready</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../app/DisplayMenu.cpp" line="-75"/>
        <location line="+3"/>
        <location filename="../app/MainWindow.cpp" line="+12"/>
        <source>&amp;View</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../app/MainWindow.cpp" line="+2"/>
        <source>&amp;Import</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Tools</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Pages</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <location line="+63"/>
        <location line="+9"/>
        <source>%n file(s) added</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location line="+1"/>
        <source>%n file(s) added, %1 could not be opened</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <location line="+21"/>
        <source>Slideshow: waiting for files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Slide %1 of %2
%3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../app/main.cpp" line="+195"/>
        <source>Your Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Overlays</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../app/ClipServices.cpp" line="-5"/>
        <source>Effects</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MediaBin</name>
    <message>
        <location filename="../app/MediaBin.cpp" line="+42"/>
        <source>Opening...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Can&apos;t be opened: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+7"/>
        <source>%1 fps</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>%1 %2 Hz</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>HDR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>unsupported: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+159"/>
        <source>File information...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Show in File Manager</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-107"/>
        <location line="+105"/>
        <source>Remove from project</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MissingFilesDialog</name>
    <message>
        <location filename="../library/AppUtil/Dialog/MissingFilesDialog/MissingFilesDialog.cpp" line="+111"/>
        <source>Please, specify the folder with lost files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Your files were moved or deleted, please specify its new location to restore your project.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Old path</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+28"/>
        <source>File search in progress...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Cancel Search</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Skip</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Specify folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+77"/>
        <source>Open Directory</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+80"/>
        <source>Locate this file</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PreviewArea</name>
    <message>
        <location filename="../app/PreviewArea.cpp" line="+87"/>
        <location line="+58"/>
        <source>Play</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-56"/>
        <source>Rotate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Turns the selected clip a quarter turn clockwise</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+54"/>
        <source>Pause</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../app/PreviewScript.cpp" line="+26"/>
        <source>Preview</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Project</name>
    <message>
        <location filename="../platform/model/Effect/Effect.cpp" line="+139"/>
        <source>unknown effect &quot;%1&quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <location filename="../platform/model/Timeline/TimelineModel.cpp" line="+297"/>
        <source>empty</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+9"/>
        <source>not a quarter turn</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+9"/>
        <source>not six numbers</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>cannot be inverted</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>groups nested too deep</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../platform/model/Project/ProjectFile.cpp" line="+126"/>
        <source>The project could not be written: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+16"/>
        <source>The file does not exist.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>The file is %1 MB; a project is never larger than %2 MB.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>The file could not be read: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+18"/>
        <source>The file is larger than %1 MB; a project is never that large.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>The file is damaged or incomplete (%1 at byte %2).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+19"/>
        <source>The file is not a Klipvane project.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>The project was saved by a newer version of Klipvane (format %1); this version reads format %2 and older.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+16"/>
        <source>not two whole numbers from 1 to 1000</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+13"/>
        <source>neither &quot;video&quot; nor &quot;audio&quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+19"/>
        <source>not an absolute path</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+28"/>
        <location line="+13"/>
        <source>The project is damaged: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../platform/model/Project/Relink.cpp" line="+84"/>
        <source>The folder %1 could not be made.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+15"/>
        <source>%1 could not be copied: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../platform/model/Serialize/JsonReader.cpp" line="+45"/>
        <source>missing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+10"/>
        <location line="+85"/>
        <source>not an object</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-75"/>
        <source>not a list</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>more than %1 entries</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+12"/>
        <source>not a text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>longer than %1 characters</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+15"/>
        <source>not a number from %1 to %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+14"/>
        <source>not a whole number from %1 to %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+12"/>
        <source>not true or false</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../platform/model/Serialize/Serialize.cpp" line="+23"/>
        <source>unknown format %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+6"/>
        <source>unknown type &quot;%1&quot;</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ProjectController</name>
    <message>
        <location filename="../app/ProjectController.cpp" line="+72"/>
        <source>Timeline</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+41"/>
        <source>&amp;File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+8"/>
        <source>&amp;New</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Open...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Open &amp;Recent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>&amp;Save</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Save &amp;As...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Save &amp;Portable Project...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Project se&amp;ttings...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>&amp;Quit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>&amp;Edit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>&amp;Undo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>&amp;Redo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Select &amp;all clips</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>&amp;Remove selected clips</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Untitled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+38"/>
        <source>Open project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>%1 cannot be opened.

%2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+21"/>
        <source>size differs</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+72"/>
        <source>Save project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+55"/>
        <source>No recent projects</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Project settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+18"/>
        <source>Frame width</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Frame height</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Frame rate</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="-120"/>
        <location filename="fixed_contexts.cpp" line="+11"/>
        <source>Conversion error. Invalid preset settings: unsupported codec for specified format.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+15"/>
        <location filename="fixed_contexts.cpp" line="+1"/>
        <source>No more space left on device</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <location filename="fixed_contexts.cpp" line="+1"/>
        <source>Sorry, this file is copyright protected and cannot be converted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <location filename="fixed_contexts.cpp" line="+1"/>
        <source>Conversion error. Out of memory. Try reducing the width and height for the output file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../app/main.cpp" line="-29"/>
        <source>Files you added from outside the editor.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Titles and captions: drag one onto the timeline.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../library/AppUtil/FileDialog.cpp" line="+98"/>
        <source>Open Video Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <location line="+181"/>
        <source>Open Audio Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-180"/>
        <source>Open Image Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Open Media Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+11"/>
        <location line="+1"/>
        <location line="+1"/>
        <location line="+1"/>
        <location line="+1"/>
        <source>Media Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+8"/>
        <source>All Supported Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+18"/>
        <source>Failed to open files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Cannot open files: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+45"/>
        <source>Open Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+10"/>
        <source>Project files (%1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+59"/>
        <source>Open Lut Table file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Lut cube files (%1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Open Project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+22"/>
        <location line="+27"/>
        <source>Save Project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Can not save project file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Save Snapshot</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Snapshot files (%1%2)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>snapshot</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+14"/>
        <location line="+9"/>
        <source>Select Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+32"/>
        <source>Find missing file:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../platform/core/Conf/FormatFile.cpp" line="+27"/>
        <source>Video Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Audio Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Image Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>DVD Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>All Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../app/ImportMenu.cpp" line="+29"/>
        <source>&amp;File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+53"/>
        <source>Import &amp;Files...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Import F&amp;older...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Import &amp;Image Folder...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Save &amp;Snapshot...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>RestartDialog</name>
    <message>
        <location filename="../app/DialogGallery.cpp" line="-20"/>
        <location filename="fixed_contexts.cpp" line="+3"/>
        <source>OpenGL activation</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <location filename="fixed_contexts.cpp" line="+1"/>
        <source>The program will restart to activate OpenGL. It can take some time.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <location filename="fixed_contexts.cpp" line="+1"/>
        <source>Restart</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Stabilization</name>
    <message>
        <location filename="../library/AppUtil/ErrorDescription.cpp" line="+57"/>
        <source>The frame size is not supported by selected codec encoding implementation.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>No more space left on device</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Sorry, this file is copyright protected and cannot be converted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Can not create output file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Out of memory</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>The input file is corrupted or missing from the specified location.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Path to stabilized files could not be used. Please select a different directory in Preferences.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>An unknown error has occurred. %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Tavrin::Gui::FileInfoDialog</name>
    <message>
        <location filename="../platform/ui/Gui/FileInfoDialog.cpp" line="+54"/>
        <source>Unknown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>%1 kbps</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+9"/>
        <source>File information</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+29"/>
        <source>Video</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Audio</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+22"/>
        <source>Format:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+7"/>
        <location line="+45"/>
        <source>Codec:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-38"/>
        <source>Frame size:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>%1 x %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Aspect ratio:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+8"/>
        <location line="+29"/>
        <source>Duration:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-22"/>
        <source>Frame rate:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>%1 fps</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+7"/>
        <location line="+28"/>
        <source>Bit rate:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-7"/>
        <source>Sample rate:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>%1 Hz</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Channels:</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Timeline</name>
    <message>
        <location filename="../library/AppUtil/Editing/ClipAdjustments.cpp" line="-16"/>
        <location filename="../platform/model/Timeline/TimelineModel.cpp" line="+1023"/>
        <source>Change %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../platform/model/Timeline/TimelineModel.cpp" line="-938"/>
        <source>Move clip</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+75"/>
        <source>Edit text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+23"/>
        <source>Change project video</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+75"/>
        <source>a project has 1 to 64 tracks</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+30"/>
        <source>two clips have the id &quot;%1&quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-20"/>
        <source>clip &quot;%1&quot; is on track %2, which does not exist</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>clip &quot;%1&quot; is on a track of the wrong kind</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+27"/>
        <source>clip &quot;%1&quot; belongs to a group that does not exist</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <location line="+391"/>
        <source>Place %n clip(s)</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <location line="+27"/>
        <source>Apply %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+32"/>
        <location line="+229"/>
        <source>Add %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <location line="-156"/>
        <source>Remove %n clip(s)</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <location line="+91"/>
        <source>Change speed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Reverse</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Play forward</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Original tone</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+19"/>
        <source>Stabilize</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Stop stabilizing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+49"/>
        <source>Remove effect</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TimelinePanel</name>
    <message>
        <location filename="../app/TimelinePanel.cpp" line="+243"/>
        <source>%1 (missing)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+126"/>
        <source>Place selected media here</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Remove</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+8"/>
        <source>Select all</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+69"/>
        <source>Place on timeline</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Puts the media selected in the bin at the end of the timeline</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+16"/>
        <source>Project settings...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Zoom</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+70"/>
        <source>%1×%2 · %3 fps</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>UnsupportedCodecInfoDialog</name>
    <message>
        <location filename="../library/AppUtil/Dialog/NoticeDialogs.cpp" line="-116"/>
        <location line="+35"/>
        <source>H.265-encoded files are not supported</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-22"/>
        <source>%1 the files to a supported format</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>converting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>videos</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>images</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>purchasing the H.265 support extension for %1 and %2 in the Microsoft Store</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+3"/>
        <source>purchasing the H.265 support extension for %1 in the Microsoft Store</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+6"/>
        <source>%1 programs cannot correctly display imported files because they do not support the codec. This can be resolved by: %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>UsageUi</name>
    <message>
        <location filename="../app/UsageUi.cpp" line="+2"/>
        <source>&amp;Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>&amp;Preferences...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+8"/>
        <source>Usage &amp;Data...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+45"/>
        <source>Klipvane records which commands, buttons and menu entries you use, and when. Nothing else: no file names, no folders, no names of you or your computer.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>As above, and the details of each: the page shown, the format of a file that failed to open, whether you removed failed files. Still no file names, folders or identifiers.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Nothing is recorded.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+8"/>
        <source>basic</source>
        <comment>usage recording level</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>detailed</source>
        <comment>usage recording level</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+4"/>
        <source>off</source>
        <comment>usage recording level</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+8"/>
        <source>Preferences</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Klipvane can keep a record of how you use it, on this computer only: nothing is sent anywhere. You can read the record under Help &gt; Usage Data and delete it there.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Do not record anything</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Record which commands I use</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Record which commands I use, with their details</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+37"/>
        <source>Usage Data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+8"/>
        <source>When</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>What</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Where</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Details</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Delete the Record</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <location line="+15"/>
        <source>Recording: %1. %n record(s), kept in %2.</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <location line="+3"/>
        <source>That file cannot be written or is damaged: this session&apos;s records are kept in memory only.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>mainWindow.codecWarningWindow</name>
    <message>
        <location filename="../library/AppUtil/FileOpenHandler.cpp" line="+22"/>
        <source>Some videos used in this project could not be opened. They may be corrupted, or their codecs &lt;a href=&quot;%1&quot;&gt;are not supported.&lt;/a&gt;</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>mainWindow.hdrColorConversionDialog</name>
    <message>
        <location line="+20"/>
        <source>Automatic color conversion</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
        <source>You&apos;ve added an HDR video. We&apos;ve converted it to SDR so the colors in the video are correctly displayed within the program. The changes won&apos;t affect anything you’re working on in %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
