#include <Settings/Settings.h>

#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include "TestSandbox.h"

class TestSettings : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void defaultFileFollowsConfigDir();
    void dontShowDialogRoundTrip_data();
    void dontShowDialogRoundTrip();
    void persistsAcrossSetFileName();
    void writtenAsIniFile();

private:
    QTemporaryDir m_dir;
    QString m_file;
};

void TestSettings::initTestCase()
{
    QVERIFY(m_dir.isValid());
    qputenv("KLIPVANE_CONFIG_DIR", m_dir.filePath(QStringLiteral("config")).toLocal8Bit());
}

void TestSettings::init()
{
    // A fresh file for every test function.
    m_file = m_dir.filePath(QStringLiteral("%1.ini").arg(QTest::currentTestFunction()));
    QFile::remove(m_file);
    Settings::setFileName(m_file);
}

void TestSettings::defaultFileFollowsConfigDir()
{
    Settings::setFileName(QString());
    QCOMPARE(Settings::fileName(), m_dir.filePath(QStringLiteral("config/klipvane.ini")));
    Settings::setValue(QStringLiteral("probe"), 1);
    QVERIFY(QFile::exists(m_dir.filePath(QStringLiteral("config/klipvane.ini"))));
}

void TestSettings::dontShowDialogRoundTrip_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("plain") << QStringLiteral("HDRFilesInfoDontShow");
    QTest::newRow("with spaces") << QStringLiteral("Codec warning");
    QTest::newRow("with slash") << QStringLiteral("Export/Overwrite");
    QTest::newRow("non-latin") << QStringLiteral("Предупреждение");
}

void TestSettings::dontShowDialogRoundTrip()
{
    QFETCH(QString, key);
    QCOMPARE(Settings::dontShowDialog(key), false);
    Settings::setDontShowDialog(key, true);
    QCOMPARE(Settings::dontShowDialog(key), true);
    // Other keys are untouched.
    QCOMPARE(Settings::dontShowDialog(key + QStringLiteral("X")), false);

    // Read back from the file by a fresh store.
    Settings::setFileName(m_file);
    QCOMPARE(Settings::dontShowDialog(key), true);

    Settings::setDontShowDialog(key, false);
    Settings::setFileName(m_file);
    QCOMPARE(Settings::dontShowDialog(key), false);
}

void TestSettings::persistsAcrossSetFileName()
{
    Settings::setValue(QStringLiteral("Aspect/adjust"), QStringLiteral("ask"));
    Settings::setDontShowDialog(QStringLiteral("one"), true);

    const QString other = m_dir.filePath(QStringLiteral("other.ini"));
    QFile::remove(other);
    Settings::setFileName(other);
    QCOMPARE(Settings::fileName(), other);
    QVERIFY(!Settings::value(QStringLiteral("Aspect/adjust")).isValid());
    QCOMPARE(Settings::dontShowDialog(QStringLiteral("one")), false);
    QCOMPARE(Settings::value(QStringLiteral("Aspect/adjust"), QStringLiteral("default")).toString(),
             QStringLiteral("default"));

    Settings::setFileName(m_file);
    QCOMPARE(Settings::value(QStringLiteral("Aspect/adjust")).toString(), QStringLiteral("ask"));
    QCOMPARE(Settings::dontShowDialog(QStringLiteral("one")), true);
}

void TestSettings::writtenAsIniFile()
{
    Settings::setDontShowDialog(QStringLiteral("HDRFilesInfoDontShow"), true);
    Settings::setValue(QStringLiteral("count"), 3);
    // Written at once, so another process (or a crash right after) sees it.
    QSettings reader(m_file, QSettings::IniFormat);
    QCOMPARE(reader.value(QStringLiteral("count")).toInt(), 3);
    QCOMPARE(reader.allKeys().size(), 2);
}

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
