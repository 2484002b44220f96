// `klipvane --dialog-gallery <folder>` renders every standard dialog to a PNG and exits.
#include "HostProcess.h"
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
    // The gallery fails when a button is narrower than its text, as a long translation makes it.
    void rendersOnePicturePerDialog_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::newRow("English") << "en_US";
        QTest::newRow("German") << "de_DE";
    }

    void rendersOnePicturePerDialog()
    {
        QFETCH(QString, locale);
        QTemporaryDir out;
        QProcess host;
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")),
                   {QStringLiteral("--locale"), locale, QStringLiteral("--dialog-gallery"), out.path()});
        if (!host.waitForFinished(30000)) {
            host.kill();
            QFAIL("the gallery did not finish");
        }
        const QByteArray log = host.readAllStandardError();
        QVERIFY2(!log.contains("] dialog gallery: no picture") && !log.contains("too narrow"), log.constData());
        QVERIFY(host.exitStatus() == QProcess::NormalExit && host.exitCode() == 0);
        const QStringList expected = QStringLiteral(
            "alertModifiedProject alertOverwrite alertOverwriteFolder alertRestoreSession alertAdjustProjectAspect "
            "alertAction alertAction_checkBox showFileInfo showResourceLicense showHasFailedFiles showHasH265FailedFiles "
            "showCantPasteEffects showInfo showWarning showCriticalError showValidationInputDialog "
            "showCrumbitInputDialog alertMissingFile").split(QLatin1Char(' '));
        QCOMPARE(QDir(out.path()).entryList({QStringLiteral("*.png")}).size(), expected.size());
        for (const QString& name : expected) {
            const QImage image(out.filePath(name + QStringLiteral(".png")));
            QVERIFY2(image.width() >= 150 && image.height() >= 60, qPrintable(name));
        }
    }
};

QTEST_GUILESS_MAIN(tst_dialog_gallery)
#include "tst_dialog_gallery.moc"
