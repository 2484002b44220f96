#include "DialogGallery.h"

#include <Dialog/DialogStrategy.h>

#include <ExternalResourceInfo.h>
#include <Media/File.h>
#include <Timeline/PasteFXResult.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCoreApplication>
#include <QDialog>
#include <QDir>
#include <QMenu>
#include <QPixmap>
#include <QTimer>

#include <glog/logging.h>

#include <memory>

namespace DialogGallery {
namespace {
// The sample texts are the host's own, catalogued under "DialogGallery".
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(DialogGallery)
};

// Sample data that lives as long as the process: the entries refer to it.
struct Samples
{
    Media::File video{QStringLiteral("/home/user/Videos/Holiday in the mountains.mp4")};
    Media::File heicPhoto{QStringLiteral("/home/user/Pictures/IMG_2041.heic")};
    Media::File hevcVideo{QStringLiteral("/home/user/Videos/IMG_2042.mov")};
    ExternalResourceInfo resource;
    Timeline::PasteFXResult paste;

    Samples()
    {
        video.setFormat(QStringLiteral("mp4"));
        video.setFileDuration(MediaTime::fromMilliseconds(95400));
        Media::VideoTrack picture;
        picture.codecId = QStringLiteral("h264");
        picture.frameSize = QSize(1920, 1080);
        picture.frameRate = 29.97;
        picture.bitRate = 12000000;
        video.setVideoTracks({picture});
        Media::AudioTrack sound;
        sound.codecId = QStringLiteral("aac");
        sound.sampleRate = 48000;
        sound.bitRate = 192000;
        sound.channelLayout = 0x3;
        video.setAudioTracks({sound});

        resource.title = QStringLiteral("Morning Light");
        resource.artist = QStringLiteral("Ada Lindqvist");
        resource.artistUrl = QStringLiteral("https://www.klipvane.example/artists/ada");
        resource.source = QStringLiteral("Klipvane Collections");
        resource.license = QStringLiteral("CC BY 4.0");
        resource.licenseUrl = QStringLiteral("https://creativecommons.org/licenses/by/4.0/");
        resource.commercialUse = true;

        paste.pastedCount = 3;
        paste.needManualSetup = {{QStringLiteral("Chroma key"), QString()},
                                 {QStringLiteral("Motion tracking"), QString()},
                                 {QStringLiteral("Blur a region of the frame that follows a moving face"), QString()}};
    }
};

Samples& samples()
{
    static Samples instance;
    return instance;
}

bool notEmpty(QString const& text, QString& error)
{
    if (text.isEmpty()) {
        error = Text::tr("The name cannot be empty");
        return false;
    }
    return true;
}

bool notTaken(QString const& text, QString& error)
{
    if (text == QLatin1String("Holiday")) {
        error = Text::tr("A project with this name exists and will be replaced");
        return false;
    }
    return true;
}
// Buttons laid out narrower than their text needs show it cut off (long translations).
QStringList clippedButtons(const QWidget* dialog)
{
    QStringList clipped;
    for (const QAbstractButton* button : dialog->findChildren<QAbstractButton*>()) {
        if (button->isVisible() && !button->text().isEmpty() && button->width() < button->sizeHint().width())
            clipped << button->text();
    }
    return clipped;
}
} // namespace

std::vector<Entry> entries()
{
    Samples& s = samples();
    return {
        {QStringLiteral("alertModifiedProject"), [] { bool save = false; Dialog::alertModifiedProject(save); }},
        {QStringLiteral("alertOverwrite"), [] { Dialog::alertOverwrite(QStringLiteral("/home/user/Videos/Holiday.mp4")); }},
        {QStringLiteral("alertOverwriteFolder"), [] { Dialog::alertOverwriteFolder(QStringLiteral("/home/user/Videos/Export")); }},
        {QStringLiteral("alertRestoreSession"), [] { Dialog::alertRestoreSession(); }},
        {QStringLiteral("alertAdjustProjectAspect"), [] { Dialog::alertAdjustProjectAspect(); }},
        {QStringLiteral("alertAction_checkBox"),
         [] {
             Dialog::alertAction(Text::tr("Export"), Text::tr("The project has clips shorter than one frame. Export anyway?"),
                                 Text::tr("Export"), QString(), Text::tr("Don't ask again"));
         }},
        {QStringLiteral("alertAction"),
         [] {
             // The restart question after an OpenGL switch, with its own catalogued texts.
             Dialog::alertAction(QCoreApplication::translate("RestartDialog", "OpenGL activation"),
                                 QCoreApplication::translate("RestartDialog", "The program will restart to activate "
                                                                              "OpenGL. It can take some time."),
                                 QCoreApplication::translate("RestartDialog", "Restart"), QString());
         }},
        {QStringLiteral("showFileInfo"), [&s] { Dialog::showFileInfo(&s.video); }},
        {QStringLiteral("showResourceLicense"), [&s] { Dialog::showResourceLicense(s.resource); }},
        {QStringLiteral("showHasFailedFiles"), [] { Dialog::showHasFailedFiles(true, QString()); }},
        {QStringLiteral("showHasH265FailedFiles"), [&s] { Dialog::showHasH265FailedFiles({&s.hevcVideo, &s.heicPhoto}); }},
        {QStringLiteral("showCantPasteEffects"), [&s] { Dialog::showCantPasteEffects(s.paste); }},
        {QStringLiteral("showInfo"),
         [] { Dialog::showInfo(Text::tr("Tip"), Text::tr("Hold <b>Shift</b> while dragging to snap clips to the playhead."), QString(),
                                Text::tr("Don't show this again")); }},
        {QStringLiteral("showWarning"),
         [] { Dialog::showWarning(Text::tr("Low disk space"), Text::tr("Less than 1 GB is free on the export drive.")); }},
        {QStringLiteral("showCriticalError"), [] { Dialog::showCriticalError(*qApp); }},
        {QStringLiteral("showValidationInputDialog"),
         [] { Dialog::showValidationInputDialog(Text::tr("Save project as"), Text::tr("Project name:"), QStringLiteral("Holiday"),
                                                 notEmpty, notTaken); }},
        {QStringLiteral("showCrumbitInputDialog"),
         [] { Dialog::showCrumbitInputDialog(Text::tr("New folder"), QString(), Text::tr("Create"), Text::tr("Cancel"), Text::tr("Folder name")); }},
        {QStringLiteral("alertMissingFile"),
         [] { Dialog::alertMissingFile(QStringLiteral("Holiday.mp4"), QStringLiteral("/media/usb/Videos")); }},
    };
}

void addToMenu(QMenu* menu)
{
    for (Entry& entry : entries()) {
        QAction* action = menu->addAction(entry.name);
        action->setObjectName(QStringLiteral("dialog_") + entry.name);
        QObject::connect(action, &QAction::triggered, menu, entry.show);
    }
}

void prepareEnvironment()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

int render(const QString& folder)
{
    if (!QDir().mkpath(folder)) {
        LOG(ERROR) << "Can't create the gallery folder " << folder.toStdString();
        return 1;
    }
    int failures = 0;
    for (const Entry& entry : entries()) {
        const QString path = QDir(folder).filePath(entry.name + QStringLiteral(".png"));
        bool saved = false;
        // Waits for the entry's dialog, lets it lay out, takes its picture and closes it.
        auto* poll = new QTimer;
        poll->setInterval(10);
        auto attempts = std::make_shared<int>(0);
        QStringList clipped;
        QObject::connect(poll, &QTimer::timeout, [poll, path, &saved, &clipped, attempts] {
            QWidget* modal = QApplication::activeModalWidget();
            if (!modal) {
                if (++*attempts > 500) {
                    poll->stop();
                    poll->deleteLater();
                }
                return;
            }
            poll->stop();
            poll->deleteLater();
            QApplication::processEvents();
            saved = modal->grab().save(path);
            clipped += clippedButtons(modal);
            if (auto* dialog = qobject_cast<QDialog*>(modal))
                dialog->done(QDialog::Rejected);
            else
                modal->close();
        });
        poll->start();
        entry.show();
        for (const QString& text : clipped) {
            LOG(ERROR) << "dialog gallery: " << entry.name.toStdString() << ": the button \"" << text.toStdString()
                       << "\" is too narrow for its text";
            ++failures;
        }
        if (saved) {
            LOG(INFO) << "dialog gallery: " << path.toStdString();
        } else {
            LOG(ERROR) << "dialog gallery: no picture of " << entry.name.toStdString();
            ++failures;
        }
    }
    return failures == 0 ? 0 : 1;
}

} // namespace DialogGallery
