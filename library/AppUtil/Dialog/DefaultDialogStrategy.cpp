// The default strategy: the application's standard modal dialogs. Texts are translated
// in the context "DialogStrategy"; the dialogs of their own classes use their class names.
#include "Dialog/DialogStrategy.h"

#include "Customization.h"
#include "Dialog/CrumbitInputDialog.h"
#include "Dialog/NoticeDialogs.h"
#include "Dialog/ValidationInputDialog.h"

#include <Conf/LayoutRecord.h>
#include <ExternalResourceInfo.h>
#include <Gui/FileInfoDialog.h>
#include <Media/File.h>
#include <Timeline/PasteFXResult.h>
#include <Util/AlertBox.h>
#include <Util/SpontaneousDialog.h>

#include <QApplication>
#include <QCheckBox>
#include <QFileInfo>
#include <QPushButton>
#include <QTime>

#include <glog/logging.h>

#include <numeric>

namespace Dialog {
namespace {
using Tavrin::Util::AlertBox;

QString tr(const char* text)
{
    return QCoreApplication::translate("DialogStrategy", text);
}

QWidget* parentWidget()
{
    return Tavrin::Util::SpontaneousDialog::findParent();
}

constexpr Qt::WindowFlags boxFlags = Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint;
// A title bar without a close button: one of the box's own buttons must be chosen.
constexpr Qt::WindowFlags noCloseFlags = Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint;

// Both alertAction forms share this box; the caller decides about the check box.
std::unique_ptr<AlertBox> actionBox(QString const& title, QString const& text, QString const& okText,
                                    QString const& cancelText)
{
    auto box = std::make_unique<AlertBox>(AlertBox::Question, title, text, QMessageBox::Ok | QMessageBox::Cancel,
                                          parentWidget(), boxFlags);
    box->setTextFormat(Qt::RichText);
    if (!okText.isEmpty())
        box->setButtonText(QMessageBox::Ok, okText);
    if (!cancelText.isEmpty())
        box->setButtonText(QMessageBox::Cancel, cancelText);
    return box;
}

QTime durationAsTime(MediaTime duration)
{
    return QTime(0, 0).addMSecs(int(qBound<qint64>(0, duration.milliseconds(), 24LL * 3600 * 1000 - 1)));
}
} // namespace

DialogStrategy::~DialogStrategy() = default;

bool DialogStrategy::alertModifiedProject(bool& save) const
{
    AlertBox box(AlertBox::Question, tr("Save project"),
                 tr("Warning! Current project is not saved. Save project before operation?"),
                 QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, parentWidget(), boxFlags);
    box.setButtonText(QMessageBox::Discard, tr("Don't save"));
    box.raise();
    const QMessageBox::StandardButton pressed = box.Exec();
    save = pressed == QMessageBox::Save;
    return pressed != QMessageBox::Cancel;
}

bool DialogStrategy::alertOverwrite(QString const& path) const
{
    return AlertBox::Exec(AlertBox::Question, tr("File exists"), tr("File \"%1\" already exists. Overwrite it?").arg(path),
                          QMessageBox::Yes | QMessageBox::No, parentWidget(), boxFlags)
           == QMessageBox::Yes;
}

bool DialogStrategy::alertOverwriteFolder(QString const& path) const
{
    return AlertBox::Exec(AlertBox::Question, tr("Folder exist"),
                          tr("Folder \"%1\" already exists. Overwrite it?").arg(path), QMessageBox::Yes | QMessageBox::No,
                          parentWidget(), boxFlags)
           == QMessageBox::Yes;
}

bool DialogStrategy::alertRestoreSession() const
{
    AlertBox box(AlertBox::Question, tr("Recover editing session"),
                 tr("Your last editing session ended unexpectedly. Do you want to restore it?"),
                 QMessageBox::Yes | QMessageBox::No, parentWidget(), boxFlags);
    box.setDefaultButton(QMessageBox::Yes);
    return box.Exec() == QMessageBox::Yes;
}

bool DialogStrategy::alertAdjustProjectAspect() const
{
    AdjustProjectAspectDialog dialog(parentWidget());
    return dialog.exec() == QDialog::Accepted;
}

int DialogStrategy::alertAction(QString const& title, QString const& text, QString const& okText,
                                QString const& cancelText, QString const& checkBoxText) const
{
    const std::unique_ptr<AlertBox> box = actionBox(title, text, okText, cancelText);
    auto* checkBox = new QCheckBox(checkBoxText);
    box->setCheckBox(checkBox);
    const int pressed = box->Exec();
    return pressed | (checkBox->isChecked() ? 1 : 0);
}

bool DialogStrategy::alertAction(QString const& title, QString const& text, QString const& okText,
                                 QString const& cancelText) const
{
    const std::unique_ptr<AlertBox> box = actionBox(title, text, okText, cancelText);
    return box->Exec() == QMessageBox::Ok;
}

void DialogStrategy::showFileInfo(Media::File const* file) const
{
    if (!file) {
        LOG(WARNING) << "showFileInfo called without a file";
        return;
    }
    Tavrin::Gui::FileInfoDialog dialog(QFileInfo(file->filePath()).fileName(), parentWidget());
    dialog.setFormatName(file->format());
    const QTime duration = durationAsTime(file->fileDuration());
    if (!file->videoTracks().empty()) {
        const Media::VideoTrack& video = file->videoTracks().front();
        dialog.setVideoCodecName(video.codecId);
        dialog.setVideoGeometry(video.frameSize);
        long long width = static_cast<long long>(video.frameSize.width()) * video.pixelAspectX;
        long long height = static_cast<long long>(video.frameSize.height()) * video.pixelAspectY;
        const long long divisor = std::gcd(width, height);
        if (divisor > 1) {
            width /= divisor;
            height /= divisor;
        }
        dialog.setAspectRatio(int(width), int(height));
        dialog.setVideoDuration(duration, QString());
        dialog.setFrameRate(video.frameRate);
        dialog.setVideoBitRate(video.bitRate);
    }
    if (!file->audioTracks().empty()) {
        const Media::AudioTrack& audio = file->audioTracks().front();
        dialog.setAudioCodecName(audio.codecId);
        dialog.setAudioDuration(duration, QString());
        dialog.setSampleRate(audio.sampleRate);
        dialog.setAudioBitRate(audio.bitRate);
        const Tavrin::Conf::LayoutRecord* layout = Tavrin::Conf::LayoutRecord::Find(audio.channelLayout);
        // A layout the table does not know still has speakers; count them, or trust the
        // track's own count when there is no mask at all.
        int channels = layout ? layout->channels : Tavrin::Conf::LayoutRecord::channelCount(audio.channelLayout);
        if (channels == 0)
            channels = audio.channels;
        dialog.setChannels(channels);
    }
    dialog.exec();
}

void DialogStrategy::showResourceLicense(ExternalResourceInfo const& info) const
{
    ExternalResourceInfoDialog dialog(info, parentWidget());
    dialog.exec();
}

bool DialogStrategy::showHasFailedFiles(bool offerRemoval, QString const& text) const
{
    QString message = text.isEmpty() ? tr("Some of the files can't be opened.") : text;
    if (offerRemoval)
        message += QLatin1Char(' ') + tr("<br>Please choose:<br>Remove unopened files from the project or keep them?");
    AlertBox box(AlertBox::Warning, tr("Can't open files"), message, QMessageBox::NoButton, parentWidget(), boxFlags);
    box.setWindowFlags(noCloseFlags);
    box.setTextFormat(Qt::RichText);
    box.setModal(true);
    if (offerRemoval) {
        box.addButton(tr("Keep"), QMessageBox::RejectRole);
        box.addButton(tr("Remove"), QMessageBox::AcceptRole);
    } else {
        box.addButton(QMessageBox::Ok);
    }
    box.exec();
    // With custom buttons the box's result is the index of the pressed one.
    return offerRemoval && box.result() == 1;
}

bool DialogStrategy::showHasH265FailedFiles(std::set<Media::File const*> const& files) const
{
    QStringList paths;
    for (Media::File const* file : files)
        if (file)
            paths << file->filePath();
    UnsupportedCodecInfoDialog dialog(paths, parentWidget());
    return dialog.exec() == QDialog::Accepted;
}

void DialogStrategy::showCantPasteEffects(Timeline::PasteFXResult const& result) const
{
    CantPasteEffectsDialog dialog(result, parentWidget());
    dialog.exec();
}

int DialogStrategy::showInfo(QString const& title, QString const& text, QString const& okText,
                             QString const& checkBoxText) const
{
    AlertBox box(AlertBox::Information, title, text, QMessageBox::Ok, parentWidget(), boxFlags);
    box.setTextFormat(Qt::RichText);
    if (!okText.isEmpty())
        box.setButtonText(QMessageBox::Ok, okText);
    QCheckBox* checkBox = nullptr;
    if (!checkBoxText.isEmpty()) {
        checkBox = new QCheckBox(checkBoxText);
        box.setCheckBox(checkBox);
    }
    const int pressed = box.Exec();
    return pressed | (checkBox && checkBox->isChecked() ? 1 : 0);
}

void DialogStrategy::showWarning(QString const& title, QString const& text) const
{
    AlertBox box(AlertBox::Warning, title, text, QMessageBox::Ok, parentWidget(), boxFlags);
    box.setTextFormat(Qt::RichText);
    box.Exec();
}

void DialogStrategy::showCriticalError(QApplication const&) const
{
    const QString text = tr("Unknown problem has been detected.<br><br>Please contact us at %1 to solve this problem.")
                             .arg(Customization::supportCenterHRef());
    // Deliberately no parent and only BypassWindowManagerHint: the box must appear even
    // when the application's windows are in a broken state.
    AlertBox box(AlertBox::Warning, tr("Critical error"), text, QMessageBox::Ok, nullptr,
                 Qt::WindowFlags(Qt::BypassWindowManagerHint));
    box.Exec();
}

QString DialogStrategy::showValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                                  std::function<bool(QString const&, QString&)> const& validator,
                                                  std::function<bool(QString const&, QString&)> const& softValidator)
{
    ValidationInputDialog dialog(title, label, text, validator, softValidator, parentWidget());
    return dialog.exec() == QDialog::Accepted ? dialog.inputText() : QString();
}

QString DialogStrategy::showCrumbitInputDialog(QString const& title, QString const& text, QString const& confirmText,
                                               QString const& cancelText, QString const& placeholder)
{
    CrumbitInputDialog dialog(title, text, confirmText, cancelText, placeholder, parentWidget());
    return dialog.exec() == QDialog::Accepted ? dialog.inputText() : QString();
}

MissingFileAction DialogStrategy::alertMissingFile(QString const& fileName, QString const& location)
{
    const QString text = tr("Could not find the file %1 at the specified location: %2. The file may have been moved "
                            "or deleted. Click Browse to find the file at its new location.")
                             .arg(fileName, location);
    AlertBox box(AlertBox::Question, tr("Can't open the file"), text, QMessageBox::NoButton, parentWidget(),
                 noCloseFlags);
    QPushButton* browse = box.addButton(tr("Browse"), QMessageBox::AcceptRole);
    box.addButton(tr("Skip"), QMessageBox::RejectRole);
    QPushButton* abort = box.addButton(tr("Abort"), QMessageBox::RejectRole);
    box.exec();
    if (box.clickedButton() == abort)
        return MissingFileAction::Abort;
    if (box.clickedButton() == browse)
        return MissingFileAction::Browse;
    return MissingFileAction::Skip;
}

} // namespace Dialog
