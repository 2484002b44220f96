// The default dialog strategy, driven through the Dialog:: functions with its real
// dialogs: a timer clicks their buttons and ticks their check boxes.
#include "TestSandbox.h"
#include "ModalAnswer.h"

#include <Dialog/DialogStrategy.h>
#include <Dialog/NoticeDialogs.h>

#include <App/ProductServices.h>
#include <ExternalResourceInfo.h>
#include <Gui/FileInfoDialog.h>
#include <Media/File.h>
#include <Settings/Settings.h>
#include <Timeline/PasteFXResult.h>
#include <Util/AlertBox.h>
#include <Util/SpontaneousDialog.h>

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

Q_DECLARE_METATYPE(Dialog::MissingFileAction)

namespace {
QMessageBox* asBox(QWidget* modal)
{
    auto* box = qobject_cast<QMessageBox*>(modal);
    if (!box)
        qWarning("The modal widget is a %s, not a message box", modal->metaObject()->className());
    return box;
}

// Records what a box showed before answering it.
struct Seen
{
    QString title;
    QString text;
    QStringList buttons;
    Qt::WindowFlags flags;
    QWidget* parent = nullptr;
    bool hasCheckBox = false;
    Qt::TextFormat format = Qt::AutoText;
    int level = -1;
};

Seen look(QMessageBox* box)
{
    Seen seen;
    seen.title = box->windowTitle();
    seen.text = box->text();
    for (QAbstractButton* button : box->buttons())
        seen.buttons << button->text().remove(QLatin1Char('&'));
    seen.flags = box->windowFlags();
    seen.parent = box->parentWidget();
    seen.hasCheckBox = box->checkBox() != nullptr;
    seen.format = box->textFormat();
    if (auto* alert = qobject_cast<Tavrin::Util::AlertBox*>(box))
        seen.level = alert->alertLevel();
    return seen;
}
} // namespace

class tst_DialogStrategy : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_config;
    QMainWindow* m_window = nullptr;

private slots:
    void initTestCase()
    {
        QVERIFY(m_config.isValid());
        Settings::setFileName(m_config.filePath(QStringLiteral("klipvane.ini")));
        Tavrin::App::ProductServicesOptions options;
        options.locale = QStringLiteral("en_US");
        QVERIFY(Tavrin::App::registerProductServices(
            QString::fromLocal8Bit(qgetenv("KLIPVANE_SOURCE_DIR")) + QStringLiteral("/app/product.json"), options));
    }

    void init()
    {
        m_window = new QMainWindow;
        m_window->setObjectName(QStringLiteral("mainWindow"));
        Tavrin::Util::SpontaneousDialog::setMainWindow(m_window);
    }

    void cleanup()
    {
        Dialog::initialize({});
        Tavrin::Util::SpontaneousDialog::setMainWindow(nullptr);
        delete m_window;
        m_window = nullptr;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const auto leaked = QApplication::topLevelWidgets();
        for (QWidget* widget : leaked)
            qWarning("Leaked top-level widget %s (%s)", widget->metaObject()->className(), qPrintable(widget->objectName()));
        QVERIFY(leaked.isEmpty());
    }

    void cleanupTestCase() { Tavrin::App::unregisterProductServices(); }

    void modifiedProject_data()
    {
        QTest::addColumn<QString>("press"); // a button text, or "Escape"
        QTest::addColumn<bool>("result");
        QTest::addColumn<bool>("save");
        QTest::newRow("save") << QStringLiteral("Save") << true << true;
        QTest::newRow("don't save") << QStringLiteral("Don't save") << true << false;
        QTest::newRow("cancel") << QStringLiteral("Cancel") << false << false;
        QTest::newRow("escape") << QStringLiteral("Escape") << false << false;
    }

    void modifiedProject()
    {
        QFETCH(QString, press);
        QFETCH(bool, result);
        QFETCH(bool, save);
        Seen seen;
        answerModal([&](QWidget* modal) {
            seen = look(asBox(modal));
            if (press == QLatin1String("Escape"))
                QTest::keyClick(modal, Qt::Key_Escape);
            else
                clickButton(modal, press);
        });
        bool saved = !save; // the strategy must overwrite it
        QCOMPARE(Dialog::alertModifiedProject(saved), result);
        QCOMPARE(saved, save);
        QCOMPARE(seen.title, QStringLiteral("Save project"));
        QCOMPARE(seen.text, QStringLiteral("Warning! Current project is not saved. Save project before operation?"));
        QCOMPARE(seen.level, 2);
        QVERIFY(seen.buttons.contains(QStringLiteral("Don't save")));
        QCOMPARE(seen.buttons.size(), 3);
        QCOMPARE(seen.parent, m_window);
    }

    void overwrite_data()
    {
        QTest::addColumn<bool>("folder");
        QTest::addColumn<QString>("press");
        QTest::addColumn<bool>("result");
        QTest::newRow("file yes") << false << QStringLiteral("&Yes") << true;
        QTest::newRow("file no") << false << QStringLiteral("&No") << false;
        QTest::newRow("folder yes") << true << QStringLiteral("&Yes") << true;
        QTest::newRow("folder escape") << true << QStringLiteral("Escape") << false;
    }

    void overwrite()
    {
        QFETCH(bool, folder);
        QFETCH(QString, press);
        QFETCH(bool, result);
        Seen seen;
        answerModal([&](QWidget* modal) {
            seen = look(asBox(modal));
            if (press == QLatin1String("Escape"))
                QTest::keyClick(modal, Qt::Key_Escape);
            else
                asBox(modal)->button(press == QLatin1String("&Yes") ? QMessageBox::Yes : QMessageBox::No)->click();
        });
        const QString path = QStringLiteral("/home/user/Videos/out.mp4");
        QCOMPARE(folder ? Dialog::alertOverwriteFolder(path) : Dialog::alertOverwrite(path), result);
        QCOMPARE(seen.title, folder ? QStringLiteral("Folder exist") : QStringLiteral("File exists"));
        QCOMPARE(seen.text, (folder ? QStringLiteral("Folder \"%1\" already exists. Overwrite it?")
                                    : QStringLiteral("File \"%1\" already exists. Overwrite it?"))
                                .arg(path));
    }

    void restoreSessionDefaultsToYes()
    {
        answerModal([](QWidget* modal) { QTest::keyClick(modal, Qt::Key_Return); });
        QVERIFY(Dialog::alertRestoreSession());
        answerModal([](QWidget* modal) { asBox(modal)->button(QMessageBox::No)->click(); });
        QVERIFY(!Dialog::alertRestoreSession());
    }

    void actionWithCheckBox_data()
    {
        QTest::addColumn<bool>("ok");
        QTest::addColumn<bool>("tick");
        QTest::addColumn<int>("result");
        QTest::newRow("ok") << true << false << 0x400;
        QTest::newRow("ok ticked") << true << true << 0x401;
        QTest::newRow("cancel") << false << false << 0x400000;
        QTest::newRow("cancel ticked") << false << true << 0x400001;
    }

    void actionWithCheckBox()
    {
        QFETCH(bool, ok);
        QFETCH(bool, tick);
        QFETCH(int, result);
        Seen seen;
        answerModal([&](QWidget* modal) {
            QMessageBox* box = asBox(modal);
            seen = look(box);
            if (tick)
                box->checkBox()->click();
            clickButton(modal, ok ? QStringLiteral("Export") : QStringLiteral("Later"));
        });
        QCOMPARE(Dialog::alertAction(QStringLiteral("Title"), QStringLiteral("<b>Text</b>"), QStringLiteral("Export"),
                                     QStringLiteral("Later"), QStringLiteral("Remember")),
                 result);
        QVERIFY(seen.hasCheckBox);
        QCOMPARE(seen.format, Qt::RichText);
        QCOMPARE(seen.level, 2);
    }

    void actionCheckBoxIsAddedForAnEmptyText()
    {
        Seen seen;
        answerModal([&](QWidget* modal) {
            seen = look(asBox(modal));
            asBox(modal)->button(QMessageBox::Ok)->click();
        });
        QCOMPARE(Dialog::alertAction(QStringLiteral("T"), QStringLiteral("X"), QString(), QString(), QString()), 0x400);
        QVERIFY(seen.hasCheckBox);
        QVERIFY(seen.buttons.contains(QStringLiteral("OK"))); // the standard texts stay
    }

    void actionWithoutCheckBox_data()
    {
        QTest::addColumn<QString>("press");
        QTest::addColumn<bool>("result");
        QTest::newRow("ok") << QStringLiteral("Restart") << true;
        QTest::newRow("cancel") << QStringLiteral("Cancel") << false;
        QTest::newRow("escape") << QStringLiteral("Escape") << false;
    }

    void actionWithoutCheckBox()
    {
        QFETCH(QString, press);
        QFETCH(bool, result);
        Seen seen;
        answerModal([&](QWidget* modal) {
            seen = look(asBox(modal));
            if (press == QLatin1String("Escape"))
                QTest::keyClick(modal, Qt::Key_Escape);
            else
                clickButton(modal, press);
        });
        QCOMPARE(Dialog::alertAction(QStringLiteral("T"), QStringLiteral("X"), QStringLiteral("Restart"), QString()),
                 result);
        QVERIFY(!seen.hasCheckBox);
    }

    void info_data()
    {
        QTest::addColumn<QString>("checkBoxText");
        QTest::addColumn<bool>("tick");
        QTest::addColumn<int>("result");
        QTest::newRow("no check box") << QString() << false << 0x400;
        QTest::newRow("not ticked") << QStringLiteral("Don't show again") << false << 0x400;
        QTest::newRow("ticked") << QStringLiteral("Don't show again") << true << 0x401;
    }

    void info()
    {
        QFETCH(QString, checkBoxText);
        QFETCH(bool, tick);
        QFETCH(int, result);
        Seen seen;
        answerModal([&](QWidget* modal) {
            QMessageBox* box = asBox(modal);
            seen = look(box);
            if (tick)
                box->checkBox()->click();
            clickButton(modal, QStringLiteral("Fine"));
        });
        QCOMPARE(Dialog::showInfo(QStringLiteral("T"), QStringLiteral("X"), QStringLiteral("Fine"), checkBoxText), result);
        QCOMPARE(seen.hasCheckBox, !checkBoxText.isEmpty());
        QCOMPARE(seen.level, 0);
    }

    void warning()
    {
        Seen seen;
        answerModal([&](QWidget* modal) {
            seen = look(asBox(modal));
            asBox(modal)->button(QMessageBox::Ok)->click();
        });
        Dialog::showWarning(QStringLiteral("Careful"), QStringLiteral("Something"));
        QCOMPARE(seen.title, QStringLiteral("Careful"));
        QCOMPARE(seen.level, 1);
        QCOMPARE(seen.format, Qt::RichText);
    }

    void criticalErrorHasNoParentAndBypassesTheWindowManager()
    {
        Seen seen;
        answerModal([&](QWidget* modal) {
            seen = look(asBox(modal));
            asBox(modal)->button(QMessageBox::Ok)->click();
        });
        Dialog::showCriticalError(*qApp);
        QCOMPARE(seen.title, QStringLiteral("Critical error"));
        QCOMPARE(seen.parent, nullptr);
        // Asked for with the single flag 0x400; Qt completes a parentless window's type and
        // default hints itself, so what shows is a plain window bypassing the manager.
        QVERIFY(seen.flags.testFlag(Qt::BypassWindowManagerHint));
        QCOMPARE(seen.flags & Qt::WindowType_Mask, Qt::Window);
        QVERIFY(!seen.flags.testFlag(Qt::MSWindowsFixedSizeDialogHint));
        QVERIFY(seen.text.startsWith(QStringLiteral("Unknown problem has been detected.<br><br>Please contact us at <a ")));
        QVERIFY(seen.text.contains(QStringLiteral("text-decoration: none")));
        QVERIFY(seen.text.contains(QStringLiteral("SupportCenter</a>")));
    }

    void failedFiles_data()
    {
        QTest::addColumn<bool>("offerRemoval");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("press");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QStringList>("buttons");
        const QString choose = QStringLiteral(" <br>Please choose:<br>Remove unopened files from the project or keep them?");
        QTest::newRow("default text, ok") << false << QString() << QStringLiteral("OK") << false
                                          << QStringLiteral("Some of the files can't be opened.")
                                          << QStringList{QStringLiteral("OK")};
        QTest::newRow("remove") << true << QStringLiteral("a.mp4 failed.") << QStringLiteral("Remove") << true
                                << QStringLiteral("a.mp4 failed.") + choose
                                << QStringList{QStringLiteral("Keep"), QStringLiteral("Remove")};
        QTest::newRow("keep") << true << QString() << QStringLiteral("Keep") << false
                              << QStringLiteral("Some of the files can't be opened.") + choose
                              << QStringList{QStringLiteral("Keep"), QStringLiteral("Remove")};
        QTest::newRow("escape keeps") << true << QString() << QStringLiteral("Escape") << false
                                      << QStringLiteral("Some of the files can't be opened.") + choose
                                      << QStringList{QStringLiteral("Keep"), QStringLiteral("Remove")};
    }

    void failedFiles()
    {
        QFETCH(bool, offerRemoval);
        QFETCH(QString, text);
        QFETCH(QString, press);
        QFETCH(bool, result);
        QFETCH(QString, shown);
        QFETCH(QStringList, buttons);
        Seen seen;
        answerModal([&](QWidget* modal) {
            seen = look(asBox(modal));
            if (press == QLatin1String("Escape"))
                QTest::keyClick(modal, Qt::Key_Escape);
            else
                clickButton(modal, press);
        });
        QCOMPARE(Dialog::showHasFailedFiles(offerRemoval, text), result);
        QCOMPARE(seen.text, shown);
        QCOMPARE(seen.title, QStringLiteral("Can't open files"));
        QCOMPARE(seen.level, 1);
        QStringList sortedSeen = seen.buttons;
        sortedSeen.sort();
        QCOMPARE(sortedSeen, buttons);
        QVERIFY(!(seen.flags & Qt::WindowCloseButtonHint));
        QVERIFY(seen.flags & Qt::CustomizeWindowHint);
    }

    void missingFile_data()
    {
        QTest::addColumn<QString>("press");
        QTest::addColumn<Dialog::MissingFileAction>("action");
        QTest::newRow("abort") << QStringLiteral("Abort") << Dialog::MissingFileAction::Abort;
        QTest::newRow("skip") << QStringLiteral("Skip") << Dialog::MissingFileAction::Skip;
        QTest::newRow("browse") << QStringLiteral("Browse") << Dialog::MissingFileAction::Browse;
    }

    void missingFile()
    {
        QFETCH(QString, press);
        QFETCH(Dialog::MissingFileAction, action);
        Seen seen;
        bool escapeIgnored = false;
        answerModal([&](QWidget* modal) {
            seen = look(asBox(modal));
            // Neither Escape nor closing the window may end this box: a choice is required.
            QTest::keyClick(modal, Qt::Key_Escape);
            modal->close();
            escapeIgnored = modal->isVisible();
            clickButton(modal, press);
        });
        QCOMPARE(Dialog::alertMissingFile(QStringLiteral("clip.mp4"), QStringLiteral("/media/old")), action);
        QVERIFY(escapeIgnored);
        QCOMPARE(seen.title, QStringLiteral("Can't open the file"));
        QCOMPARE(seen.text, QStringLiteral("Could not find the file clip.mp4 at the specified location: /media/old. The "
                                           "file may have been moved or deleted. Click Browse to find the file at its "
                                           "new location."));
        QCOMPARE(seen.flags & ~Qt::WindowType_Mask, Qt::WindowTitleHint | Qt::CustomizeWindowHint);
        QVERIFY(!(seen.flags & Qt::WindowCloseButtonHint));
        QStringList sorted = seen.buttons;
        sorted.sort();
        QCOMPARE(sorted, (QStringList{QStringLiteral("Abort"), QStringLiteral("Browse"), QStringLiteral("Skip")}));
    }

    void adjustProjectAspect_data()
    {
        QTest::addColumn<QString>("press");
        QTest::addColumn<bool>("result");
        QTest::newRow("change") << QStringLiteral("Change") << true;
        QTest::newRow("don't change") << QStringLiteral("Don't Change") << false;
    }

    void adjustProjectAspect()
    {
        QFETCH(QString, press);
        QFETCH(bool, result);
        QString title;
        answerModal([&](QWidget* modal) {
            title = modal->windowTitle();
            QVERIFY(modal->findChild<QLabel*>(QStringLiteral("titleLabel")));
            clickButton(modal, press);
        });
        QCOMPARE(Dialog::alertAdjustProjectAspect(), result);
        QCOMPARE(title, QStringLiteral("Adding files"));
    }

    void h265FilesOfferTheLinksOfTheirKinds_data()
    {
        QTest::addColumn<QStringList>("paths");
        QTest::addColumn<bool>("videoLink");
        QTest::addColumn<bool>("imageLink");
        QTest::newRow("videos") << QStringList{QStringLiteral("/v/a.mp4"), QStringLiteral("/v/b.mov")} << true << false;
        QTest::newRow("images") << QStringList{QStringLiteral("/p/a.heic")} << false << true;
        QTest::newRow("both") << QStringList{QStringLiteral("/v/a.mp4"), QStringLiteral("/p/a.heic")} << true << true;
    }

    void h265FilesOfferTheLinksOfTheirKinds()
    {
        QFETCH(QStringList, paths);
        QFETCH(bool, videoLink);
        QFETCH(bool, imageLink);
        std::vector<std::unique_ptr<Media::File>> files;
        std::set<Media::File const*> set;
        for (const QString& path : paths) {
            files.push_back(std::make_unique<Media::File>(path));
            set.insert(files.back().get());
        }
        QString message;
        answerModal([&](QWidget* modal) {
            if (auto* dialog = qobject_cast<UnsupportedCodecInfoDialog*>(modal))
                message = dialog->message();
            clickButton(modal, QStringLiteral("Got It"));
        });
        QVERIFY(Dialog::showHasH265FailedFiles(set));
        QVERIFY(message.startsWith(QStringLiteral("Tavrin programs cannot correctly display")));
        QVERIFY(message.contains(QStringLiteral("converting</a> the files to a supported format")));
        QCOMPARE(message.contains(QStringLiteral(">videos</a>")), videoLink);
        QCOMPARE(message.contains(QStringLiteral(">images</a>")), imageLink);
        QCOMPARE(message.count(QStringLiteral("&bull;")), 2);
        QVERIFY(message.contains(QStringLiteral("text-decoration: none")));
    }

    void h265NoticeClosedWithEscapeIsNotAccepted()
    {
        Media::File file(QStringLiteral("/v/a.mp4"));
        answerModal([](QWidget* modal) { QTest::keyClick(modal, Qt::Key_Escape); });
        QVERIFY(!Dialog::showHasH265FailedFiles({&file}));
    }

    void cantPasteEffectsListsEveryEffect()
    {
        Timeline::PasteFXResult result;
        result.pastedCount = 2;
        result.needManualSetup = {{QStringLiteral("Chroma key"), QString()},
                                  {QStringLiteral("Motion tracking of a very long effect name that does not fit"), QString()}};
        QStringList rows;
        QSize fixed;
        answerModal([&](QWidget* modal) {
            auto* list = modal->findChild<QListWidget*>(QStringLiteral("effectsList"));
            for (int i = 0; list && i < list->count(); ++i)
                rows << list->item(i)->data(Qt::UserRole).toString();
            fixed = modal->minimumSize() == modal->maximumSize() ? modal->size() : QSize();
            clickButton(modal, QStringLiteral("OK"));
        });
        Dialog::showCantPasteEffects(result);
        QCOMPARE(rows, (QStringList{QStringLiteral("Chroma key"),
                                    QStringLiteral("Motion tracking of a very long effect name that does not fit")}));
        QVERIFY(fixed.isValid());
    }

    void resourceLicenseShowsItsRows()
    {
        ExternalResourceInfo info;
        info.title = QStringLiteral("Morning");
        info.artist = QStringLiteral("A. Artist");
        info.artistUrl = QStringLiteral("https://artist.example/");
        info.source = QStringLiteral("Stock");
        info.license = QStringLiteral("CC BY 4.0");
        info.commercialUse = true;
        QStringList texts;
        answerModal([&](QWidget* modal) {
            for (const char* name : {"artistLabel", "sourceLabel", "licenseLabel", "commercialUseLabel"})
                if (auto* label = modal->findChild<QLabel*>(QLatin1String(name)))
                    texts << label->text();
            clickButton(modal, QStringLiteral("Got It"));
        });
        Dialog::showResourceLicense(info);
        QCOMPARE(texts.size(), 4);
        QCOMPARE(texts.at(0), QStringLiteral("Artist ・ <a href=\"https://artist.example/\" "
                                             "style=\"text-decoration:none\">A. Artist</a>"));
        QVERIFY(texts.at(1).startsWith(QStringLiteral("Source ・ <span style='color: ")));
        QVERIFY(texts.at(3).startsWith(QStringLiteral("<html>")));
        QVERIFY(texts.at(3).contains(QStringLiteral("Allowed")));
    }

    void fileInfo_data()
    {
        QTest::addColumn<bool>("video");
        QTest::addColumn<bool>("audio");
        QTest::newRow("video and audio") << true << true;
        QTest::newRow("audio only") << false << true;
        QTest::newRow("video only") << true << false;
    }

    void fileInfo()
    {
        QFETCH(bool, video);
        QFETCH(bool, audio);
        Media::File file(QStringLiteral("/media/clips/holiday.mp4"));
        file.setFormat(QStringLiteral("mp4"));
        file.setFileDuration(MediaTime::fromMilliseconds(83500));
        if (video) {
            Media::VideoTrack track;
            track.codecId = QStringLiteral("h264");
            track.frameSize = QSize(1920, 1080);
            track.frameRate = 29.97;
            track.bitRate = 8000000;
            file.setVideoTracks({track});
        }
        if (audio) {
            Media::AudioTrack track;
            track.codecId = QStringLiteral("aac");
            track.sampleRate = 48000;
            track.bitRate = 192000;
            track.channelLayout = 0x3F; // 5.1
            file.setAudioTracks({track});
        }
        Tavrin::Gui::FileInfoDialog::Fields fields;
        answerModal([&](QWidget* modal) {
            if (auto* dialog = qobject_cast<Tavrin::Gui::FileInfoDialog*>(modal))
                fields = dialog->fields();
            clickButton(modal, QStringLiteral("OK"));
        });
        Dialog::showFileInfo(&file);
        QCOMPARE(fields.fileName, QStringLiteral("holiday.mp4"));
        QCOMPARE(fields.formatName.value_or(QString()), QStringLiteral("mp4"));
        QCOMPARE(fields.videoCodecName.has_value(), video);
        QCOMPARE(fields.aspectRatio.has_value(), video);
        QCOMPARE(fields.audioCodecName.has_value(), audio);
        QCOMPARE(fields.channels.has_value(), audio);
        if (video) {
            QCOMPARE(*fields.aspectRatio, QSize(16, 9));
            QCOMPARE(*fields.videoGeometry, QSize(1920, 1080));
            QCOMPARE(*fields.videoDuration, QStringLiteral("00:01:23"));
            QCOMPARE(*fields.frameRate, 29.97);
        }
        if (audio) {
            QCOMPARE(*fields.channels, 6);
            QCOMPARE(*fields.sampleRate, 48000);
        }
    }

    void aspectRatioWithNonSquarePixels()
    {
        Media::File file(QStringLiteral("/dv.avi"));
        Media::VideoTrack track;
        track.frameSize = QSize(720, 576);
        track.pixelAspectX = 16;
        track.pixelAspectY = 15;
        file.setVideoTracks({track});
        QSize ratio;
        answerModal([&](QWidget* modal) {
            if (auto* dialog = qobject_cast<Tavrin::Gui::FileInfoDialog*>(modal))
                ratio = dialog->fields().aspectRatio.value_or(QSize());
            clickButton(modal, QStringLiteral("OK"));
        });
        Dialog::showFileInfo(&file);
        QCOMPARE(ratio, QSize(4, 3));
    }

    void fileInfoOfNoFileShowsNothing()
    {
        Dialog::showFileInfo(nullptr); // logs; a modal dialog here would block the test
    }

    void defaultStrategyIsInstalledOnFirstUseAndAfterReset()
    {
        for (int round = 0; round < 2; ++round) {
            Dialog::initialize({});
            bool shown = false;
            answerModal([&](QWidget* modal) {
                shown = qobject_cast<Tavrin::Util::AlertBox*>(modal) != nullptr;
                asBox(modal)->button(QMessageBox::Yes)->click();
            });
            QVERIFY(Dialog::alertOverwrite(QStringLiteral("x")));
            QVERIFY(shown);
        }
    }
};

QTEST_MAIN(tst_DialogStrategy)
#include "tst_DialogStrategy.moc"
