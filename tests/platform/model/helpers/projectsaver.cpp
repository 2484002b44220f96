// Saves a project again and again until it is killed: projectsaver <path> <clips>.
// Prints "started" before the first save and "saved <clips>" after each one, so a test can
// kill it in the middle of a save and check what is left on disk.

#include <Project/ProjectFile.h>

#include <QCoreApplication>
#include <QUndoStack>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 3)
        return 2;
    const QString path = arguments.at(1);
    const int clips = arguments.at(2).toInt();
    Timeline::TimelineModel timeline;
    QStringList media;
    for (int i = 0; i < clips; ++i)
        media << QStringLiteral("/media/clip%1.mp4").arg(i % 500);
    timeline.placeMedia(media, {});
    std::printf("started\n");
    std::fflush(stdout);
    for (int round = 0;; ++round) {
        // Alternate between two contents, so a test can tell which save it sees.
        if (round % 2)
            timeline.placeMedia({QStringLiteral("/media/extra.mp4")}, {});
        else if (timeline.undoStack()->canUndo() && timeline.clipCount() > clips)
            timeline.undoStack()->undo();
        QString error;
        if (!Project::save(path, timeline, &error)) {
            std::fprintf(stderr, "%s\n", qPrintable(error));
            return 1;
        }
        std::printf("saved %d\n", timeline.clipCount());
        std::fflush(stdout);
    }
}
