#pragma once

#include <string>

namespace Tavrin {
namespace Proc {

// Failure codes of the media processing engine. The numbers are stored in logs and
// statistics and compared by the error texts, so they never change; names may.
enum TranscodingErrors : int {
    NoError = 0,
    InvalidPresetCodec = 6,        // the preset's codec cannot be written into its container
    UnknownError = 8,
    CodecUnavailable = 10,         // no implementation of the codec in this build
    UnsupportedCodec = 11,         // the codec is known and refused
    IntelHardwareEncoderFailure = 12,
    CodecNotLicensed = 14,
    UnsupportedFrameSize = 15,
    EncoderInitializationFailed = 19,
    NoSpaceLeftOnDevice = 22,
    CopyProtectedInput = 26,
    CannotCreateOutputFile = 33,
    OutOfMemory = 34,
    AllocationFailed = 35,
    InputCorruptedOrMissing = 36,
    StabilizationPathUnusable = 43,
};

// A failure reported by the processing engine: its code, where it was raised and what it
// was working on.
//
//   ProcessingError e(InputCorruptedOrMissing, __FILE__, __func__, __LINE__,
//                     "Invalid data found when processing input", path.toStdString());
//
// The virtual table is part of the contract with code built elsewhere: the destructor is
// the first virtual operation and code() the second. New operations go after them.
class ProcessingError
{
public:
    ProcessingError(TranscodingErrors code, std::string sourceFile, std::string function, int line,
                    std::string message, std::string subject);
    ProcessingError(const ProcessingError&) = default;
    ProcessingError& operator=(const ProcessingError&) = default;
    virtual ~ProcessingError();

    virtual int code() const;
    // The engine's own description (English, for logs; never shown to the user as is).
    virtual std::string message() const;
    // What failed: usually the path of the input or output file.
    virtual std::string subject() const;
    virtual std::string sourceFile() const;
    virtual std::string function() const;
    virtual int line() const;

    // "<message> (<subject>) [code N at file:line function]", for log lines.
    std::string toString() const;

private:
    int m_code;
    std::string m_sourceFile;
    std::string m_function;
    int m_line;
    std::string m_message;
    std::string m_subject;
};

} // namespace Proc
} // namespace Tavrin
