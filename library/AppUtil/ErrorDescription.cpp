#include "ErrorDescription.h"

#include "Customization.h"

#include <Media/File.h>
#include <Proc/ProcessingError.h>

#include <QCoreApplication>
#include <QObject>

namespace Error {
namespace {

QString commonUnknown()
{
    return QCoreApplication::translate("Common", "An unknown error has occurred");
}

QString describeExport(int code)
{
    switch (code) {
    // Four texts stay catalogued under the generic object context, where their
    // translations were made; moving them to "Export" would lose those translations.
    case 6:
        return QObject::tr("Conversion error. Invalid preset settings: unsupported codec for specified format.");
    case 8:
        return commonUnknown();
    case 10:
    case 11:
    case 14:
        return QCoreApplication::translate("Export", "The chosen codec is not supported.");
    case 12:
        return QCoreApplication::translate("Export",
                                           "Can't export project because of problem with the Intel graphics chip. "
                                           "Try disabling Intel hardware acceleration in the Preferences.");
    case 15:
        return QCoreApplication::translate(
            "Export", "The frame size is not supported by selected codec encoding implementation.");
    case 22:
        return QObject::tr("No more space left on device");
    case 26:
        return QObject::tr("Sorry, this file is copyright protected and cannot be converted.");
    case 33:
        return QCoreApplication::translate("Export", "Can not create output file");
    case 34:
    case 35:
        return QObject::tr("Conversion error. Out of memory. Try reducing the width and height for the output file.");
    case 36:
        return QCoreApplication::translate("Export",
                                           "The input file is corrupted or missing from the specified location.");
    default:
        return QString();
    }
}

QString describeCapture(int code)
{
    switch (code) {
    case 10:
    case 11:
    case 14:
    case 19:
        return commonUnknown();
    case 22:
        return QCoreApplication::translate("Capture", "No more space left on device");
    case 33:
        return QCoreApplication::translate("Capture", "Can not create output file");
    case 34: // 35 is not out of memory for capture
        return QCoreApplication::translate("Capture", "Out of memory");
    default:
        // The catalogued text of this context is spelled so; translations are keyed by it.
        return QCoreApplication::translate("Capture", "An unknown error has occured");
    }
}

QString describeAnalyze(int code, const QString& support)
{
    switch (code) {
    case 11:
        return QCoreApplication::translate("Analyze", "The chosen codec is not supported.");
    case 22:
        return QCoreApplication::translate("Analyze", "No more space left on device");
    case 26:
        return QCoreApplication::translate("Analyze", "Sorry, this file is copyright protected and cannot be converted.");
    case 34:
    case 35:
        return QCoreApplication::translate("Analyze", "Out of memory");
    case 36:
        return QCoreApplication::translate("Analyze",
                                           "The input file is corrupted or missing from the specified location.");
    default:
        return QCoreApplication::translate("Analyze", "An unknown error has occurred. %1").arg(support, 0, QLatin1Char(' '));
    }
}

QString describeStabilization(int code, const QString& support)
{
    switch (code) {
    case 10:
    case 11:
    case 14:
        return commonUnknown();
    case 15:
        return QCoreApplication::translate(
            "Stabilization", "The frame size is not supported by selected codec encoding implementation.");
    case 22:
        return QCoreApplication::translate("Stabilization", "No more space left on device");
    case 26:
        return QCoreApplication::translate("Stabilization",
                                           "Sorry, this file is copyright protected and cannot be converted.");
    case 33:
        return QCoreApplication::translate("Stabilization", "Can not create output file");
    case 34:
    case 35:
        return QCoreApplication::translate("Stabilization", "Out of memory");
    case 36:
        return QCoreApplication::translate("Stabilization",
                                           "The input file is corrupted or missing from the specified location.");
    case 43:
        return QCoreApplication::translate(
            "Stabilization",
            "Path to stabilized files could not be used. Please select a different directory in Preferences.");
    default:
        return QCoreApplication::translate("Stabilization", "An unknown error has occurred. %1")
            .arg(support, 0, QLatin1Char(' '));
    }
}

QString describeFreezeFrame(int code, const QString& support)
{
    switch (code) {
    case 10:
    case 11:
    case 14:
    case 19:
        return commonUnknown();
    case 22:
        return QCoreApplication::translate("FreezeFrame", "No more space left on device");
    case 33:
        return QCoreApplication::translate("FreezeFrame", "Can not create output file");
    case 34:
    case 35:
        return QCoreApplication::translate("FreezeFrame", "Out of memory");
    default:
        return QCoreApplication::translate("FreezeFrame", "An unknown error has occurred. %1")
            .arg(support, 0, QLatin1Char(' '));
    }
}

} // namespace

QString describeTranscodingError(const Tavrin::Proc::ProcessingError& error, Context context)
{
    const QString support = QCoreApplication::translate("Common", "Please contact us at %1 to get assistance.")
                                .arg(Customization::supportCenterHRef(), 0, QLatin1Char(' '));
    // The code is read only once the context is known to be one of ours.
    switch (context) {
    case Export:
        return describeExport(error.code());
    case Capture:
        return describeCapture(error.code());
    case Analyze:
        return describeAnalyze(error.code(), support);
    case Stabilization:
        return describeStabilization(error.code(), support);
    case FreezeFrame:
        return describeFreezeFrame(error.code(), support);
    }
    return commonUnknown();
}

QString describeFailedFile(const Media::File& file)
{
    if (!file.isFailed())
        return QString();
    switch (file.pathProblem()) {
    case Media::File::PathProblem::UnreadableName:
        return QCoreApplication::translate("Analyze", "The file name cannot be read: it is not valid UTF-8.");
    case Media::File::PathProblem::SymlinkLoop:
        return QCoreApplication::translate("Analyze", "The file is a symbolic link that leads back to itself.");
    case Media::File::PathProblem::None:
        break;
    }
    return file.errors().empty() ? describeTranscodingError(
                                       Tavrin::Proc::ProcessingError(Tavrin::Proc::UnknownError, "", "", 0, "", ""), Analyze)
                                 : describeTranscodingError(file.errors().front(), Analyze);
}

} // namespace Error
