#include <Settings/Settings.h>

#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include "TestSandbox.h"

class TestSettings : public QObject
{
    Q_OBJECT

private slots:
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
    }
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
