#include <Settings/Settings.h>

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <glog/logging.h>

#include <mutex>

#include "TestSandbox.h"

namespace {

// The error lines the settings store logs, read where glog hands them out.
class ErrorLines : public google::LogSink
{
public:
    ErrorLines() { google::AddLogSink(this); }
    ~ErrorLines() override { google::RemoveLogSink(this); }
    void send(google::LogSeverity severity, const char*, const char*, int, const google::LogMessageTime&,
              const char* message, size_t length) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (severity >= google::GLOG_ERROR)
            m_lines << QString::fromUtf8(message, int(length));
    }
    QStringList lines()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_lines;
    }

private:
    std::mutex m_mutex;
    QStringList m_lines;
};

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString& path, const QByteArray& text)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(text), qint64(text.size()));
}

} // namespace

class TestSettings : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { Settings::setFileName(QString()); }

    void storedInTheConfigFolder()
    {
        QTemporaryDir dir;
        qputenv("KLIPVANE_CONFIG_DIR", dir.filePath(QStringLiteral("config")).toLocal8Bit());
        Settings::setFileName(QString());
        const QString file = dir.filePath(QStringLiteral("config/klipvane.ini"));
        QCOMPARE(Settings::fileName(), file);

        const QString key = QStringLiteral("Export/Предупреждение");
        QVERIFY(!Settings::dontShowDialog(key));
        Settings::setDontShowDialog(key, true);
        Settings::setValue(QStringLiteral("count"), 3);
        // Written at once, so another process (or a crash right after) sees it.
        QSettings reader(file, QSettings::IniFormat);
        QCOMPARE(reader.value(QStringLiteral("count")).toInt(), 3);
        QCOMPARE(reader.allKeys().size(), 2);

        // Another file knows nothing of it; a fresh store of the first reads it back.
        Settings::setFileName(dir.filePath(QStringLiteral("other.ini")));
        QVERIFY(!Settings::dontShowDialog(key));
        Settings::setFileName(file);
        QVERIFY(Settings::dontShowDialog(key));
        QVERIFY(Settings::isSaved());
    }

    // A file QSettings cannot read without losing keys: a copy is kept beside it, one error
    // names both, and however the editor goes on, the file stays as it was.
    void damagedFileIsKeptAndNeverWritten_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("unbalanced quote swallows the rest")
            << QByteArray("a=\"x\n[Export]\nformat=mp4\nDontShowDialogs\\HDRFilesInfo=true\n");
        QTest::newRow("unbalanced quote in a later section")
            << QByteArray("[Export]\nformat=mp4\ntitle=\"My \\\"film\\\"\n[General]\nlast=1\n");
        QTest::newRow("section header not closed") << QByteArray("[Export\nformat=mp4\n");
        QTest::newRow("line without a key") << QByteArray("format=mp4\nnot a setting\ncount=3\n");
    }

    void damagedFileIsKeptAndNeverWritten()
    {
        QFETCH(QByteArray, text);
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("klipvane.ini"));
        write(file, text);
        ErrorLines errors;
        Settings::setFileName(file);

        Settings::setValue(QStringLiteral("LaunchType/version"), QStringLiteral("0.1.0"));
        Settings::remove(QStringLiteral("Export"));
        Settings::sync();
        QCOMPARE(Settings::value(QStringLiteral("LaunchType/version")).toString(), QStringLiteral("0.1.0"));
        QVERIFY(!Settings::isSaved());
        QCOMPARE(contents(file), text);

        const QStringList copies = QDir(dir.path()).entryList({QStringLiteral("klipvane.ini.damaged-*")});
        QCOMPARE(copies.size(), 1);
        const QString copy = dir.filePath(copies.first());
        QCOMPARE(contents(copy), text);
        QCOMPARE(errors.lines().size(), 1);
        QVERIFY2(errors.lines().first().contains(file) && errors.lines().first().contains(copy),
                 qPrintable(errors.lines().first()));

        // The next start on the same damage keeps the copy it has rather than another one.
        Settings::setFileName(QString());
        Settings::setFileName(file);
        QVERIFY(!Settings::isSaved());
        QCOMPARE(QDir(dir.path()).entryList({QStringLiteral("klipvane.ini.damaged-*")}), copies);
    }

    // What QSettings itself writes (quotes, escapes, continued lines, comments) is clean.
    void cleanFileIsUsed()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("klipvane.ini"));
        write(file, "; written by hand\r\n[General] \r\nquote=\"say \\\"hi\\\"; ok\"\nlong=a\\\nb\n"
                    "[Export]\nformat=mp4, mov\n");
        ErrorLines errors;
        Settings::setFileName(file);
        QCOMPARE(Settings::value(QStringLiteral("quote")).toString(), QStringLiteral("say \"hi\"; ok"));
        QCOMPARE(Settings::value(QStringLiteral("long")).toString(), QStringLiteral("ab"));
        Settings::setValue(QStringLiteral("text"), QStringLiteral("a \"b\" ; c\nd\\"));
        Settings::setFileName(QString());
        Settings::setFileName(file);
        QCOMPARE(Settings::value(QStringLiteral("text")).toString(), QStringLiteral("a \"b\" ; c\nd\\"));
        QCOMPARE(Settings::value(QStringLiteral("Export/format")).toStringList(), (QStringList{"mp4", "mov"}));
        QVERIFY(Settings::isSaved());
        QCOMPARE(errors.lines(), QStringList());
    }

    // Files the editor cannot use: one error line however often it asks, and it runs on.
    void unusableFileIsLoggedOnce_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QVariant>("expected"); // the value of "count" the editor sees
        QTest::newRow("a folder in place of the file") << "folder" << QVariant();
        QTest::newRow("read-only file: its values, no writes") << "read-only" << QVariant(QStringLiteral("7"));
        QTest::newRow("the folder cannot be created") << "no folder" << QVariant();
    }

    void unusableFileIsLoggedOnce()
    {
        QFETCH(QString, kind);
        QFETCH(QVariant, expected);
        QTemporaryDir dir;
        QString file = dir.filePath(QStringLiteral("klipvane.ini"));
        const QByteArray text = "count=7\n";
        if (kind == QLatin1String("folder")) {
            QVERIFY(QDir().mkpath(file));
        } else if (kind == QLatin1String("read-only")) {
            write(file, text);
            QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
        } else {
            write(dir.filePath(QStringLiteral("blocker")), text);
            file = dir.filePath(QStringLiteral("blocker/klipvane.ini"));
        }
        ErrorLines errors;
        Settings::setFileName(file);
        QCOMPARE(Settings::value(QStringLiteral("count")), expected);
        for (int i = 0; i < 3; ++i)
            Settings::setValue(QStringLiteral("count"), i);
        Settings::remove(QStringLiteral("other"));
        Settings::sync();
        QCOMPARE(Settings::value(QStringLiteral("count")).toInt(), 2);
        QVERIFY(!Settings::isSaved());
        QCOMPARE(errors.lines().size(), 1);
        QVERIFY2(errors.lines().first().contains(file), qPrintable(errors.lines().first()));
        if (kind == QLatin1String("read-only"))
            QCOMPARE(contents(file), text);
    }
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
