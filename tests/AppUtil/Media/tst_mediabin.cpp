// The reference host's media bin over the real media model.
#include "TestSandbox.h"
#include "MediaTestServices.h"
#include "ScriptedDialogStrategy.h"
#include "TestMedia.h"

#include "MediaBin.h"

#include <Settings/Settings.h>

#include <QAction>
#include <QFileInfo>
#include <QListWidget>
#include <QMenu>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class tst_MediaBin : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void statesFactsAndRemoval();
    void fileInfoFromContextMenu();

private:
    // Appends items as the main window does, then hands the paths to the bin.
    void add(MediaBin& mediaBin, QListWidget& list, const QStringList& names);

    QTemporaryDir m_config;
    std::shared_ptr<ScriptedDialogStrategy> m_dialogs;
};

void tst_MediaBin::initTestCase()
{
    if (TestMedia::folder().isEmpty())
        QSKIP("ffmpeg is not installed: no test media");
    MediaTestServices::install();
    Settings::setFileName(m_config.filePath(QStringLiteral("klipvane.ini")));
}

void tst_MediaBin::init()
{
    m_dialogs = std::make_shared<ScriptedDialogStrategy>();
    Dialog::initialize(m_dialogs);
}

void tst_MediaBin::cleanup()
{
    Dialog::initialize({});
    QVERIFY(QApplication::topLevelWidgets().isEmpty() || !QApplication::activeModalWidget());
}

void tst_MediaBin::add(MediaBin& mediaBin, QListWidget& list, const QStringList& names)
{
    QStringList paths;
    for (const QString& name : names) {
        const QString path = TestMedia::path(name.toUtf8().constData());
        auto* item = new QListWidgetItem(QFileInfo(path).fileName(), &list);
        item->setData(Qt::UserRole, path);
        paths << path;
    }
    mediaBin.addFiles(paths);
}

void tst_MediaBin::statesFactsAndRemoval()
{
    QListWidget list;
    MediaBin mediaBin(&list);
    QSignalSpy reported(&mediaBin, &MediaBin::batchReported);
    m_dialogs->answer(QStringLiteral("showHasFailedFiles"), true); // "Remove"

    add(mediaBin, list, {QStringLiteral("h264_1080p.mp4"), QStringLiteral("text.mp4"), QStringLiteral("hdr_h264.mp4")});
    QCOMPARE(list.item(0)->data(MediaBin::StateRole).toString(), QStringLiteral("opening"));
    QVERIFY(reported.wait(20000));

    // The failed file was removed at the user's choice; the others show their facts.
    QCOMPARE(list.count(), 2);
    QCOMPARE(m_dialogs->count(QStringLiteral("showHasFailedFiles")), 1);
    QVERIFY(m_dialogs->lastArguments(QStringLiteral("showHasFailedFiles")).at(0).toBool());
    QCOMPARE(m_dialogs->count(QStringLiteral("showInfo")), 1); // HDR notice
    QCOMPARE(list.item(0)->data(MediaBin::StateRole).toString(), QStringLiteral("opened"));
    const QString facts = list.item(0)->data(MediaBin::FactsRole).toString();
    QVERIFY2(facts.contains(QStringLiteral("1920\u00d71080")), qPrintable(facts));
    QVERIFY2(list.item(1)->data(MediaBin::FactsRole).toString().contains(QLatin1String("HDR")), qPrintable(facts));
    QCOMPARE(mediaBin.pool().files().size(), 2);

    // A file kept after failing shows why.
    add(mediaBin, list, {QStringLiteral("truncated.mp4")});
    QVERIFY(reported.wait(20000));
    QCOMPARE(list.count(), 3);
    QCOMPARE(list.item(2)->data(MediaBin::StateRole).toString(), QStringLiteral("failed"));
    QVERIFY(list.item(2)->data(MediaBin::FactsRole).toString().contains(QLatin1String("corrupted or missing")));
    QCOMPARE(m_dialogs->count(QStringLiteral("showInfo")), 1); // once per handler
}

void tst_MediaBin::fileInfoFromContextMenu()
{
    QListWidget list;
    list.resize(400, 300);
    list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    MediaBin mediaBin(&list);
    QSignalSpy reported(&mediaBin, &MediaBin::batchReported);
    add(mediaBin, list, {QStringLiteral("h264_tiny.mp4")});
    QVERIFY(reported.wait(20000));

    bool clicked = false;
    QTimer::singleShot(0, this, [&clicked] {
        QTRY_VERIFY(QApplication::activePopupWidget());
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QVERIFY(menu);
        auto* info = menu->findChild<QAction*>(QStringLiteral("fileInfoAction"));
        QVERIFY(info && info->isEnabled());
        QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(info).center());
        clicked = true;
    });
    const QPoint centre = list.visualItemRect(list.item(0)).center();
    emit list.customContextMenuRequested(centre);
    QVERIFY(clicked);
    QCOMPARE(m_dialogs->count(QStringLiteral("showFileInfo")), 1);
    QCOMPARE(m_dialogs->lastArguments(QStringLiteral("showFileInfo")).at(0).toString(), TestMedia::path("h264_tiny.mp4"));
}

QTEST_MAIN(tst_MediaBin)
#include "tst_mediabin.moc"
