#pragma once

#include "AppUtil_export.h"

#include <QString>

#include <functional>
#include <memory>
#include <set>

class QApplication;
struct ExternalResourceInfo;

namespace Media {
class File;
}
namespace Timeline {
struct PasteFXResult;
}

// Every standard question and notice of the application goes through one replaceable
// dialog strategy. Callers use the free functions below; a host that wants other
// dialogs (or none, as in tests) installs its own strategy with Dialog::initialize:
//
//   bool save = false;
//   if (!Dialog::alertModifiedProject(save))
//       return;                 // the user cancelled the operation
//   if (save)
//       saveProject();
namespace Dialog {

enum class MissingFileAction {
    Abort = 0,
    Skip = 1,
    Browse = 2,
};

// The slot order of the operations is part of the interface: strategies built elsewhere
// against this header must see the same table. Append, never reorder.
class APPUTIL_EXPORT IDialogStrategy
{
public:
    IDialogStrategy() = default;
    IDialogStrategy(IDialogStrategy const&) = default;
    IDialogStrategy(IDialogStrategy&&) = default;
    IDialogStrategy& operator=(IDialogStrategy const&) = default;
    IDialogStrategy& operator=(IDialogStrategy&&) = default;
    virtual ~IDialogStrategy();

    virtual bool alertModifiedProject(bool& save) const = 0;
    virtual bool alertOverwrite(QString const& path) const = 0;
    virtual bool alertOverwriteFolder(QString const& path) const = 0;
    virtual bool alertRestoreSession() const = 0;
    virtual bool alertAdjustProjectAspect() const = 0;
    virtual int alertAction(QString const& title, QString const& text, QString const& okText,
                            QString const& cancelText, QString const& checkBoxText) const = 0;
    virtual bool alertAction(QString const& title, QString const& text, QString const& okText,
                             QString const& cancelText) const = 0;
    virtual void showFileInfo(Media::File const* file) const = 0;
    virtual void showResourceLicense(ExternalResourceInfo const& info) const = 0;
    virtual bool showHasFailedFiles(bool offerRemoval, QString const& text) const = 0;
    virtual bool showHasH265FailedFiles(std::set<Media::File const*> const& files) const = 0;
    virtual void showCantPasteEffects(Timeline::PasteFXResult const& result) const = 0;
    virtual int showInfo(QString const& title, QString const& text, QString const& okText,
                         QString const& checkBoxText) const = 0;
    virtual void showWarning(QString const& title, QString const& text) const = 0;
    virtual void showCriticalError(QApplication const& application) const = 0;
    virtual QString showValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                              std::function<bool(QString const&, QString&)> const& validator,
                                              std::function<bool(QString const&, QString&)> const& softValidator) = 0;
    virtual QString showCrumbitInputDialog(QString const& title, QString const& text, QString const& confirmText,
                                           QString const& cancelText, QString const& placeholder) = 0;
    virtual MissingFileAction alertMissingFile(QString const& fileName, QString const& location) = 0;
};

// The default strategy: modal Qt dialogs parented to the application's spontaneous-dialog
// parent. The free functions are its only callers, so its operations are private.
class APPUTIL_EXPORT DialogStrategy : public IDialogStrategy
{
public:
    DialogStrategy() = default;
    DialogStrategy(DialogStrategy const&) = default;
    DialogStrategy(DialogStrategy&&) = default;
    DialogStrategy& operator=(DialogStrategy const&) = default;
    DialogStrategy& operator=(DialogStrategy&&) = default;
    ~DialogStrategy() override;

private:
    bool alertModifiedProject(bool& save) const override;
    bool alertOverwrite(QString const& path) const override;
    bool alertOverwriteFolder(QString const& path) const override;
    bool alertRestoreSession() const override;
    bool alertAdjustProjectAspect() const override;
    int alertAction(QString const& title, QString const& text, QString const& okText,
                    QString const& cancelText, QString const& checkBoxText) const override;
    bool alertAction(QString const& title, QString const& text, QString const& okText,
                     QString const& cancelText) const override;
    void showFileInfo(Media::File const* file) const override;
    void showResourceLicense(ExternalResourceInfo const& info) const override;
    bool showHasFailedFiles(bool offerRemoval, QString const& text) const override;
    bool showHasH265FailedFiles(std::set<Media::File const*> const& files) const override;
    void showCantPasteEffects(Timeline::PasteFXResult const& result) const override;
    int showInfo(QString const& title, QString const& text, QString const& okText,
                 QString const& checkBoxText) const override;
    void showWarning(QString const& title, QString const& text) const override;
    void showCriticalError(QApplication const& application) const override;
    QString showValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                      std::function<bool(QString const&, QString&)> const& validator,
                                      std::function<bool(QString const&, QString&)> const& softValidator) override;
    QString showCrumbitInputDialog(QString const& title, QString const& text, QString const& confirmText,
                                   QString const& cancelText, QString const& placeholder) override;
    MissingFileAction alertMissingFile(QString const& fileName, QString const& location) override;
};

// Installs `strategy` and releases the previous one. An empty pointer uninstalls: the
// next dialog call creates a default DialogStrategy again.
APPUTIL_EXPORT void initialize(std::shared_ptr<IDialogStrategy> strategy);

// Each forwards to the installed strategy (a default one is installed on first use) and
// keeps it alive for the whole call, so a strategy replaced from inside one of its own
// dialogs is destroyed only after that dialog returns.

// True unless the user cancelled; `save` is true exactly when he chose to save.
APPUTIL_EXPORT bool alertModifiedProject(bool& save);
APPUTIL_EXPORT bool alertOverwrite(QString const& path);
APPUTIL_EXPORT bool alertOverwriteFolder(QString const& path);
APPUTIL_EXPORT bool alertRestoreSession();
APPUTIL_EXPORT bool alertAdjustProjectAspect();
// The pressed button (QMessageBox::Ok or QMessageBox::Cancel) with bit 0 set when the
// check box was ticked.
APPUTIL_EXPORT int alertAction(QString const& title, QString const& text, QString const& okText,
                               QString const& cancelText, QString const& checkBoxText);
// True exactly when the Ok button was pressed.
APPUTIL_EXPORT bool alertAction(QString const& title, QString const& text, QString const& okText,
                                QString const& cancelText);
APPUTIL_EXPORT MissingFileAction alertMissingFile(QString const& fileName, QString const& location);
APPUTIL_EXPORT void showFileInfo(Media::File const* file);
APPUTIL_EXPORT void showResourceLicense(ExternalResourceInfo const& info);
// True exactly when the user chose to remove the files that failed to open.
APPUTIL_EXPORT bool showHasFailedFiles(bool offerRemoval, QString const& text);
APPUTIL_EXPORT bool showHasH265FailedFiles(std::set<Media::File const*> const& files);
APPUTIL_EXPORT void showCantPasteEffects(Timeline::PasteFXResult const& result);
// QMessageBox::Ok with bit 0 set when the (optional) check box was ticked.
APPUTIL_EXPORT int showInfo(QString const& title, QString const& text, QString const& okText,
                            QString const& checkBoxText);
APPUTIL_EXPORT void showWarning(QString const& title, QString const& text);
APPUTIL_EXPORT void showCriticalError(QApplication const& application);
// The accepted text, or an empty string when the dialog was cancelled.
APPUTIL_EXPORT QString showValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                                 std::function<bool(QString const&, QString&)> const& validator,
                                                 std::function<bool(QString const&, QString&)> const& softValidator);
// As above, with a soft validator that accepts every text.
APPUTIL_EXPORT QString showValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                                 std::function<bool(QString const&, QString&)> const& validator);
APPUTIL_EXPORT QString showCrumbitInputDialog(QString const& title, QString const& text, QString const& confirmText,
                                              QString const& cancelText, QString const& placeholder);

} // namespace Dialog
