#pragma once

#include <Dialog/DialogStrategy.h>

#include <QTimer>

#include <memory>

// The host's dialog strategy: the standard dialogs of another strategy (the default one),
// with a log line when each is shown and one with its answer, so that a person or a test
// reading the log can follow which dialog came up for which files:
//
//   dialog: showHasH265FailedFiles 1 file(s): /home/user/a.mp4
//   dialog answer: showHasH265FailedFiles false
//
// For unattended runs (offscreen, no one to answer) it can also dismiss each dialog a
// while after it appeared, as Escape would: the dialog returns its "cancel" answer.
class DialogTrail : public Dialog::IDialogStrategy
{
public:
    // `dismissAfterMs` < 0: dialogs wait for the user.
    explicit DialogTrail(std::shared_ptr<Dialog::IDialogStrategy> inner, int dismissAfterMs = -1);
    ~DialogTrail() override;

    bool alertModifiedProject(bool& save) const override;
    bool alertOverwrite(QString const& path) const override;
    bool alertOverwriteFolder(QString const& path) const override;
    bool alertRestoreSession() const override;
    bool alertAdjustProjectAspect() const override;
    int alertAction(QString const& title, QString const& text, QString const& okText, QString const& cancelText,
                    QString const& checkBoxText) const override;
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
    Dialog::MissingFileAction alertMissingFile(QString const& fileName, QString const& location) override;

private:
    template <class Call>
    auto run(const char* operation, const QString& details, Call call) const;
    // A timer that dismisses the modal dialog opened during the current operation, or
    // null when dialogs wait for the user.
    std::unique_ptr<QTimer> armDismissal(const char* operation) const;

    std::shared_ptr<Dialog::IDialogStrategy> m_inner;
    int m_dismissAfterMs;
};
