// Read by lupdate only, never compiled.
//
// Texts whose translation context is fixed by the catalogues translators already work
// with, while the code that shows them lives in other parts of the editor. Listing them
// here keeps them in the catalogue, in the right context, whichever part is built.
//
// The transcoding error texts below are catalogued under the generic context "QObject"
// although they are export errors: existing translations are keyed that way. Code that
// shows them must use QObject::tr (or translate("QObject", ...)), not the "Export" context.

QT_TRANSLATE_NOOP("QObject", "Conversion error. Invalid preset settings: unsupported codec for specified format.")
QT_TRANSLATE_NOOP("QObject", "No more space left on device")
QT_TRANSLATE_NOOP("QObject", "Sorry, this file is copyright protected and cannot be converted.")
QT_TRANSLATE_NOOP("QObject", "Conversion error. Out of memory. Try reducing the width and height for the output file.")

// The restart question after switching the OpenGL implementation.
QT_TRANSLATE_NOOP("RestartDialog", "OpenGL activation")
QT_TRANSLATE_NOOP("RestartDialog", "The program will restart to activate OpenGL. It can take some time.")
QT_TRANSLATE_NOOP("RestartDialog", "Restart")
