#include "DialogTrail.h"

#include <ExternalResourceInfo.h>
#include <Media/File.h>
#include <Timeline/PasteFXResult.h>

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPointer>
#include <QStringList>

#include <glog/logging.h>

#include <type_traits>

namespace {

QString quoted(const QString& text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

std::string answerText(bool answer)
{
    return answer ? "true" : "false";
}

std::string answerText(int answer)
{
    return std::to_string(answer);
}

std::string answerText(const QString& answer)
{
    return quoted(answer).toStdString();
}

std::string answerText(Dialog::MissingFileAction answer)
{
    switch (answer) {
    case Dialog::MissingFileAction::Abort:
        return "abort";
    case Dialog::MissingFileAction::Skip:
        return "skip";
    case Dialog::MissingFileAction::Browse:
        return "browse";
    }
    return std::to_string(int(answer));
}

} // namespace

DialogTrail::DialogTrail(std::shared_ptr<Dialog::IDialogStrategy> inner, int dismissAfterMs)
    : m_inner(std::move(inner)), m_dismissAfterMs(dismissAfterMs)
{
}

DialogTrail::~DialogTrail() = default;

std::unique_ptr<QTimer> DialogTrail::armDismissal(const char* operation) const
{
    if (m_dismissAfterMs < 0)
        return nullptr;
    // Polls instead of firing once: some dialogs appear only after work of their own, and a
    // dialog that was already up when this operation began (its parent) is not ours to close.
    auto timer = std::make_unique<QTimer>();
    timer->setInterval(10);
    const QPointer<QWidget> before = QApplication::activeModalWidget();
    auto shownFor = std::make_shared<QElapsedTimer>();
    const int delay = m_dismissAfterMs;
    const std::string name = operation;
    QObject::connect(timer.get(), &QTimer::timeout, [before, shownFor, delay, name] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || modal == before) {
            shownFor->invalidate();
            return;
        }
        if (!shownFor->isValid())
            shownFor->start();
        if (shownFor->elapsed() < delay)
            return;
        shownFor->invalidate();
        LOG(INFO) << "dialog dismissed: " << name;
        // As the Escape key: a message box answers with its escape button (Cancel where it
        // has one), which reject() alone would not press.
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        if (QPointer<QDialog> dialog = qobject_cast<QDialog*>(modal)) {
            QCoreApplication::sendEvent(dialog, &escape);
            if (dialog && dialog->isVisible()) // a dialog that ignores Escape
                dialog->reject();
        } else {
            modal->close();
        }
    });
    timer->start();
    return timer;
}

template <class Call>
auto DialogTrail::run(const char* operation, const QString& details, Call call) const
{
    LOG(INFO) << "dialog: " << operation << (details.isEmpty() ? "" : " ") << details.toStdString();
    const std::unique_ptr<QTimer> dismissal = armDismissal(operation);
    if constexpr (std::is_void_v<decltype(call())>) {
        call();
        LOG(INFO) << "dialog closed: " << operation;
    } else {
        auto answer = call();
        LOG(INFO) << "dialog answer: " << operation << ' ' << answerText(answer);
        return answer;
    }
}

bool DialogTrail::alertModifiedProject(bool& save) const
{
    const bool proceed = run("alertModifiedProject", QString(), [&] { return m_inner->alertModifiedProject(save); });
    LOG(INFO) << "dialog answer: alertModifiedProject save " << answerText(save);
    return proceed;
}

bool DialogTrail::alertOverwrite(QString const& path) const
{
    return run("alertOverwrite", path, [&] { return m_inner->alertOverwrite(path); });
}

bool DialogTrail::alertOverwriteFolder(QString const& path) const
{
    return run("alertOverwriteFolder", path, [&] { return m_inner->alertOverwriteFolder(path); });
}

bool DialogTrail::alertRestoreSession() const
{
    return run("alertRestoreSession", QString(), [&] { return m_inner->alertRestoreSession(); });
}

bool DialogTrail::alertAdjustProjectAspect() const
{
    return run("alertAdjustProjectAspect", QString(), [&] { return m_inner->alertAdjustProjectAspect(); });
}

int DialogTrail::alertAction(QString const& title, QString const& text, QString const& okText,
                             QString const& cancelText, QString const& checkBoxText) const
{
    return run("alertAction", quoted(title),
               [&] { return m_inner->alertAction(title, text, okText, cancelText, checkBoxText); });
}

bool DialogTrail::alertAction(QString const& title, QString const& text, QString const& okText,
                              QString const& cancelText) const
{
    return run("alertAction", quoted(title), [&] { return m_inner->alertAction(title, text, okText, cancelText); });
}

void DialogTrail::showFileInfo(Media::File const* file) const
{
    run("showFileInfo", file ? file->filePath() : QString(), [&] { m_inner->showFileInfo(file); });
}

void DialogTrail::showResourceLicense(ExternalResourceInfo const& info) const
{
    run("showResourceLicense", quoted(info.title), [&] { m_inner->showResourceLicense(info); });
}

bool DialogTrail::showHasFailedFiles(bool offerRemoval, QString const& text) const
{
    const QString details = QStringLiteral("removal %1, message %2")
                                .arg(offerRemoval ? QStringLiteral("offered") : QStringLiteral("not offered"),
                                     quoted(text));
    return run("showHasFailedFiles", details, [&] { return m_inner->showHasFailedFiles(offerRemoval, text); });
}

bool DialogTrail::showHasH265FailedFiles(std::set<Media::File const*> const& files) const
{
    QStringList paths;
    for (Media::File const* file : files)
        if (file)
            paths << file->filePath();
    // The set is ordered by address; the log should not change from one run to the next.
    paths.sort();
    const QString details = QStringLiteral("%1 file(s): %2").arg(paths.size()).arg(paths.join(QStringLiteral(", ")));
    return run("showHasH265FailedFiles", details, [&] { return m_inner->showHasH265FailedFiles(files); });
}

void DialogTrail::showCantPasteEffects(Timeline::PasteFXResult const& result) const
{
    const QString details = QStringLiteral("%1 pasted, %2 to set up").arg(result.pastedCount).arg(result.needManualSetup.size());
    run("showCantPasteEffects", details, [&] { m_inner->showCantPasteEffects(result); });
}

int DialogTrail::showInfo(QString const& title, QString const& text, QString const& okText,
                          QString const& checkBoxText) const
{
    return run("showInfo", quoted(title), [&] { return m_inner->showInfo(title, text, okText, checkBoxText); });
}

void DialogTrail::showWarning(QString const& title, QString const& text) const
{
    run("showWarning", quoted(title), [&] { m_inner->showWarning(title, text); });
}

void DialogTrail::showCriticalError(QApplication const& application) const
{
    run("showCriticalError", QString(), [&] { m_inner->showCriticalError(application); });
}

QString DialogTrail::showValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                               std::function<bool(QString const&, QString&)> const& validator,
                                               std::function<bool(QString const&, QString&)> const& softValidator)
{
    return run("showValidationInputDialog", quoted(title),
               [&] { return m_inner->showValidationInputDialog(title, label, text, validator, softValidator); });
}

QString DialogTrail::showCrumbitInputDialog(QString const& title, QString const& text, QString const& confirmText,
                                            QString const& cancelText, QString const& placeholder)
{
    return run("showCrumbitInputDialog", quoted(title),
               [&] { return m_inner->showCrumbitInputDialog(title, text, confirmText, cancelText, placeholder); });
}

Dialog::MissingFileAction DialogTrail::alertMissingFile(QString const& fileName, QString const& location)
{
    return run("alertMissingFile", fileName, [&] { return m_inner->alertMissingFile(fileName, location); });
}
