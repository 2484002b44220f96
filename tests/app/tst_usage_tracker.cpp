// The host's usage tracker: consent and levels, nothing that could be a path or an
// identifier, the audit log on disk (written, read back, unwritable, damaged) and the two
// windows the user sees, answered by clicking their real buttons.

#include "UsageAuditLog.h"
#include "UsageTracker.h"
#include "UsageUi.h"

#include <MediaStatistics.h>
#include <Statistics.h>

#include <Settings/Settings.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

#include "ModalAnswer.h"
#include "TestSandbox.h"

using Params = QMap<QString, QString>;

namespace {

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void publishClick(const QString& event, const QString& source, const Params& params = {})
{
    PubSub::publish(Statistics::InteractionNotification(event, source, params));
}

// Runs `answer` on the next modal dialog, which must be a D.
template <class D>
void whenShown(std::function<void(D*)> answer)
{
    answerModal([answer](QWidget* modal) {
        auto* dialog = qobject_cast<D*>(modal);
        QVERIFY(dialog);
        answer(dialog);
    });
}

} // namespace

class TestUsageTracker : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString logPath(const char* name) const { return m_dir.filePath(QLatin1String(name)); }

private slots:
    void init() { Settings::remove(QStringLiteral("UsageStatistics/level")); }

    // Nobody has agreed: nothing is recorded, not even a log file is made.
    void offUntilTheUserAgrees()
    {
        const QString path = logPath("off.jsonl");
        UsageTracker tracker(path);
        QCOMPARE(tracker.level(), UsageTracker::Level::Off);
        publishClick(QStringLiteral("zoomIn"), QStringLiteral("timelineToolBar"));
        PubSub::publish(Statistics::CodecsFailed(QStringLiteral("mkv"), {QStringLiteral("vp9")}));
        tracker.flush();
        QVERIFY(tracker.records().isEmpty());
        QVERIFY(!QFile::exists(path));
        // A level for this run only leaves the user's choice as it was.
        tracker.setLevel(UsageTracker::Level::Basic, false);
        QVERIFY(!Settings::value(QStringLiteral("UsageStatistics/level")).isValid());
        tracker.setLevel(UsageTracker::Level::Detailed);
        QCOMPARE(UsageTracker(logPath("other.jsonl")).level(), UsageTracker::Level::Detailed);
    }

    // What one message becomes at each level, for each kind of library message.
    void levels_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("message"); // 0 interaction, 1 codecs failed, 2 failed files answered
        QTest::addColumn<QString>("event");
        QTest::addColumn<Params>("params");
        const Params interaction{{QStringLiteral("collection"), QStringLiteral("Effects")}};
        const Params codecs{{QStringLiteral("extension"), QStringLiteral("mkv")}, {QStringLiteral("codecs"), QStringLiteral("vp9,opus")}};
        const Params answer{{QStringLiteral("deletionOffered"), QStringLiteral("true")}, {QStringLiteral("deletionChosen"), QStringLiteral("false")}};
        for (int level : {1, 2}) {
            const bool detailed = level == 2;
            const char* name = detailed ? "detailed" : "basic";
            QTest::addRow("%s: interaction", name) << level << 0 << "showCollectionPage" << (detailed ? interaction : Params());
            QTest::addRow("%s: codecs failed", name) << level << 1 << "codecsFailed" << (detailed ? codecs : Params());
            QTest::addRow("%s: failed files answered", name) << level << 2 << "failedFilesAnswered" << (detailed ? answer : Params());
        }
    }
    void levels()
    {
        QFETCH(int, level);
        QFETCH(int, message);
        QFETCH(QString, event);
        QFETCH(Params, params);
        UsageTracker tracker(logPath(QTest::currentDataTag()));
        tracker.setLevel(static_cast<UsageTracker::Level>(level), false);
        if (message == 0)
            publishClick(QStringLiteral("showCollectionPage"), QStringLiteral("pagesToolBar"), {{QStringLiteral("collection"), QStringLiteral("Effects")}});
        else if (message == 1)
            PubSub::publish(Statistics::CodecsFailed(QStringLiteral("mkv"), {QStringLiteral("vp9"), QStringLiteral("opus")}));
        else
            PubSub::publish(Statistics::DeleteFailedFilesEventNotification(true, false));
        QCOMPARE(tracker.records().size(), 1);
        QCOMPARE(tracker.records().at(0).event, event);
        QCOMPARE(tracker.records().at(0).params, params);
        tracker.flush();
        UsageTracker::Record written;
        QVERIFY(UsageAuditLog::fromLine(readAll(tracker.logPath()).trimmed(), &written));
        QCOMPARE(written.event, event);
        QCOMPARE(written.params, params);
    }

    // Parameters (name, value) that could be a path or an identifier are dropped; an event
    // or source that looks like one refuses the whole record.
    void noPathsOrIdentifiers_data()
    {
        QTest::addColumn<QString>("event");
        QTest::addColumn<QString>("source");
        QTest::addColumn<Params>("params");
        QTest::addColumn<bool>("recorded");
        QTest::addColumn<Params>("kept");
        const Params safe{{QStringLiteral("format"), QStringLiteral("mp4")}};
        auto with = [&](const char* name, const char* value) {
            Params p = safe;
            p.insert(QLatin1String(name), QString::fromUtf8(value));
            return p;
        };
        QTest::newRow("safe") << "export" << "toolbar" << safe << true << safe;
        QTest::newRow("unix path value") << "export" << "toolbar" << with("target", "/home/ann/film.mp4") << true << safe;
        QTest::newRow("home path value") << "export" << "toolbar" << with("target", "~/film.mp4") << true << safe;
        QTest::newRow("windows path value") << "export" << "toolbar" << with("target", "C:\\Users\\ann\\a.mp4") << true << safe;
        QTest::newRow("drive letter") << "export" << "toolbar" << with("target", "D:film.mp4") << true << safe;
        QTest::newRow("file url") << "export" << "toolbar" << with("target", "file:///tmp/a.mp4") << true << safe;
        QTest::newRow("uuid") << "export" << "toolbar" << with("session", "123e4567-e89b-12d3-a456-426614174000") << true << safe;
        QTest::newRow("machine id") << "export" << "toolbar" << with("m", "4c4c454400394b10804cb4c04f4e3732") << true << safe;
        QTest::newRow("serial number") << "export" << "toolbar" << with("licence", "KV2026X9Q7Z3M4") << true << safe;
        QTest::newRow("e-mail") << "export" << "toolbar" << with("contact", "ann@example.org") << true << safe;
        QTest::newRow("long free text") << "export" << "toolbar" << with("title", QByteArray(80, 'a').constData()) << true << safe;
        QTest::newRow("name: file") << "export" << "toolbar" << with("fileName", "holiday") << true << safe;
        QTest::newRow("name: path") << "export" << "toolbar" << with("outputPath", "out") << true << safe;
        QTest::newRow("name: id") << "export" << "toolbar" << with("id", "7") << true << safe;
        QTest::newRow("name: clipId") << "export" << "toolbar" << with("clipId", "7") << true << safe;
        QTest::newRow("name: user") << "export" << "toolbar" << with("userName", "ann") << true << safe;
        QTest::newRow("name: host") << "export" << "toolbar" << with("hostname", "box") << true << safe;
        QTest::newRow("short numbers kept") << "export" << "toolbar" << with("count", "12") << true << with("count", "12");
        QTest::newRow("codec list kept") << "export" << "toolbar" << with("codecs", "h264,aac") << true << with("codecs", "h264,aac");
        QTest::newRow("event is a path") << "/home/ann/secret.mp4" << "toolbar" << safe << false << Params();
        QTest::newRow("source is a path") << "export" << "/home/ann" << safe << false << Params();
        QTest::newRow("event is a uuid") << "123e4567-e89b-12d3-a456-426614174000" << "" << safe << false << Params();
        QTest::newRow("empty event") << "" << "toolbar" << safe << false << Params();
    }
    void noPathsOrIdentifiers()
    {
        QFETCH(QString, event);
        QFETCH(QString, source);
        QFETCH(Params, params);
        QFETCH(bool, recorded);
        QFETCH(Params, kept);
        UsageTracker tracker(logPath("private.jsonl"));
        tracker.setLevel(UsageTracker::Level::Detailed, false);
        publishClick(event, source, params);
        QCOMPARE(tracker.records().size(), recorded ? 1 : 0);
        QCOMPARE(tracker.refusedCount(), recorded ? 0 : 1);
        if (recorded)
            QCOMPARE(tracker.records().at(0).params, kept);
        tracker.flush();
        // Whatever was dropped is in the log neither.
        const QByteArray log = readAll(tracker.logPath());
        for (auto it = params.cbegin(); it != params.cend(); ++it) {
            if (kept.contains(it.key()))
                continue;
            QVERIFY2(!log.contains('"' + it.key().toUtf8() + '"'), log.constData());
            if (it.value().size() > 3) // a short one may well be part of the time
                QVERIFY2(!log.contains(it.value().toUtf8()), log.constData());
        }
        QFile::remove(tracker.logPath());
    }

    // Records of one run are read back by the next; the file is the user's only.
    void auditLogIsReadBack()
    {
        const QString path = logPath("history.jsonl");
        {
            UsageTracker tracker(path);
            tracker.setLevel(UsageTracker::Level::Basic, false);
            for (int i = 0; i < 3; ++i)
                publishClick(QStringLiteral("undo"), QStringLiteral("editMenu"));
        }
        QCOMPARE(readAll(path).count('\n'), 3);
        QCOMPARE(QFile::permissions(path) & (QFileDevice::ReadOther | QFileDevice::ReadGroup), QFileDevice::Permissions());
        UsageTracker next(path);
        next.setLevel(UsageTracker::Level::Basic, false);
        publishClick(QStringLiteral("redo"), QStringLiteral("editMenu"));
        QTRY_COMPARE(next.records().size(), 4);
        QCOMPARE(next.records().first().event, QStringLiteral("undo"));
        QCOMPARE(next.records().last().event, QStringLiteral("redo"));
        QVERIFY(next.isLogHealthy());
    }

    // A log that cannot be written, or was found damaged, is left alone; recording goes on in memory.
    void unwritableOrDamagedLog_data()
    {
        QTest::addColumn<QString>("setup");
        QTest::newRow("a folder where the file should be") << "folder";
        QTest::newRow("read-only file") << "readonly";
        QTest::newRow("a file where its folder should be") << "parentfile";
        QTest::newRow("damaged lines") << "damaged";
        QTest::newRow("binary garbage") << "garbage";
        QTest::newRow("cut off mid-record") << "truncated";
    }
    void unwritableOrDamagedLog()
    {
        QFETCH(QString, setup);
        QString path = logPath("bad-") + setup;
        const QByteArray good = UsageAuditLog::toLine({QDateTime::currentDateTimeUtc(), QStringLiteral("undo"), QStringLiteral("editMenu"), {}});
        QByteArray content;
        if (setup == QLatin1String("folder")) {
            QVERIFY(QDir().mkpath(path));
        } else if (setup == QLatin1String("parentfile")) {
            QFile parent(path);
            QVERIFY(parent.open(QIODevice::WriteOnly));
            path += QStringLiteral("/usage.jsonl");
        } else {
            if (setup == QLatin1String("readonly"))
                content = good;
            else if (setup == QLatin1String("damaged"))
                content = good + "not a record\n{\"event\": 3}\n" + good;
            else if (setup == QLatin1String("garbage"))
                content = QByteArray("\x00\xff\xfe\x01garbage\n", 12) + good;
            else
                content = good + good.left(good.size() / 2);
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(content);
            file.close();
            if (setup == QLatin1String("readonly"))
                QFile::setPermissions(path, QFileDevice::ReadOwner);
        }
        if (setup == QLatin1String("readonly") && QFileInfo(path).isWritable())
            QSKIP("running as a user who can write any file");
        UsageTracker tracker(path);
        tracker.setLevel(UsageTracker::Level::Basic, false);
        for (int i = 0; i < 2; ++i)
            publishClick(QStringLiteral("zoomIn"), QStringLiteral("timelineToolBar"));
        tracker.flush();
        QVERIFY(!tracker.isLogHealthy());
        QTRY_VERIFY(tracker.records().size() >= 2); // this run's records, and what could be read
        QCOMPARE(tracker.records().last().event, QStringLiteral("zoomIn"));
        if (!content.isEmpty())
            QCOMPARE(readAll(path), content); // never written over
        // Deleting the record starts a fresh, healthy log (when the file can be deleted).
        if (setup != QLatin1String("folder") && setup != QLatin1String("parentfile")) {
            tracker.clearRecords();
            QVERIFY(tracker.records().isEmpty());
            publishClick(QStringLiteral("zoomOut"), QStringLiteral("timelineToolBar"));
            tracker.flush();
            QVERIFY(tracker.isLogHealthy());
            QVERIFY(readAll(path).contains("zoomOut"));
        }
    }

    // Settings > Preferences: the user picks a level and presses OK, or changes their mind.
    void preferencesDialogAsksForALevel_data()
    {
        QTest::addColumn<QString>("choice");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("stored");
        QTest::newRow("detailed, OK") << "usageLevelDetailed" << true << "detailed";
        QTest::newRow("basic, OK") << "usageLevelBasic" << true << "basic";
        QTest::newRow("detailed, Cancel") << "usageLevelDetailed" << false << "";
    }
    void preferencesDialogAsksForALevel()
    {
        QFETCH(QString, choice);
        QFETCH(bool, ok);
        QFETCH(QString, stored);
        UsageTracker tracker(logPath("prefs.jsonl"));
        QMainWindow window;
        UsageUi::install(&window, &tracker);
        QString described;
        whenShown<UsagePreferencesDialog>([&](UsagePreferencesDialog* dialog) {
            QVERIFY(dialog->findChild<QRadioButton*>(QStringLiteral("usageLevelOff"))->isChecked());
            auto* radio = dialog->findChild<QRadioButton*>(choice);
            QTest::mouseClick(radio, Qt::LeftButton, Qt::NoModifier, QPoint(6, radio->height() / 2));
            described = dialog->findChild<QLabel*>(QStringLiteral("usageLevelDetails"))->text();
            auto* box = dialog->findChild<QDialogButtonBox*>();
            QTest::mouseClick(box->button(ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel), Qt::LeftButton);
        });
        window.findChild<QAction*>(QStringLiteral("preferencesAction"))->trigger();
        QVERIFY(!described.isEmpty());
        QCOMPARE(Settings::value(QStringLiteral("UsageStatistics/level")).toString(), stored);
        QCOMPARE(UsageTracker::levelName(tracker.level()), stored.isEmpty() ? QStringLiteral("off") : stored);
    }

    // Help > Usage Data lists the records, newest first, and deletes them on request.
    void usageDataShowsAndDeletesTheRecord()
    {
        UsageTracker tracker(logPath("shown.jsonl"));
        tracker.setLevel(UsageTracker::Level::Detailed, false);
        publishClick(QStringLiteral("showCollectionPage"), QStringLiteral("pagesToolBar"), {{QStringLiteral("collection"), QStringLiteral("Effects")}});
        publishClick(QStringLiteral("zoomIn"), QStringLiteral("timelineToolBar"));
        QMainWindow window;
        UsageUi::install(&window, &tracker);
        QStringList firstRow;
        QString details;
        int rowsAfterDelete = -1;
        whenShown<UsageDataDialog>([&](UsageDataDialog* dialog) {
            QTableWidget* table = dialog->table();
            for (int column = 1; column < 3; ++column)
                firstRow << table->item(0, column)->text();
            details = table->item(1, 3)->text();
            QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("deleteUsageRecordButton")), Qt::LeftButton);
            rowsAfterDelete = table->rowCount();
            dialog->reject();
        });
        window.findChild<QAction*>(QStringLiteral("usageDataAction"))->trigger();
        QCOMPARE(firstRow, (QStringList{QStringLiteral("zoomIn"), QStringLiteral("timelineToolBar")}));
        QCOMPARE(details, QStringLiteral("collection: Effects"));
        QCOMPARE(rowsAfterDelete, 0);
        tracker.flush();
        QVERIFY(!readAll(tracker.logPath()).contains("zoomIn"));
    }

    // The status names the level in the user's language, not by the word the settings keep.
    void usageDataStatusIsInTheUsersLanguage()
    {
        QTranslator german;
        QVERIFY(german.load(qEnvironmentVariable("KLIPVANE_TEST_BIN_DIR") + QStringLiteral("/translations/klipvane_de_DE.qm")));
        QCoreApplication::installTranslator(&german);
        const auto uninstall = qScopeGuard([&] { QCoreApplication::removeTranslator(&german); });
        UsageTracker tracker(logPath("german.jsonl"));
        tracker.setLevel(UsageTracker::Level::Detailed, false);
        QMainWindow window;
        UsageUi::install(&window, &tracker);
        QString status;
        whenShown<UsageDataDialog>([&](UsageDataDialog* dialog) {
            status = dialog->findChild<QLabel*>(QStringLiteral("usageDataStatus"))->text();
            dialog->reject();
        });
        window.findChild<QAction*>(QStringLiteral("usageDataAction"))->trigger();
        QVERIFY2(status.startsWith(QStringLiteral("Aufzeichnung: ausführlich.")), qPrintable(status));
    }

    // Real buttons of a parsed window reach the tracker; GUI work per click stays one record.
    void clickedButtonsAreRecorded()
    {
        UsageTracker tracker(logPath("clicks.jsonl"));
        tracker.setLevel(UsageTracker::Level::Basic, false);
        QMainWindow window;
        auto* central = new QWidget;
        auto* zoom = new QPushButton(QStringLiteral("+"), central);
        Statistics::setEventKey(zoom, QStringLiteral("zoomIn"), QStringLiteral("timelineToolBar"));
        auto* snap = new QCheckBox(QStringLiteral("Snap"), central);
        snap->move(0, 40);
        Statistics::setEventKey(snap, QStringLiteral("snapOn"), QStringLiteral("timelineToolBar"));
        Statistics::setEventState(snap, true);
        window.setCentralWidget(central);
        UsageUi::install(&window, &tracker);
        UsageUi::parseWindow(&window);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::mouseClick(zoom, Qt::LeftButton);
        QTest::mouseClick(snap, Qt::LeftButton, Qt::NoModifier, QPoint(6, snap->height() / 2)); // checked: counted
        QTest::mouseClick(snap, Qt::LeftButton, Qt::NoModifier, QPoint(6, snap->height() / 2)); // unchecked: not
        QVERIFY(UsageUi::activateTagged(&window, QStringLiteral("zoomIn@timelineToolBar")));
        QVERIFY(!UsageUi::activateTagged(&window, QStringLiteral("zoomIn@elsewhere")));
        QStringList events;
        for (const UsageTracker::Record& record : tracker.records())
            events << record.event;
        QCOMPARE(events, (QStringList{"zoomIn", "snapOn", "zoomIn"}));
    }
};

QTEST_MAIN(TestUsageTracker)
#include "tst_usage_tracker.moc"
