// `cmake --install` into a scratch prefix gives an editor that works on its own: it finds its
// libraries, companions, product description, registry and translations in the prefix, and
// a second launch of it hands its files to it.
#include "HostProcess.h"
#include "TestSandbox.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class TestInstall : public QObject
{
    Q_OBJECT

    QTemporaryDir m_prefix;

    QString installed(const QString& relative) const { return m_prefix.filePath(relative); }

private slots:
    void initTestCase()
    {
        QProcess install;
        install.setProcessChannelMode(QProcess::MergedChannels);
        install.start(QStringLiteral(KV_CMAKE_COMMAND),
                      {QStringLiteral("--install"), QStringLiteral(KV_BUILD_DIR), QStringLiteral("--prefix"), m_prefix.path()});
        QVERIFY(install.waitForFinished(60000));
        QVERIFY2(install.exitStatus() == QProcess::NormalExit && install.exitCode() == 0,
                 install.readAll().constData());
    }

    void installsACompleteEditor_data()
    {
        QTest::addColumn<QString>("file");
        for (const char* file : {"bin/klipvane", "bin/kvcompanion", "bin/kvprobe", "bin/product.json",
                                 "bin/applications.json", "bin/translations/klipvane_de_DE.qm",
                                 "lib/libEditorAppUtil.so", "lib/libKvMediaReader.so", "lib/libklipvane-editor.so"})
            QTest::newRow(file) << QString::fromLatin1(file);
    }

    void installsACompleteEditor()
    {
        QFETCH(QString, file);
        QVERIFY2(QFileInfo::exists(installed(file)), qPrintable(file));
    }

    // The installed editor runs from the prefix alone (no library of the build tree, its
    // translations found) and a second launch of it is handed to it: one editor.
    void installedEditorIsOneEditor()
    {
        QTemporaryDir home;
        QProcessEnvironment environment = KvTest::hostEnvironment(home);
        environment.remove(QStringLiteral("LD_LIBRARY_PATH"));
        const QString clip = QDir(home.path()).canonicalPath() + QStringLiteral("/clip.mp4");
        QFile(clip).open(QIODevice::WriteOnly);

        KvTest::Host editor(environment, installed(QStringLiteral("bin/klipvane")),
                            {QStringLiteral("--locale"), QStringLiteral("de_DE"), QStringLiteral("--quit-after-ready"),
                             QStringLiteral("20000")});
        QVERIFY2(editor.waitForLog("] startup: ", 15000), editor.log().constData());

        QFile maps(QStringLiteral("/proc/%1/maps").arg(editor.processId()));
        QVERIFY(maps.open(QIODevice::ReadOnly));
        const QByteArray mapped = maps.readAll();
        const QByteArray prefix = QFile::encodeName(QDir(m_prefix.path()).canonicalPath()) + "/lib/";
        for (const char* library : {"/libEditorAppUtil.so", "/libKvPlatformCore.so", "/libKvPlatformIpc.so"}) {
            for (const QByteArray& line : mapped.split('\n')) {
                if (line.contains(library))
                    QVERIFY2(line.contains(prefix), line.constData());
            }
            QVERIFY2(mapped.contains(prefix + QByteArray(library + 1)), library);
        }
        QVERIFY2(!editor.log().contains("No translation for locale"), editor.log().constData());

        QProcess second;
        second.setProcessEnvironment(environment);
        second.start(installed(QStringLiteral("bin/klipvane")), {clip});
        QVERIFY(second.waitForFinished(10000));
        QVERIFY2(second.exitStatus() == QProcess::NormalExit && second.exitCode() == 0,
                 second.readAllStandardError().constData());
        QVERIFY2(editor.waitForLog("] command: AddFiles " + QFile::encodeName(clip), 5000), editor.log().constData());
    }
};

QTEST_GUILESS_MAIN(TestInstall)
#include "tst_install.moc"
