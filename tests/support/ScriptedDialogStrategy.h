#pragma once

// A dialog strategy for tests: it shows nothing, records every call and answers from
// queues the test fills beforehand.
//
//   auto dialogs = std::make_shared<ScriptedDialogStrategy>();
//   dialogs->answer("showHasFailedFiles", true);       // the user chooses "Remove"
//   Dialog::initialize(dialogs);
//   ... code under test ...
//   QCOMPARE(dialogs->count("showHasFailedFiles"), 1);
//   QCOMPARE(dialogs->calls().front().arguments.at(1).toString(), QString("..."));
//   Dialog::initialize({});
//
// An operation without a queued answer returns its "negative" default: false, an empty
// string, MissingFileAction::Skip, QMessageBox::Cancel for the five-argument alertAction
// and QMessageBox::Ok for showInfo. alertModifiedProject takes a ModifiedProjectAnswer.
// Both alertAction overloads are recorded as "alertAction" and share one queue; the
// recorded argument count tells them apart.

#include <Dialog/DialogStrategy.h>
#include <ExternalResourceInfo.h>
#include <Media/File.h>
#include <Timeline/PasteFXResult.h>

#include <QMap>
#include <QMessageBox>
#include <QQueue>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <map>
#include <vector>

class ScriptedDialogStrategy : public Dialog::IDialogStrategy
{
public:
    enum ModifiedProjectAnswer { Save, DontSave, Cancel };

    struct Call
    {
        QString operation;
        QVariantList arguments; // strings, bools and, for file sets, a QStringList of paths
    };

    // Queues `value` as the next answer of `operation`.
    void answer(const QString& operation, const QVariant& value) { m_answers[operation].enqueue(value); }
    // Runs `action` inside the next call of `operation`, before it answers (for example to
    // replace the strategy from inside a dialog).
    void onCall(const QString& operation, std::function<void()> action) { m_actions[operation] = std::move(action); }

    const std::vector<Call>& calls() const { return m_calls; }
    int count(const QString& operation) const
    {
        int n = 0;
        for (const Call& call : m_calls)
            n += call.operation == operation ? 1 : 0;
        return n;
    }
    // The arguments of the last call of `operation`; empty when there was none.
    QVariantList lastArguments(const QString& operation) const
    {
        for (auto it = m_calls.rbegin(); it != m_calls.rend(); ++it)
            if (it->operation == operation)
                return it->arguments;
        return {};
    }
    void clear() { m_calls.clear(); m_answers.clear(); m_actions.clear(); }

    bool alertModifiedProject(bool& save) const override
    {
        const int answer = next(QStringLiteral("alertModifiedProject"), {}, Cancel).toInt();
        save = answer == Save;
        return answer != Cancel;
    }
    bool alertOverwrite(QString const& path) const override
    {
        return next(QStringLiteral("alertOverwrite"), {path}, false).toBool();
    }
    bool alertOverwriteFolder(QString const& path) const override
    {
        return next(QStringLiteral("alertOverwriteFolder"), {path}, false).toBool();
    }
    bool alertRestoreSession() const override { return next(QStringLiteral("alertRestoreSession"), {}, false).toBool(); }
    bool alertAdjustProjectAspect() const override
    {
        return next(QStringLiteral("alertAdjustProjectAspect"), {}, false).toBool();
    }
    int alertAction(QString const& title, QString const& text, QString const& okText, QString const& cancelText,
                    QString const& checkBoxText) const override
    {
        return next(QStringLiteral("alertAction"), {title, text, okText, cancelText, checkBoxText},
                    int(QMessageBox::Cancel)).toInt();
    }
    bool alertAction(QString const& title, QString const& text, QString const& okText,
                     QString const& cancelText) const override
    {
        return next(QStringLiteral("alertAction"), {title, text, okText, cancelText}, false).toBool();
    }
    void showFileInfo(Media::File const* file) const override
    {
        next(QStringLiteral("showFileInfo"), {file ? file->filePath() : QString()}, {});
    }
    void showResourceLicense(ExternalResourceInfo const& info) const override
    {
        next(QStringLiteral("showResourceLicense"), {info.title, info.artist, info.license}, {});
    }
    bool showHasFailedFiles(bool offerRemoval, QString const& text) const override
    {
        return next(QStringLiteral("showHasFailedFiles"), {offerRemoval, text}, false).toBool();
    }
    bool showHasH265FailedFiles(std::set<Media::File const*> const& files) const override
    {
        QStringList paths;
        for (const Media::File* file : files)
            paths << (file ? file->filePath() : QString());
        return next(QStringLiteral("showHasH265FailedFiles"), {paths}, false).toBool();
    }
    void showCantPasteEffects(Timeline::PasteFXResult const& result) const override
    {
        QStringList names;
        for (const auto& effect : result.needManualSetup)
            names << effect.name;
        next(QStringLiteral("showCantPasteEffects"), {names}, {});
    }
    int showInfo(QString const& title, QString const& text, QString const& okText,
                 QString const& checkBoxText) const override
    {
        return next(QStringLiteral("showInfo"), {title, text, okText, checkBoxText}, int(QMessageBox::Ok)).toInt();
    }
    void showWarning(QString const& title, QString const& text) const override
    {
        next(QStringLiteral("showWarning"), {title, text}, {});
    }
    void showCriticalError(QApplication const&) const override { next(QStringLiteral("showCriticalError"), {}, {}); }
    QString showValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                      std::function<bool(QString const&, QString&)> const&,
                                      std::function<bool(QString const&, QString&)> const&) override
    {
        return next(QStringLiteral("showValidationInputDialog"), {title, label, text}, QString()).toString();
    }
    QString showCrumbitInputDialog(QString const& title, QString const& text, QString const& confirmText,
                                   QString const& cancelText, QString const& placeholder) override
    {
        return next(QStringLiteral("showCrumbitInputDialog"), {title, text, confirmText, cancelText, placeholder},
                    QString()).toString();
    }
    Dialog::MissingFileAction alertMissingFile(QString const& fileName, QString const& location) override
    {
        return Dialog::MissingFileAction(
            next(QStringLiteral("alertMissingFile"), {fileName, location}, int(Dialog::MissingFileAction::Skip)).toInt());
    }

private:
    QVariant next(const QString& operation, const QVariantList& arguments, const QVariant& fallback) const
    {
        m_calls.push_back({operation, arguments});
        const auto action = m_actions.find(operation);
        if (action != m_actions.end()) {
            const std::function<void()> run = std::move(action->second);
            m_actions.erase(action);
            run();
        }
        auto queue = m_answers.find(operation);
        if (queue == m_answers.end() || queue->isEmpty())
            return fallback;
        return queue->dequeue();
    }

    mutable std::vector<Call> m_calls;
    mutable QMap<QString, QQueue<QVariant>> m_answers;
    mutable std::map<QString, std::function<void()>> m_actions;
};
