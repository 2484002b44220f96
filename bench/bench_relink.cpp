// Helpers of bench/run_relink.sh.
//
//   bench_relink tree ROOT FILES FOLDERS   makes FOLDERS leaf folders (three levels: FOLDERS/1000
//                                          top folders of 10 of 100) holding FILES empty files
//                                          in all, and prints the 50 old paths to look for: 49
//                                          of the files, spread over the tree, and one that is
//                                          nowhere (so every tool walks the whole tree)
//   bench_relink dialog ROOT LIST          the missing-files dialog searching ROOT for the
//                                          paths of LIST: the longest stall of the GUI thread
//                                          during a full search, and the time from a click on
//                                          Cancel Search to the idle state

#include <Dialog/MissingFilesDialog/MissingFilesDialog.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPushButton>
#include <QSet>
#include <QTimer>

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char* const Extensions[] = {".mp4", ".jpg", ".wav", ".mov", ".png"};

int makeTree(const QByteArray& root, long files, long folders)
{
    if (folders < 1000 || folders % 1000 || files % folders) {
        std::fprintf(stderr, "FOLDERS must be a multiple of 1000 dividing FILES\n");
        return 2;
    }
    const long perFolder = files / folders;
    long n = 0;
    ::mkdir(root.constData(), 0755);
    for (long top = 0; top < folders / 1000; ++top) {
        const QByteArray a = root + "/t" + QByteArray::number(qlonglong(top));
        ::mkdir(a.constData(), 0755);
        for (int mid = 0; mid < 10; ++mid) {
            const QByteArray b = a + "/m" + QByteArray::number(mid);
            ::mkdir(b.constData(), 0755);
            for (int leaf = 0; leaf < 100; ++leaf) {
                const QByteArray c = b + "/leaf" + QByteArray::number(leaf);
                ::mkdir(c.constData(), 0755);
                for (long f = 0; f < perFolder; ++f, ++n) {
                    const QByteArray file = c + "/clip" + QByteArray::number(qlonglong(n)) + Extensions[n % 5];
                    const int fd = ::open(file.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
                    if (fd < 0) {
                        std::perror(file.constData());
                        return 1;
                    }
                    ::close(fd);
                }
            }
        }
    }
    for (long k = 1; k <= 49; ++k) {
        const long pick = (k * files) / 50 + k; // spread, never the same one
        std::printf("/old/media/clip%ld%s\n", pick, Extensions[pick % 5]);
    }
    std::printf("/old/media/absent_clip.mp4\n");
    return 0;
}

int dialog(int argc, char** argv)
{
    QApplication app(argc, argv);
    QFile list(QString::fromLocal8Bit(argv[3]));
    if (!list.open(QIODevice::ReadOnly))
        return 2;
    QSet<QString> missing;
    for (const QByteArray& line : list.readAll().split('\n'))
        if (!line.isEmpty())
            missing.insert(QString::fromUtf8(line));
    const QString root = QString::fromLocal8Bit(argv[2]);

    // A 1 ms timer: the longest gap between its ticks is the longest stall of the GUI thread.
    QElapsedTimer clock;
    qint64 last = 0, longest = 0;
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        longest = std::max(longest, now - last);
        last = now;
    });

    MissingFilesDialog full;
    full.setMissingFiles(missing);
    full.show();
    QApplication::processEvents();
    qint64 searchNs = 0;
    QObject::connect(&full, &MissingFilesDialog::searchFinished, [&] {
        searchNs = clock.nsecsElapsed();
        app.quit();
    });
    clock.start();
    tick.start(1);
    full.searchFolder(root);
    app.exec();
    tick.stop();
    std::printf("full search: %.1f ms, longest GUI stall %.2f ms, %d of %d found\n", searchNs / 1e6, longest / 1e6,
                full.foundFiles().size(), missing.size());

    // Cancel in the middle of a search, several times: click to idle.
    qint64 worstCancel = 0;
    for (int round = 0; round < 5; ++round) {
        MissingFilesDialog dialog;
        dialog.setMissingFiles(missing);
        dialog.show();
        qint64 clicked = 0, idle = 0;
        QObject::connect(&dialog, &MissingFilesDialog::searchFinished, [&] {
            idle = clock.nsecsElapsed();
            app.quit();
        });
        dialog.searchFolder(root);
        QTimer::singleShot(int(searchNs / 1e6 / 2), &dialog, [&] {
            clicked = clock.nsecsElapsed();
            dialog.findChild<QPushButton*>(QStringLiteral("cancelButton"))->click();
        });
        app.exec();
        if (clicked)
            worstCancel = std::max(worstCancel, idle - clicked);
    }
    std::printf("cancel to idle, worst of 5: %.2f ms\n", worstCancel / 1e6);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 5 && QByteArray(argv[1]) == "tree")
        return makeTree(argv[2], QByteArray(argv[3]).toLong(), QByteArray(argv[4]).toLong());
    if (argc == 4 && QByteArray(argv[1]) == "dialog")
        return dialog(argc, argv);
    std::fprintf(stderr, "usage: bench_relink tree ROOT FILES FOLDERS | bench_relink dialog ROOT LIST\n");
    return 2;
}
