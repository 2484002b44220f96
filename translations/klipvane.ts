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
        <location filename="../app/CaptureTools.cpp" line="+15"/>
        <source>Record the screen</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Capture video</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+17"/>
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
        <location filename="../app/DialogGallery.cpp" line="+79"/>
        <source>The name cannot be empty</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+9"/>
        <source>A project with this name exists and will be replaced</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+18"/>
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
        <location filename="../app/HostServices.cpp" line="+66"/>
        <location line="+22"/>
        <source>&amp;Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-21"/>
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
        <location line="+22"/>
        <source>Standard &amp;dialogs</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <location filename="../app/MainWindow.cpp" line="+121"/>
        <location line="+47"/>
        <source>Import</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-46"/>
        <source>Drop media files here, name them on the command line, or launch the editor again with files: they appear in the media bin.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <location line="+45"/>
        <source>Tools</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-45"/>
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
        <location line="+12"/>
        <source>&amp;View</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+1"/>
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
        <location line="+34"/>
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
        <location filename="../app/main.cpp" line="+126"/>
        <source>Your Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Effects</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MediaBin</name>
    <message>
        <location filename="../app/MediaBin.cpp" line="+37"/>
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
        <location line="+136"/>
        <source>File information...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="-81"/>
        <location line="+84"/>
        <source>Remove from project</source>
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
        <location filename="../app/main.cpp" line="-1"/>
        <source>Files you added from outside the editor.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Filters, transitions and titles.</source>
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
