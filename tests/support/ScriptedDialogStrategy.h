#pragma once

// A dialog strategy for tests: it shows nothing, records every call with its arguments
// (strings, bools, a QStringList of paths for file sets; none for the notices without a
// question) and answers from queues the test
// fills beforehand, e.g. answer("showHasFailedFiles", true) for "Remove". Without a queued
// answer an operation gives its "negative" default: false, an empty string, Cancel (a
// ModifiedProjectAnswer, or QMessageBox::Cancel), QMessageBox::Ok for showInfo,
// MissingFileAction::Skip. Both alertAction overloads are recorded as "alertAction".

#include <Dialog/DialogStrategy.h>
#include <Media/File.h>

#include <QMessageBox>
#include <QQueue>
#include <QVariant>

#include <functional>
#include <map>
#include <utility>
#include <vector>

class ScriptedDialogStrategy : public Dialog::IDialogStrategy
{
public:
    enum ModifiedProjectAnswer { Save, DontSave, Cancel };

    void answer(const QString& operation, const QVariant& value) { m_answers[operation].enqueue(value); }
    // Runs `action` inside the next call of `operation`, before it answers (for example to
    // replace the strategy from inside a dialog).
    void onCall(const QString& operation, std::function<void()> action) { m_actions[operation] = std::move(action); }

    int count(const QString& operation) const { return int(m_calls.count(operation)); }
    // The arguments of the last call of `operation`; empty when there was none.
    QVariantList lastArguments(const QString& operation) const
    {
        const auto calls = m_calls.equal_range(operation);
        return calls.first == calls.second ? QVariantList() : std::prev(calls.second)->second;
    }

    bool alertModifiedProject(bool& save) const override
    {
        const int answer = next("alertModifiedProject", {}, Cancel).toInt();
        save = answer == Save;
        return answer != Cancel;
    }
    bool alertOverwrite(QString const& path) const override { return next("alertOverwrite", {path}).toBool(); }
    bool alertOverwriteFolder(QString const& path) const override
    {
        return next("alertOverwriteFolder", {path}).toBool();
    }
    bool alertRestoreSession() const override { return next("alertRestoreSession", {}).toBool(); }
    bool alertAdjustProjectAspect() const override { return next("alertAdjustProjectAspect", {}).toBool(); }
    int alertAction(QString const& title, QString const& text, QString const& okText, QString const& cancelText,
                    QString const& checkBoxText) const override
    {
        return next("alertAction", {title, text, okText, cancelText, checkBoxText}, int(QMessageBox::Cancel)).toInt();
    }
    bool alertAction(QString const& title, QString const& text, QString const& okText,
                     QString const& cancelText) const override
    {
        return next("alertAction", {title, text, okText, cancelText}).toBool();
    }
    void showFileInfo(Media::File const* file) const override { next("showFileInfo", {file ? file->filePath() : ""}); }
    void showResourceLicense(ExternalResourceInfo const&) const override { next("showResourceLicense", {}); }
    bool showHasFailedFiles(bool offerRemoval, QString const& text) const override
    {
        return next("showHasFailedFiles", {offerRemoval, text}).toBool();
    }
    bool showHasH265FailedFiles(std::set<Media::File const*> const& files) const override
    {
        QStringList paths;
        for (const Media::File* file : files)
            paths << (file ? file->filePath() : QString());
        return next("showHasH265FailedFiles", {paths}).toBool();
    }
    void showCantPasteEffects(Timeline::PasteFXResult const&) const override { next("showCantPasteEffects", {}); }
    int showInfo(QString const& title, QString const& text, QString const& okText,
                 QString const& checkBoxText) const override
    {
        return next("showInfo", {title, text, okText, checkBoxText}, int(QMessageBox::Ok)).toInt();
    }
    void showWarning(QString const& title, QString const& text) const override { next("showWarning", {title, text}); }
    void showCriticalError(QApplication const&) const override { next("showCriticalError", {}); }
    QString showValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                      std::function<bool(QString const&, QString&)> const&,
                                      std::function<bool(QString const&, QString&)> const&) override
    {
        return next("showValidationInputDialog", {title, label, text}).toString();
    }
    QString showCrumbitInputDialog(QString const& title, QString const& text, QString const& confirmText,
                                   QString const& cancelText, QString const& placeholder) override
    {
        return next("showCrumbitInputDialog", {title, text, confirmText, cancelText, placeholder}).toString();
    }
    Dialog::MissingFileAction alertMissingFile(QString const& fileName, QString const& location) override
    {
        const int skip = int(Dialog::MissingFileAction::Skip);
        return Dialog::MissingFileAction(next("alertMissingFile", {fileName, location}, skip).toInt());
    }

private:
    QVariant next(const char* name, const QVariantList& arguments, const QVariant& fallback = {}) const
    {
        const QString operation = QLatin1String(name);
        m_calls.emplace(operation, arguments); // after the earlier calls of the same operation
        const std::function<void()> run = std::exchange(m_actions[operation], nullptr);
        if (run)
            run();
        QQueue<QVariant>& queue = m_answers[operation];
        return queue.isEmpty() ? fallback : queue.dequeue();
    }

    mutable std::multimap<QString, QVariantList> m_calls;
    mutable std::map<QString, QQueue<QVariant>> m_answers;
    mutable std::map<QString, std::function<void()>> m_actions;
};
