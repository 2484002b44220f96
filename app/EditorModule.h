#pragma once

#include <QString>

// The editor lives in a module, libklipvane-editor.so, that the klipvane executable loads
// into its own process once it knows this launch is the editor: a launch that only hands
// its files to a running editor then never loads Qt Widgets, Qt Gui or the library.
//
//   // LauncherMain.cpp, after the single-instance rule kept this process:
//   return EditorModule::run(argc, argv); // the lock stays held by the caller meanwhile
//
// The module is found through the executable's run path (build/lib in the build tree,
// <prefix>/lib once installed), like the libraries the executable links.
namespace EditorModule {

// What the module exports: the editor's main(), run in the launcher's process.
using Entry = int (*)(int argc, char** argv);
constexpr char kFileName[] = "libklipvane-editor.so";
constexpr char kEntryName[] = "klipvaneEditorMain";

// Loads the module and runs the editor; 1 with a log line when it cannot be loaded.
int run(int argc, char** argv);

// The folder of the running executable, known without an application object (product.json
// and the catalogues sit there).
QString executableDirectory(const char* argv0);

} // namespace EditorModule
