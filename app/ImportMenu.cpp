#include "ImportMenu.h"

#include "MainWindow.h"

#include <Statistics.h>
#include <Dialog/MissingFilesDialog/MissingFilesDialog.h>
#include <FileDialog.h>

#include <Util/SpontaneousDialog.h>

#include <QAction>
#include <QFile>
#include <QMenuBar>
#include <QStackedWidget>
#include <QTimer>

#include <glog/logging.h>

namespace ImportMenu {
namespace {

QMenu* fileMenu(MainWindow& window)
{
    for (QAction* action : window.menuBar()->actions()) {
        if (action->menu() && action->menu()->objectName() == QLatin1String("fileMenu"))
            return action->menu();
    }
    // First in the bar, where a File menu belongs.
    QMenu* menu = new QMenu(QObject::tr("&File"), &window);
    menu->setObjectName(QStringLiteral("fileMenu"));
    const QList<QAction*> actions = window.menuBar()->actions();
    window.menuBar()->insertMenu(actions.isEmpty() ? nullptr : actions.first(), menu);
    return menu;
}

// Before Quit, where a project's File menu has one; otherwise at the end.
QAction* addEntry(QMenu* menu, const QString& text)
{
    QAction* action = new QAction(text, menu);
    menu->insertAction(menu->findChild<QAction*>(QStringLiteral("quitAction")), action);
    return action;
}

void addImport(QMenu* menu, MainWindow& window, const QString& text, const char* name, QStringList (*choose)())
{
    QAction* action = addEntry(menu, text);
    action->setObjectName(QLatin1String(name));
    Statistics::setEventKey(action, QString::fromLatin1(name).remove(QStringLiteral("Action")), QStringLiteral("fileMenu"));
    QObject::connect(action, &QAction::triggered, &window, [&window, text, choose] {
        const QStringList files = choose();
        LOG(INFO) << "import: " << files.size() << " file(s) from " << QString(text).remove(QLatin1Char('&')).toStdString();
        if (!files.isEmpty())
            window.addFiles(files);
    });
}

QStringList importFiles()
{
    return FileDialog::openFiles(FileDialog::Video | FileDialog::Audio | FileDialog::Images | FileDialog::Projects);
}

void saveSnapshot(MainWindow& window)
{
    const QString path = FileDialog::savingSnapshotPath();
    if (path.isEmpty()) {
        LOG(INFO) << "snapshot: cancelled";
        return;
    }
    const QPixmap picture = window.pages()->currentWidget()->grab();
    if (picture.save(path, "PNG"))
        LOG(INFO) << "snapshot: saved " << path.toStdString();
    else
        LOG(ERROR) << "snapshot: could not save " << path.toStdString();
}

} // namespace

void install(MainWindow& window)
{
    QMenu* menu = fileMenu(window);
    menu->insertSeparator(menu->findChild<QAction*>(QStringLiteral("quitAction")));
    addImport(menu, window, QObject::tr("Import &Files..."), "importFilesAction", importFiles);
    addImport(menu, window, QObject::tr("Import F&older..."), "importFolderAction", FileDialog::openDirectory);
    addImport(menu, window, QObject::tr("Import &Image Folder..."), "importImageFolderAction", FileDialog::openDirectoryAllImages);
    QAction* snapshot = addEntry(menu, QObject::tr("Save &Snapshot..."));
    snapshot->setObjectName(QStringLiteral("saveSnapshotAction"));
    Statistics::setEventKey(snapshot, QStringLiteral("saveSnapshot"), QStringLiteral("fileMenu"));
    QObject::connect(snapshot, &QAction::triggered, &window, [&window] { saveSnapshot(window); });
}

void findMissing(const QString& listFile, const QString& folder)
{
    QFile list(listFile);
    if (!list.open(QIODevice::ReadOnly)) {
        LOG(ERROR) << "relink: cannot read " << listFile.toStdString();
        return;
    }
    QSet<QString> missing;
    for (const QByteArray& line : list.readAll().split('\n')) {
        if (!line.isEmpty())
            missing.insert(QFile::decodeName(line));
    }
    MissingFilesDialog dialog(Tavrin::Util::SpontaneousDialog::findParent());
    dialog.setMissingFiles(missing);
    if (!folder.isEmpty())
        QTimer::singleShot(0, &dialog, [&dialog, folder] { dialog.searchFolder(folder); });
    const bool accepted = dialog.exec() == QDialog::Accepted;
    const QMap<QString, QString> found = dialog.foundFiles();
    for (auto it = found.cbegin(); it != found.cend(); ++it)
        LOG(INFO) << "relink: " << it.key().toStdString() << " -> " << it.value().toStdString();
    LOG(INFO) << "relink: " << found.size() << " found, " << dialog.missingFiles().size() << " still missing"
              << (accepted ? "" : " (skipped)");
}

} // namespace ImportMenu
