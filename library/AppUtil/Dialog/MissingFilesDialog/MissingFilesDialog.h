#pragma once

#include "AppUtil_export.h"

#include <QDialog>
#include <QMap>
#include <QSet>

#include <memory>

// Lists the media files of a project that are no longer where the project says, and lets
// the user point to a folder (searched in the background for files of the same names),
// locate single files by hand, or skip. The result is a map from each old path to its new
// path.
//
// Locating one file by hand also relinks, at once, every other missing file whose name is
// found in the chosen file's folder: media usually moves together, and this spares the user
// a folder search in that common case.
//
// No search outlives the dialog: closing it in any way cancels the search, and the search's
// results are then dropped (the found map keeps what was found before).
//
//     MissingFilesDialog dialog(parent);
//     dialog.setMissingFiles(paths);
//     dialog.exec();
//     const QMap<QString, QString> relinked = dialog.foundFiles();
class APPUTIL_EXPORT MissingFilesDialog : public QDialog
{
    Q_OBJECT
public:
    // The role under which the table's items carry the old path as it was given.
    static constexpr int OldPathRole = Qt::UserRole + 2;

    explicit MissingFilesDialog(QWidget* parent = nullptr);
    ~MissingFilesDialog() override;

    void setMissingFiles(const QSet<QString>& paths);
    QSet<QString> missingFiles() const;
    QMap<QString, QString> foundFiles() const;

    // Searches `folder` as if the user had chosen it; false while a search runs or for an
    // empty folder.
    bool searchFolder(const QString& folder);
    bool isSearching() const;

signals:
    void searchStarted(const QString& folder);
    // The search ended (done or cancelled) and its result was applied.
    void searchFinished(int found, int stillMissing, bool cancelled);
    // A file (and those relinked with it) was located by hand.
    void fileLocated(const QString& oldPath, const QString& newPath);

private:
    void specifyFolder();
    void locate(const QString& oldPath);
    void setSearching(bool searching);
    void rebuildTable();
    void removeRows(const QStringList& oldPaths);

    struct Impl;
    std::unique_ptr<Impl> d;
};
