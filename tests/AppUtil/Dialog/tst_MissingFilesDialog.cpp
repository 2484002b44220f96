#include <Dialog/MissingFilesDialog/MissingFilesDialog.h>
#include <Dialog/MissingFilesDialog/MissingFilesSearch.h>
#include <Task/Task.h>

#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

#include "ModalAnswer.h"
#include "TestSandbox.h"

#include <unistd.h>

// The search tree ("@" is its root):
//   deeper/x/clip.mp4  one/clip.mp4  two/clip.mp4     (one name in three places)
//   two/song.MP3                                      (differs from song.mp3 only in case)
//   one/loop -> ..                                    (a link back up)
//   moved/a.mp4  moved/b.wav  moved/c.png  elsewhere/d.mp4
class TestMissingFilesDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        for (const char* file : {"deeper/x/clip.mp4", "one/clip.mp4", "two/clip.mp4", "two/song.MP3", "moved/a.mp4",
                                 "moved/b.wav", "moved/c.png", "elsewhere/d.mp4"})
            touch(QLatin1String(file), 10);
        QVERIFY(QFile::link(QStringLiteral(".."), at(QStringLiteral("one/loop"))));
    }

    void cleanup() { QVERIFY(QApplication::topLevelWidgets().isEmpty() || allHidden()); }

    void widgetsOfTheIdleState()
    {
        MissingFilesDialog dialog;
        dialog.setMissingFiles({QStringLiteral("/old/media/clip.mp4"), QStringLiteral("/old/media/../song.mp3")});
        dialog.show();
        for (const auto& [name, text] : std::initializer_list<std::pair<const char*, const char*>>{
                 {"headerLabel", "Please, specify the folder with lost files"},
                 {"descriptionLabel", "Your files were moved or deleted, please specify its new location to restore your project."},
                 {"progressLabel", "File search in progress..."}}) {
            auto* label = dialog.findChild<QLabel*>(QLatin1String(name));
            QVERIFY2(label, name);
            QCOMPARE(label->text(), QLatin1String(text));
        }
        QCOMPARE(button(dialog, "cancelButton")->text(), QStringLiteral("Cancel Search"));
        QCOMPARE(button(dialog, "skipButton")->text(), QStringLiteral("Skip"));
        QCOMPARE(button(dialog, "specifyFolderButton")->text(), QStringLiteral("Specify folder"));
        QCOMPARE(button(dialog, "specifyFolderButton")->property("styleHint").toString(), QStringLiteral("activeButton"));
        QCOMPARE(dialog.findChild<QProgressBar*>(QStringLiteral("progressGif"))->maximum(), 0);
        checkState(dialog, false);

        auto* view = dialog.findChild<QTableView*>(QStringLiteral("filesView"));
        auto* model = qobject_cast<QStandardItemModel*>(view->model());
        QCOMPARE(model->rowCount(), 2);
        QCOMPARE(model->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Name"));
        QCOMPARE(model->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Old path"));
        // Rows are built from the cleaned path and identified by the path as given.
        const int songRow = model->item(0, 0)->text() == QStringLiteral("song.mp3") ? 0 : 1;
        QCOMPARE(model->item(songRow, 1)->text(), QStringLiteral("/old"));
        QCOMPARE(model->item(songRow, 0)->data(258).toString(), QStringLiteral("/old/media/../song.mp3"));
        QCOMPARE(view->indexWidget(model->index(songRow, 0))->objectName(), QStringLiteral("nameLabel"));
        QWidget* pathFrame = view->indexWidget(model->index(songRow, 1));
        QCOMPARE(pathFrame->objectName(), QStringLiteral("pathFrame"));
        QVERIFY(pathFrame->findChild<QLabel*>(QStringLiteral("pathLabel")));
        QVERIFY(pathFrame->findChild<QToolButton*>(QStringLiteral("searchButton")));
        QVERIFY(!view->verticalHeader()->isVisible());
        QVERIFY(!view->showGrid());
    }

    // The first file met in traversal order wins (one/ is read before deeper/x/); of two old
    // paths with the same name, each new file takes the one whose folders it shares.
    void searchOfAFolder_data()
    {
        QTest::addColumn<QStringList>("missing");
        QTest::addColumn<QStringList>("expected"); // "old=new" (new relative to the tree), sorted
        QTest::addColumn<bool>("accepted");
        QTest::newRow("duplicates: nearest first")
            << QStringList{QStringLiteral("/old/clip.mp4")} << QStringList{QStringLiteral("/old/clip.mp4=one/clip.mp4")} << true;
        QTest::newRow("same name twice: folders decide")
            << QStringList{QStringLiteral("/old/two/clip.mp4"), QStringLiteral("/old/x/clip.mp4")}
            << QStringList{QStringLiteral("/old/two/clip.mp4=two/clip.mp4"), QStringLiteral("/old/x/clip.mp4=deeper/x/clip.mp4")}
            << true;
        QTest::newRow("case differs: no match")
            << QStringList{QStringLiteral("/old/song.mp3"), QStringLiteral("/old/a.mp4")}
            << QStringList{QStringLiteral("/old/a.mp4=moved/a.mp4")} << false;
    }

    void searchOfAFolder()
    {
        QFETCH(QStringList, missing);
        QFETCH(QStringList, expected);
        QFETCH(bool, accepted);
        MissingFilesDialog dialog;
        dialog.setMissingFiles(QSet<QString>(missing.cbegin(), missing.cend()));
        dialog.show();
        QSignalSpy finished(&dialog, &MissingFilesDialog::searchFinished);
        QSignalSpy accept(&dialog, &QDialog::accepted);
        QVERIFY(dialog.searchFolder(m_dir.path()));
        checkState(dialog, true);
        QVERIFY(!dialog.searchFolder(m_dir.path())); // one search at a time
        QVERIFY(finished.wait(5000));
        QCOMPARE(relative(dialog.foundFiles()), expected);
        QCOMPARE(accept.count(), accepted ? 1 : 0);
        if (!accepted) {
            checkState(dialog, false);
            QCOMPARE(dialog.findChild<QTableView*>()->model()->rowCount(), dialog.missingFiles().size());
        }
    }

    void searchUnderUnreadableFolderIsLoggedOnce()
    {
        if (::geteuid() == 0)
            QSKIP("root reads every folder; tst_traverser covers unreadable folders with a child that drops root");
        QTemporaryDir tree;
        QDir(tree.path()).mkpath(QStringLiteral("a/locked"));
        QDir(tree.path()).mkpath(QStringLiteral("b/locked"));
        QFile::setPermissions(tree.filePath(QStringLiteral("a/locked")), QFileDevice::Permissions());
        QFile::setPermissions(tree.filePath(QStringLiteral("b/locked")), QFileDevice::Permissions());
        const MissingFiles::SearchResult result = MissingFiles::search(tree.path(), {QStringLiteral("/x/y.mp4")});
        QCOMPARE(result.unreadableFolders, 2);
        QCOMPARE(result.remaining.size(), 1);
    }

    void specifyFolderOpensTheChooserAtTheFirstMissingFolder()
    {
        MissingFilesDialog dialog;
        dialog.setMissingFiles({at(QStringLiteral("moved/zz.mp4")), at(QStringLiteral("ztail/a.mp4"))});
        dialog.show();
        QSignalSpy finished(&dialog, &MissingFilesDialog::searchFinished);
        QString title, start;
        answerModal([&](QWidget* modal) {
            auto* chooser = qobject_cast<QFileDialog*>(modal);
            QVERIFY(chooser);
            title = chooser->windowTitle();
            start = chooser->directory().absolutePath();
            QVERIFY(chooser->testOption(QFileDialog::ShowDirsOnly));
            QVERIFY(chooser->testOption(QFileDialog::DontResolveSymlinks));
            chooser->setDirectory(at(QStringLiteral("moved")));
            static_cast<QDialog*>(chooser)->accept();
        });
        button(dialog, "specifyFolderButton")->click();
        QCOMPARE(title, QStringLiteral("Open Directory"));
        QCOMPARE(start, at(QStringLiteral("moved"))); // the folder of the first missing path, sorted
        QVERIFY(finished.wait(5000));
        QCOMPARE(dialog.foundFiles().value(at(QStringLiteral("ztail/a.mp4"))), at(QStringLiteral("moved/a.mp4")));

        // A cancelled chooser changes nothing.
        answerModal([](QWidget* modal) { qobject_cast<QDialog*>(modal)->reject(); });
        button(dialog, "specifyFolderButton")->click();
        QVERIFY(!dialog.isSearching());
        QCOMPARE(dialog.missingFiles().size(), 1);
    }

    // Locating a.mp4 by hand also relinks b.wav from the same folder, not d.mp4 from
    // elsewhere; locating the last one accepts at once.
    void locatingByHandRelinksTheFolder()
    {
        const QString a = QStringLiteral("/old/a.mp4"), b = QStringLiteral("/old/sub/b.wav"), d = QStringLiteral("/old/d.mp4");
        MissingFilesDialog dialog;
        dialog.setMissingFiles({a, b, d});
        dialog.show();
        QSignalSpy located(&dialog, &MissingFilesDialog::fileLocated);
        QString title;
        answerModal([&](QWidget* modal) {
            auto* chooser = qobject_cast<QFileDialog*>(modal);
            title = chooser->windowTitle();
            chooser->selectFile(at(QStringLiteral("moved/a.mp4")));
            static_cast<QDialog*>(chooser)->accept();
        });
        rowButton(dialog, a)->click();
        QCOMPARE(title, QStringLiteral("Find missing file: a.mp4"));
        QCOMPARE(located.count(), 2);
        QCOMPARE(dialog.foundFiles().value(b), at(QStringLiteral("moved/b.wav")));
        QCOMPARE(dialog.missingFiles(), QSet<QString>{d});
        QCOMPARE(dialog.findChild<QTableView*>()->model()->rowCount(), 1);
        QVERIFY(dialog.isVisible());

        QSignalSpy accepted(&dialog, &QDialog::accepted);
        answerModal([&](QWidget* modal) {
            auto* chooser = qobject_cast<QFileDialog*>(modal);
            chooser->selectFile(at(QStringLiteral("elsewhere/d.mp4")));
            static_cast<QDialog*>(chooser)->accept();
        });
        rowButton(dialog, d)->click();
        QCOMPARE(accepted.count(), 1);
        QCOMPARE(dialog.foundFiles().size(), 3);
    }

    void locatingAFileOfNoKnownTypeShowsNothing()
    {
        MissingFilesDialog dialog;
        dialog.setMissingFiles({QStringLiteral("/old/notes.xyz")});
        dialog.show();
        rowButton(dialog, QStringLiteral("/old/notes.xyz"))->click(); // would block on a dialog otherwise
        QCOMPARE(dialog.missingFiles().size(), 1);
    }

    // Cancel right after the start: the search stops at its next file and the dialog is
    // idle again, with whatever was found.
    void cancelReturnsToIdle()
    {
        MissingFilesDialog dialog;
        dialog.setMissingFiles({QStringLiteral("/old/never-there.mp4"), QStringLiteral("/old/a.mp4")});
        dialog.show();
        QSignalSpy finished(&dialog, &MissingFilesDialog::searchFinished);
        QVERIFY(dialog.searchFolder(m_dir.path()));
        QVERIFY(button(dialog, "cancelButton")->isVisible());
        button(dialog, "cancelButton")->click();
        QVERIFY(finished.wait(5000));
        QCOMPARE(finished.first().at(2).toBool(), true);
        checkState(dialog, false);
        QVERIFY(dialog.isVisible());
        QVERIFY(dialog.missingFiles().contains(QStringLiteral("/old/never-there.mp4")));
    }

    void closingDuringASearchDropsIt_data()
    {
        QTest::addColumn<bool>("destroyAtOnce");
        QTest::newRow("skip, then wait") << false;
        QTest::newRow("skip and destroy") << true;
    }

    void closingDuringASearchDropsIt()
    {
        QFETCH(bool, destroyAtOnce);
        auto* dialog = new MissingFilesDialog;
        dialog->setMissingFiles({QStringLiteral("/old/a.mp4")});
        dialog->show();
        QSignalSpy finished(dialog, &MissingFilesDialog::searchFinished);
        QSignalSpy rejected(dialog, &QDialog::rejected);
        QVERIFY(dialog->searchFolder(m_dir.path()));
        button(*dialog, "skipButton")->click();
        QCOMPARE(rejected.count(), 1);
        if (destroyAtOnce) {
            delete dialog; // waits for the cancelled search; its notice is dropped
            QTest::qWait(20);
            return;
        }
        QVERIFY(QTest::qWaitFor([&] { return !dialog->isSearching(); }, 5000));
        QCOMPARE(finished.count(), 0);
        QVERIFY(dialog->foundFiles().isEmpty());
        QVERIFY(!dialog->searchFolder(m_dir.path())); // a closed dialog starts nothing
        delete dialog;
    }

private:
    QString at(const QString& relative) const { return m_dir.filePath(relative); }

    void touch(const QString& relative, int size)
    {
        QDir().mkpath(QFileInfo(at(relative)).absolutePath());
        QFile file(at(relative));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(size, 'x'));
    }

    QStringList relative(const QMap<QString, QString>& found) const
    {
        QStringList pairs;
        for (auto it = found.cbegin(); it != found.cend(); ++it)
            pairs << it.key() + QLatin1Char('=') + QDir(m_dir.path()).relativeFilePath(it.value());
        return pairs;
    }

    static QPushButton* button(const QDialog& dialog, const char* name)
    {
        return dialog.findChild<QPushButton*>(QLatin1String(name));
    }

    static QToolButton* rowButton(const QDialog& dialog, const QString& oldPath)
    {
        auto* view = dialog.findChild<QTableView*>(QStringLiteral("filesView"));
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            const QModelIndex index = view->model()->index(row, 1);
            if (index.data(MissingFilesDialog::OldPathRole).toString() == oldPath)
                return view->indexWidget(index)->findChild<QToolButton*>(QStringLiteral("searchButton"));
        }
        return nullptr;
    }

    static void checkState(const QDialog& dialog, bool searching)
    {
        QCOMPARE(dialog.findChild<QTableView*>(QStringLiteral("filesView"))->isEnabled(), !searching);
        QCOMPARE(button(dialog, "specifyFolderButton")->isVisible(), !searching);
        QCOMPARE(button(dialog, "specifyFolderButton")->isEnabled(), !searching);
        QCOMPARE(button(dialog, "cancelButton")->isVisible(), searching);
        QCOMPARE(dialog.findChild<QFrame*>(QStringLiteral("progressFrame"))->isVisible(), searching);
    }

    static bool allHidden()
    {
        const auto widgets = QApplication::topLevelWidgets();
        return std::none_of(widgets.cbegin(), widgets.cend(), [](QWidget* w) { return w->isVisible(); });
    }

    QTemporaryDir m_dir;
};

QTEST_MAIN(TestMissingFilesDialog)
#include "tst_MissingFilesDialog.moc"
