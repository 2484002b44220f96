#pragma once

#include <Dialog/DialogStrategy.h>

#include <Media/File.h>

#include <QMessageBox>
#include <QStringList>

// A dialog strategy without windows: it notes which dialogs the editor would show and
// answers as a user who keeps his files and ticks nothing.
class ProbeDialogStrategy : public Dialog::IDialogStrategy
{
public:
    QString dialog = QStringLiteral("none");   // "none", "failed-files" or "h265"
    QString failedFilesMessage;
    bool removalOffered = false;
    QStringList h265Files;
    bool hdrNotice = false;
    QStringList others;                         // any other operation, by name

    bool alertModifiedProject(bool& save) const override
    {
        save = false;
        return note("alertModifiedProject");
    }
    bool alertOverwrite(QString const&) const override { return note("alertOverwrite"); }
    bool alertOverwriteFolder(QString const&) const override { return note("alertOverwriteFolder"); }
    bool alertRestoreSession() const override { return note("alertRestoreSession"); }
    bool alertAdjustProjectAspect() const override { return note("alertAdjustProjectAspect"); }
    int alertAction(QString const&, QString const&, QString const&, QString const&, QString const&) const override
    {
        note("alertAction");
        return QMessageBox::Cancel;
    }
    bool alertAction(QString const&, QString const&, QString const&, QString const&) const override
    {
        return note("alertAction");
    }
    void showFileInfo(Media::File const*) const override { note("showFileInfo"); }
    void showResourceLicense(ExternalResourceInfo const&) const override { note("showResourceLicense"); }
    bool showHasFailedFiles(bool offerRemoval, QString const& text) const override
    {
        auto* self = const_cast<ProbeDialogStrategy*>(this);
        self->dialog = QStringLiteral("failed-files");
        self->failedFilesMessage = text;
        self->removalOffered = offerRemoval;
        return false;
    }
    bool showHasH265FailedFiles(std::set<Media::File const*> const& files) const override
    {
        auto* self = const_cast<ProbeDialogStrategy*>(this);
        self->dialog = QStringLiteral("h265");
        for (const Media::File* file : files)
            self->h265Files << file->filePath();
        return false;
    }
    void showCantPasteEffects(Timeline::PasteFXResult const&) const override { note("showCantPasteEffects"); }
    int showInfo(QString const&, QString const&, QString const&, QString const&) const override
    {
        const_cast<ProbeDialogStrategy*>(this)->hdrNotice = true;
        return QMessageBox::Ok;
    }
    void showWarning(QString const&, QString const&) const override { note("showWarning"); }
    void showCriticalError(QApplication const&) const override { note("showCriticalError"); }
    QString showValidationInputDialog(QString const&, QString const&, QString const&,
                                      std::function<bool(QString const&, QString&)> const&,
                                      std::function<bool(QString const&, QString&)> const&) override
    {
        note("showValidationInputDialog");
        return QString();
    }
    QString showCrumbitInputDialog(QString const&, QString const&, QString const&, QString const&,
                                   QString const&) override
    {
        note("showCrumbitInputDialog");
        return QString();
    }
    Dialog::MissingFileAction alertMissingFile(QString const&, QString const&) override
    {
        note("alertMissingFile");
        return Dialog::MissingFileAction::Skip;
    }

private:
    bool note(const char* operation) const
    {
        const_cast<ProbeDialogStrategy*>(this)->others << QLatin1String(operation);
        return false;
    }
};
