// The log of a program, written by the helper `logwriter` (a real process per run, since
// glog starts once per process): private files, a bounded number of runs, one line per
// message, and no file for a process that never asks for one.
#include "HostProcess.h"
#include "TestSandbox.h"

#include <Log/Logging.h>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr QFileDevice::Permissions kOwnerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

struct Run
{
    int exitCode = -1;
    QByteArray stderrText;
};

Run logwriter(const QString& logFolder, const QStringList& arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KLIPVANE_LOG_DIR"), logFolder);
    process.setProcessEnvironment(environment);
    process.start(KvTest::builtProgram(QStringLiteral("logwriter")), arguments);
    if (!process.waitForFinished(10000)) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardError()};
}

QStringList logFiles(const QString& folder)
{
    return QDir(folder).entryList({QStringLiteral("logwriter.*")}, QDir::Files | QDir::System, QDir::Name);
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestLogging : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_folder;

private slots:
    void init()
    {
        m_folder = m_dir.filePath(QString::fromLatin1(QTest::currentTestFunction()) + QLatin1Char('-') +
                                  QString::fromLatin1(QTest::currentDataTag()).replace(QLatin1Char(' '), QLatin1Char('_')));
    }

    // Folder 0700 and files 0600, also when an earlier run left the folder open to all.
    void privateToTheUser_data()
    {
        QTest::addColumn<bool>("folderExists");
        QTest::newRow("new folder") << false;
        QTest::newRow("folder open to everyone") << true;
    }

    void privateToTheUser()
    {
        QFETCH(bool, folderExists);
        if (folderExists) {
            QVERIFY(QDir().mkpath(m_folder));
            QVERIFY(QFile::setPermissions(m_folder, QFileDevice::Permissions(0x7755)));
        }
        QCOMPARE(logwriter(m_folder, {QStringLiteral("now"), QStringLiteral("opened /home/user/clip.mp4")}).exitCode, 0);
        QCOMPARE(QFileInfo(m_folder).permissions() & 0x7077, kOwnerOnly | QFileDevice::ExeOwner);
        const QStringList files = logFiles(m_folder);
        QCOMPARE(files.size(), 1);
        QCOMPARE(QFileInfo(QDir(m_folder).filePath(files.first())).permissions() & 0x7077, kOwnerOnly);
        QVERIFY(contents(QDir(m_folder).filePath(files.first())).contains("opened /home/user/clip.mp4"));
    }

    // Control characters in a message never start a new line, in the file nor on stderr.
    void oneMessageIsOneLine()
    {
        const Run run = logwriter(m_folder, {QStringLiteral("now"), QStringLiteral("opened /tmp/a\nb\r\x01\\.mp4")});
        QCOMPARE(run.exitCode, 0);
        const QByteArray written = contents(QDir(m_folder).filePath(logFiles(m_folder).value(0)));
        for (const QByteArray& text : {written, run.stderrText}) {
            const QList<QByteArray> lines = text.trimmed().split('\n');
            QCOMPARE(lines.size(), 2); // the message and "done"
            QVERIFY2(lines.first().endsWith("] opened /tmp/a\\nb\\r\\x01\\\\.mp4"), lines.first().constData());
        }
    }

    // Only the newest runs keep their files; files of the former per-severity layout go.
    void keepsTheLastRuns()
    {
        QVERIFY(QDir().mkpath(m_folder));
        const QStringList former{QStringLiteral("logwriter.host.root.log.INFO.20250101-101010.77"),
                                 QStringLiteral("logwriter.host.root.log.ERROR.20250101-101010.77")};
        for (const QString& name : former) {
            QFile file(QDir(m_folder).filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QVERIFY(QFile::link(former.first(), QDir(m_folder).filePath(QStringLiteral("logwriter.INFO"))));
        QFile other(QDir(m_folder).filePath(QStringLiteral("klipvane.20250101-101010.000.5.log")));
        QVERIFY(other.open(QIODevice::WriteOnly));

        const int runs = Tavrin::Log::kKeptRuns + 3;
        for (int i = 0; i < runs; ++i)
            QCOMPARE(logwriter(m_folder, {QStringLiteral("now"), QStringLiteral("run %1").arg(i)}).exitCode, 0);
        const QStringList files = logFiles(m_folder);
        QCOMPARE(files.size(), Tavrin::Log::kKeptRuns);
        QVERIFY(contents(QDir(m_folder).filePath(files.first())).contains("] run 3\n"));
        QVERIFY(contents(QDir(m_folder).filePath(files.last())).contains(QStringLiteral("] run %1\n").arg(runs - 1).toUtf8()));
        QVERIFY(other.exists()); // another program's runs are its own
    }

    // A process that defers its file writes none unless it starts it; when it does, the lines
    // held until then come first.
    void deferredFile_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<int>("files");
        QTest::newRow("never started: no file") << "never" << 0;
        QTest::newRow("started later: held lines kept") << "later" << 1;
    }

    void deferredFile()
    {
        QFETCH(QString, mode);
        QFETCH(int, files);
        const Run run = logwriter(m_folder, {mode, QStringLiteral("before the file")});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.stderrText.contains("] before the file\n"));
        QCOMPARE(logFiles(m_folder).size(), files);
        if (files) {
            const QList<QByteArray> lines = contents(QDir(m_folder).filePath(logFiles(m_folder).first())).trimmed().split('\n');
            QCOMPARE(lines.size(), 2);
            QVERIFY(lines.at(0).endsWith("] before the file") && lines.at(1).endsWith("] done"));
        }
    }
};

QTEST_GUILESS_MAIN(TestLogging)
#include "tst_logging.moc"
