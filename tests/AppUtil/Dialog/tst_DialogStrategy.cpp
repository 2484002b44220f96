// The Dialog:: functions: the default strategy's real dialogs answered by a timer clicking
// their buttons, forwarding to an installed strategy, its lifecycle, and the translation
// contexts of the texts.
#include "TestSandbox.h"
#include "ModalAnswer.h"
#include "ScriptedDialogStrategy.h"

#include <Customization.h>
#include <Dialog/DialogStrategy.h>
#include <Dialog/NoticeDialogs.h>

#include <App/ProductServices.h>
#include <ExternalResourceInfo.h>
#include <Media/File.h>
#include <Settings/Settings.h>
#include <Timeline/PasteFXResult.h>
#include <Util/GeneralButtonsTr.h>
#include <Util/SpontaneousDialog.h>

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

namespace {
// Asks `question` through the default strategy; the answer as an int. alertModifiedProject
// gives bit 0 for "go on" and bit 1 for "save", starting from the opposite of the expected save.
int ask(const QString& question, int expected)
{
    const QString path = QStringLiteral("/v/out.mp4");
    Media::File file(QStringLiteral("/v/a.mp4"));
    if (question == QLatin1String("modified")) {
        bool save = !(expected & 2);
        const bool goOn = Dialog::alertModifiedProject(save);
        return int(goOn) | int(save) << 1;
    }
    if (question == QLatin1String("overwrite"))
        return Dialog::alertOverwrite(path);
    if (question == QLatin1String("overwrite folder"))
        return Dialog::alertOverwriteFolder(path);
    if (question == QLatin1String("restore"))
        return Dialog::alertRestoreSession();
    if (question == QLatin1String("aspect"))
        return Dialog::alertAdjustProjectAspect();
    if (question == QLatin1String("action"))
        return Dialog::alertAction("T", "<b>X</b>", "Export", "Later", "Remember");
    if (question == QLatin1String("action, empty texts"))
        return Dialog::alertAction("T", "X", QString(), QString(), QString());
    if (question == QLatin1String("action, no check box"))
        return Dialog::alertAction("T", "X", "Restart", QString());
    if (question.startsWith(QLatin1String("info")))
        return Dialog::showInfo("T", "X", "Fine", question == QLatin1String("info") ? "Don't show again" : "");
    if (question == QLatin1String("missing"))
        return int(Dialog::alertMissingFile("clip.mp4", "/media/old"));
    if (question.startsWith(QLatin1String("failed")))
        return Dialog::showHasFailedFiles(question == QLatin1String("failed"), QString());
    if (question == QLatin1String("H.265"))
        return Dialog::showHasH265FailedFiles({&file});
    if (question == QLatin1String("warning"))
        Dialog::showWarning("Careful", "Something");
    else if (question == QLatin1String("critical"))
        Dialog::showCriticalError(*qApp);
    else if (question == QLatin1String("file info"))
        Dialog::showFileInfo(&file);
    else if (question == QLatin1String("license"))
        Dialog::showResourceLicense(ExternalResourceInfo{});
    else if (question == QLatin1String("paste"))
        Dialog::showCantPasteEffects(Timeline::PasteFXResult{2, {{"Chroma key", QString()}}});
    return 0;
}

// Marks every text of one context, and only those.
class ContextTranslator : public QTranslator
{
public:
    explicit ContextTranslator(const QByteArray& context) : m_context(context) {}
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        return m_context == context ? QLatin1Char('[') + QString::fromUtf8(source) + QLatin1Char(']') : QString();
    }

private:
    QByteArray m_context;
};

// The title of the save question, which the strategy translates in "DialogStrategy".
QString saveQuestionTitle()
{
    QString title;
    answerModal([&](QWidget* modal) {
        title = modal->windowTitle();
        clickButton(modal, QStringLiteral("Cancel"));
    });
    bool save = false;
    Dialog::alertModifiedProject(save);
    return title;
}

// Counts its own destruction so a test sees exactly when a strategy is released.
class CountedStrategy : public ScriptedDialogStrategy
{
public:
    explicit CountedStrategy(int* destroyed) : m_destroyed(destroyed) {}
    ~CountedStrategy() override { ++*m_destroyed; }

private:
    int* m_destroyed;
};
} // namespace

class tst_DialogStrategy : public QObject
{
    Q_OBJECT

    QTemporaryDir m_config;
    QMainWindow* m_window = nullptr;

private slots:
    void initTestCase()
    {
        Settings::setFileName(m_config.filePath(QStringLiteral("klipvane.ini")));
        Tavrin::App::ProductServicesOptions options;
        options.locale = QStringLiteral("en_US");
        QVERIFY(Tavrin::App::registerProductServices(qEnvironmentVariable("KLIPVANE_SOURCE_DIR") + "/app/product.json",
                                                     options));
    }

    void init()
    {
        m_window = new QMainWindow;
        Tavrin::Util::SpontaneousDialog::setMainWindow(m_window);
    }

    void cleanup()
    {
        Dialog::initialize({});
        Tavrin::Util::SpontaneousDialog::setMainWindow(nullptr);
        delete m_window;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    void cleanupTestCase() { Tavrin::App::unregisterProductServices(); }

    // The first row is also the first use, which installs the default strategy; every later
    // row runs after initialize({}).
    void answers_data()
    {
        QTest::addColumn<QString>("question");
        QTest::addColumn<QString>("press"); // "+"-separated: a button text, "tick", "Escape", "Return" or "close"
        QTest::addColumn<int>("result");
        QTest::addColumn<bool>("checkBox");
        QTest::addColumn<QString>("shows"); // part of the title or text
        const auto row = [](const char* question, const char* press, int result, bool checkBox = false,
                            const char* shows = "") {
            QTest::addRow("%s: %s", question, press) << question << press << result << checkBox << shows;
        };
        row("modified", "Save", 3, false, "Warning! Current project is not saved. Save project before operation?");
        row("modified", "Don't save", 1);
        row("modified", "Cancel", 0);
        row("modified", "Escape", 0);
        row("overwrite", "Yes", 1, false, "File \"/v/out.mp4\" already exists. Overwrite it?");
        row("overwrite", "No", 0);
        row("overwrite folder", "Yes", 1, false, "Folder \"/v/out.mp4\" already exists. Overwrite it?");
        row("overwrite folder", "Escape", 0);
        row("restore", "Return", 1); // Yes is the default
        row("restore", "No", 0);
        row("aspect", "Change", 1, false, "Adding files");
        row("aspect", "Don't Change", 0);
        row("action", "Export", 0x400, true);
        row("action", "tick+Export", 0x401, true);
        row("action", "Later", 0x400000, true);
        row("action", "tick+Later", 0x400001, true);
        row("action, empty texts", "tick+OK", 0x401, true); // the check box is there all the same
        row("action, no check box", "Restart", 1);
        row("action, no check box", "Cancel", 0);
        row("action, no check box", "Escape", 0);
        row("info", "Fine", 0x400, true);
        row("info", "tick+Fine", 0x401, true);
        row("info, no check box", "Fine", 0x400);
        // A choice is required: neither Escape nor closing the window ends the box.
        row("missing", "Escape+close+Abort", int(Dialog::MissingFileAction::Abort), false,
            "Could not find the file clip.mp4 at the specified location: /media/old.");
        row("missing", "Escape+close+Skip", int(Dialog::MissingFileAction::Skip));
        row("missing", "Escape+close+Browse", int(Dialog::MissingFileAction::Browse));
        row("failed", "Remove", 1, false, "Remove unopened files from the project or keep them?");
        row("failed", "Keep", 0);
        row("failed", "Escape", 0);
        row("failed, no removal", "OK", 0, false, "Some of the files can't be opened.");
        row("H.265", "Got It", 1);
        row("H.265", "Escape", 0);
        row("warning", "OK", 0, false, "Careful");
        row("critical", "OK", 0, false, "Unknown problem has been detected.");
        row("file info", "OK", 0);
        row("license", "Got It", 0);
        row("paste", "OK", 0);
    }

    void answers()
    {
        QFETCH(QString, question);
        QFETCH(QString, press);
        QFETCH(int, result);
        QFETCH(bool, checkBox);
        QFETCH(QString, shows);
        bool answered = false, hadCheckBox = false, closeButton = true, stayedOpen = true;
        QString shown;
        QWidget* parent = nullptr;
        answerModal([&](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            answered = true;
            hadCheckBox = box && box->checkBox();
            closeButton = modal->windowFlags() & Qt::WindowCloseButtonHint;
            shown = modal->windowTitle() + QLatin1Char('\n') + (box ? box->text() : QString());
            parent = modal->parentWidget();
            const QStringList steps = press.split(QLatin1Char('+'));
            for (const QString& step : steps) {
                if (step == QLatin1String("tick") && hadCheckBox)
                    box->checkBox()->click();
                else if (step == QLatin1String("Escape") || step == QLatin1String("Return"))
                    QTest::keyClick(modal, step == QLatin1String("Escape") ? Qt::Key_Escape : Qt::Key_Return);
                else if (step == QLatin1String("close"))
                    modal->close();
                else
                    answered = clickButton(modal, step) && answered;
                if (&step != &steps.back())
                    stayedOpen = stayedOpen && modal->isVisible();
            }
        });
        QCOMPARE(ask(question, result), result);
        QVERIFY(answered);
        QVERIFY(stayedOpen);
        QCOMPARE(hadCheckBox, checkBox);
        QVERIFY2(shown.contains(shows), qPrintable(shown));
        // The critical error must show even when the main window is what broke.
        QCOMPARE(parent == m_window, question != QLatin1String("critical"));
        if (question == QLatin1String("missing") || question == QLatin1String("failed"))
            QVERIFY(!closeButton);
    }

    // Many H.265 files, some added twice: each is listed once, sorted, in a list that scrolls
    // inside a dialog that fits a 1366x768 screen.
    void h265ListFitsSmallScreens()
    {
        QStringList files;
        for (int i = 80; i > 0; --i)
            files << QString("/videos/phone/clip %1 from the holiday in the mountains.mp4").arg(i, 2, 10, QChar('0'));
        files << files.mid(10, 5);
        UnsupportedCodecInfoDialog dialog(files, m_window);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        auto* list = dialog.findChild<QListWidget*>("filesList");
        QVERIFY(list);
        QStringList listed;
        for (int row = 0; row < list->count(); ++row)
            listed << list->item(row)->toolTip();
        files.removeDuplicates();
        files.sort();
        QCOMPARE(listed, files);
        QVERIFY(list->verticalScrollBar()->maximum() > 0);
        const QSize size = dialog.frameGeometry().size();
        QVERIFY2(size.width() <= 1366 && size.height() <= 700, qPrintable(QString("%1x%2").arg(size.width()).arg(size.height())));
    }

    void forwarding()
    {
        // A strategy that also runs the soft validator it is handed.
        struct Probe : ScriptedDialogStrategy
        {
            bool softAccepts = false;
            QString showValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                              std::function<bool(QString const&, QString&)> const& hard,
                                              std::function<bool(QString const&, QString&)> const& soft) override
            {
                QString error;
                softAccepts = soft(text, error) && error.isEmpty();
                return ScriptedDialogStrategy::showValidationInputDialog(title, label, text, hard, soft);
            }
        };
        auto probe = std::make_shared<Probe>();
        Dialog::initialize(probe);
        probe->answer("alertAction", 0x400001);
        probe->answer("alertMissingFile", int(Dialog::MissingFileAction::Browse));
        probe->answer("alertModifiedProject", ScriptedDialogStrategy::DontSave);
        probe->answer("showValidationInputDialog", "name");

        QCOMPARE(Dialog::alertAction("t", "x", QString(), QString(), "c"), 0x400001);
        QCOMPARE(Dialog::alertMissingFile("a.mp4", "/old"), Dialog::MissingFileAction::Browse);
        bool save = true;
        QVERIFY(Dialog::alertModifiedProject(save));
        QVERIFY(!save);
        const auto reject = [](QString const&, QString& error) { error = "no"; return false; };
        QCOMPARE(Dialog::showValidationInputDialog("t", "l", "x", reject), QStringLiteral("name"));
        QVERIFY(probe->softAccepts); // the form without a soft validator accepts every text softly
        QCOMPARE(probe->lastArguments("alertMissingFile"), (QVariantList{"a.mp4", "/old"}));
        QCOMPARE(int(probe->count("alertAction")), 1);
    }

    void lifecycle()
    {
        // After initialize({}) the next call shows the default strategy's dialogs again.
        Dialog::initialize(std::make_shared<ScriptedDialogStrategy>());
        Dialog::initialize({});
        answerModal([](QWidget* modal) { clickButton(modal, QStringLiteral("Yes")); });
        QVERIFY(Dialog::alertOverwrite("x"));
        Dialog::showFileInfo(nullptr); // logs; a dialog here would block

        // Replaced from inside its own dialog, a strategy lives until that dialog returns.
        int destroyed = 0;
        auto first = std::make_shared<CountedStrategy>(&destroyed);
        auto second = std::make_shared<ScriptedDialogStrategy>();
        int destroyedDuringCall = -1;
        first->onCall("alertRestoreSession", [&] {
            Dialog::initialize(second);
            destroyedDuringCall = destroyed;
        });
        first->answer("alertRestoreSession", true);
        Dialog::initialize(first);
        first.reset(); // the installed pointer is the only owner now
        QVERIFY(Dialog::alertRestoreSession());
        QCOMPARE(destroyedDuringCall, 0);
        QCOMPARE(destroyed, 1);
        QVERIFY(!Dialog::alertRestoreSession()); // the replacement answers now
        QCOMPARE(second->count("alertRestoreSession"), 1);
    }

    void germanCatalogue()
    {
        QTranslator german;
        QVERIFY(german.load("klipvane_de_DE", qEnvironmentVariable("KLIPVANE_TEST_BIN_DIR") + "/translations"));
        QCoreApplication::installTranslator(&german);
        const QString title = saveQuestionTitle();
        const QString aspect = AdjustProjectAspectDialog().windowTitle();
        // Catalogued under "QObject" on purpose: the "Export" context has no such entry.
        const QString inObject = QCoreApplication::translate("QObject", "No more space left on device");
        const QString inExport = QCoreApplication::translate("Export", "No more space left on device");
        QCoreApplication::removeTranslator(&german);
        QCOMPARE(title, QStringLiteral("Projekt speichern"));
        QCOMPARE(aspect, QStringLiteral("Dateien hinzufügen"));
        QCOMPARE(inObject, QStringLiteral("Kein Speicherplatz mehr auf dem Gerät"));
        QCOMPARE(inExport, QStringLiteral("No more space left on device"));
        QCOMPARE(saveQuestionTitle(), QStringLiteral("Save project"));
    }

    void oneContextChangesOnlyItsTexts_data()
    {
        QTest::addColumn<QByteArray>("context");
        for (const char* context : {"DialogStrategy", "AdjustProjectAspectDialog", "UnsupportedCodecInfoDialog",
                                    "GeneralButtonsTr", "Customization", "Nothing"})
            QTest::newRow(context) << QByteArray(context);
    }

    void oneContextChangesOnlyItsTexts()
    {
        QFETCH(QByteArray, context);
        ContextTranslator translator(context);
        QCoreApplication::installTranslator(&translator);
        QStringList texts{saveQuestionTitle()};
        {
            AdjustProjectAspectDialog dialog;
            texts << dialog.windowTitle() << dialog.findChild<QLabel*>(QStringLiteral("infoLabel"))->text();
        }
        {
            UnsupportedCodecInfoDialog dialog({QStringLiteral("/v/a.mp4")});
            texts << dialog.windowTitle() << dialog.findChild<QPushButton*>(QStringLiteral("gotItButton"))->text();
        }
        texts << Customization::supportCenterHRef();
        QCoreApplication::removeTranslator(&translator);

        const QList<QByteArray> contexts{"DialogStrategy",   "AdjustProjectAspectDialog",  "AdjustProjectAspectDialog",
                                         "UnsupportedCodecInfoDialog", "GeneralButtonsTr", "Customization"};
        for (int i = 0; i < texts.size(); ++i)
            QVERIFY2(texts[i].contains(QLatin1Char('[')) == (contexts[i] == context), qPrintable(texts[i]));
    }
};

QTEST_MAIN(tst_DialogStrategy)
#include "tst_DialogStrategy.moc"
