#include "Gui/StandardDialogs.h"

#include <QFileDialog>
#include <QFileInfo>

namespace Tavrin {
namespace Gui {
namespace StandardDialogs {
namespace {

class FilesAndFoldersDialog : public QFileDialog
{
public:
    using QFileDialog::QFileDialog;

    QStringList chosen;

    void accept() override
    {
        // QFileDialog would enter a selected folder; take it as chosen instead, as long as
        // everything selected exists (typed names that do not go to QFileDialog's checks).
        const QStringList selected = selectedFiles();
        const bool onlyTheCurrentFolder = selected.size() == 1 && QFileInfo(selected.first()) == QFileInfo(directory().absolutePath());
        bool allExist = !selected.isEmpty() && !onlyTheCurrentFolder;
        for (const QString& path : selected)
            allExist = allExist && QFileInfo::exists(path);
        if (allExist) {
            chosen = selected;
            QDialog::accept();
            return;
        }
        QFileDialog::accept();
    }
};

} // namespace

QStringList getOpen(QWidget* parent, const QString& caption, const QString& directory, const QString& filter)
{
    FilesAndFoldersDialog dialog(parent, caption, directory, filter);
    dialog.setObjectName(QStringLiteral("filesAndFoldersDialog"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.chosen.isEmpty() ? dialog.selectedFiles() : dialog.chosen;
}

} // namespace StandardDialogs
} // namespace Gui
} // namespace Tavrin
