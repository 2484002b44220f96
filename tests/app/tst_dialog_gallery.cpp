// `klipvane --dialog-gallery <folder>` renders every standard dialog to a PNG and exits.
#include "TestSandbox.h"

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class tst_dialog_gallery : public QObject
{
    Q_OBJECT

private slots:
    void rendersOnePicturePerDialog_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::newRow("en_US") << QStringLiteral("en_US");
        QTest::newRow("de_DE") << QStringLiteral("de_DE");
    }

    void rendersOnePicturePerDialog()
    {
        QFETCH(QString, locale);
        QTemporaryDir out;
        QProcess host;
        host.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        host.start(QString::fromLocal8Bit(qgetenv("KLIPVANE_TEST_BIN_DIR")) + QStringLiteral("/klipvane"),
                   {QStringLiteral("--locale"), locale, QStringLiteral("--dialog-gallery"), out.path()});
        QVERIFY(host.waitForStarted());
        if (!host.waitForFinished(30000)) {
            host.kill();
            host.waitForFinished();
            QFAIL("the gallery did not finish");
        }
        QCOMPARE(host.exitStatus(), QProcess::NormalExit);
        QCOMPARE(host.exitCode(), 0);

        const QStringList expected{
            QStringLiteral("alertModifiedProject"), QStringLiteral("alertOverwrite"),
            QStringLiteral("alertOverwriteFolder"), QStringLiteral("alertRestoreSession"),
            QStringLiteral("alertAdjustProjectAspect"), QStringLiteral("alertAction"),
            QStringLiteral("alertAction_checkBox"), QStringLiteral("showFileInfo"),
            QStringLiteral("showResourceLicense"), QStringLiteral("showHasFailedFiles"),
            QStringLiteral("showHasH265FailedFiles"), QStringLiteral("showCantPasteEffects"),
            QStringLiteral("showInfo"), QStringLiteral("showWarning"), QStringLiteral("showCriticalError"),
            QStringLiteral("showValidationInputDialog"), QStringLiteral("showCrumbitInputDialog"),
            QStringLiteral("alertMissingFile")};
        QCOMPARE(QDir(out.path()).entryList({QStringLiteral("*.png")}).size(), expected.size());
        for (const QString& name : expected) {
            const QImage image(out.filePath(name + QStringLiteral(".png")));
            QVERIFY2(!image.isNull(), qPrintable(name));
            QVERIFY2(image.width() >= 150 && image.height() >= 60, qPrintable(name));
        }
    }
};

QTEST_GUILESS_MAIN(tst_dialog_gallery)
#include "tst_dialog_gallery.moc"
