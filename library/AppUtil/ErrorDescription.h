#pragma once

#include "AppUtil_export.h"

#include <QString>

namespace Media {
class File;
}

namespace Tavrin {
namespace Proc {
class ProcessingError;
}
} // namespace Tavrin

namespace Error {

// The activity in which a processing error happened. The same error code reads differently
// in each: out of memory during export comes with a hint about the output size.
enum Context : int {
    Export = 0,
    Capture = 1,
    Analyze = 2,
    Stabilization = 3,
    FreezeFrame = 4,
};

// The one-line, translated text the user sees for `error` in `context`. Never fails; for
// an unknown code the text says so (with the support link where that helps), except in
// Export, where an unknown code gives an empty string: callers there show their own
// message then.
//
//   QMessageBox::warning(w, title, Error::describeTranscodingError(error, Error::Analyze));
APPUTIL_EXPORT QString describeTranscodingError(const Tavrin::Proc::ProcessingError& error, Context context);

// Why `file` could not be opened, in the user's words: the problem with its path where the
// media model found one (a name that cannot be read, a symbolic link loop), else the text
// of its first processing error in Analyze. Empty for a file that has not failed.
APPUTIL_EXPORT QString describeFailedFile(const Media::File& file);

} // namespace Error
