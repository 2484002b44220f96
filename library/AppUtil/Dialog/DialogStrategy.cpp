#include "Dialog/DialogStrategy.h"

#include <utility>

namespace Dialog {
namespace {
std::shared_ptr<IDialogStrategy>& installed()
{
    static std::shared_ptr<IDialogStrategy> strategy;
    return strategy;
}

// The copy returned here is what keeps a strategy alive while one of its dialogs runs,
// even if that dialog installs another strategy.
std::shared_ptr<IDialogStrategy> current()
{
    std::shared_ptr<IDialogStrategy>& strategy = installed();
    if (!strategy)
        strategy = std::make_shared<DialogStrategy>();
    return strategy;
}

bool acceptEverything(QString const&, QString&)
{
    return true;
}
} // namespace

IDialogStrategy::~IDialogStrategy() = default;

void initialize(std::shared_ptr<IDialogStrategy> strategy)
{
    // Swap first, release after: the old strategy's destructor must not observe a
    // half-replaced state.
    std::shared_ptr<IDialogStrategy> previous = std::exchange(installed(), std::move(strategy));
    previous.reset();
}

bool alertModifiedProject(bool& save)
{
    const auto strategy = current();
    return strategy->alertModifiedProject(save);
}

bool alertOverwrite(QString const& path)
{
    const auto strategy = current();
    return strategy->alertOverwrite(path);
}

bool alertOverwriteFolder(QString const& path)
{
    const auto strategy = current();
    return strategy->alertOverwriteFolder(path);
}

bool alertRestoreSession()
{
    const auto strategy = current();
    return strategy->alertRestoreSession();
}

bool alertAdjustProjectAspect()
{
    const auto strategy = current();
    return strategy->alertAdjustProjectAspect();
}

int alertAction(QString const& title, QString const& text, QString const& okText, QString const& cancelText,
                QString const& checkBoxText)
{
    const auto strategy = current();
    return strategy->alertAction(title, text, okText, cancelText, checkBoxText);
}

bool alertAction(QString const& title, QString const& text, QString const& okText, QString const& cancelText)
{
    const auto strategy = current();
    return strategy->alertAction(title, text, okText, cancelText);
}

MissingFileAction alertMissingFile(QString const& fileName, QString const& location)
{
    const auto strategy = current();
    return strategy->alertMissingFile(fileName, location);
}

void showFileInfo(Media::File const* file)
{
    const auto strategy = current();
    strategy->showFileInfo(file);
}

void showResourceLicense(ExternalResourceInfo const& info)
{
    const auto strategy = current();
    strategy->showResourceLicense(info);
}

bool showHasFailedFiles(bool offerRemoval, QString const& text)
{
    const auto strategy = current();
    return strategy->showHasFailedFiles(offerRemoval, text);
}

bool showHasH265FailedFiles(std::set<Media::File const*> const& files)
{
    const auto strategy = current();
    return strategy->showHasH265FailedFiles(files);
}

void showCantPasteEffects(Timeline::PasteFXResult const& result)
{
    const auto strategy = current();
    strategy->showCantPasteEffects(result);
}

int showInfo(QString const& title, QString const& text, QString const& okText, QString const& checkBoxText)
{
    const auto strategy = current();
    return strategy->showInfo(title, text, okText, checkBoxText);
}

void showWarning(QString const& title, QString const& text)
{
    const auto strategy = current();
    strategy->showWarning(title, text);
}

void showCriticalError(QApplication const& application)
{
    const auto strategy = current();
    strategy->showCriticalError(application);
}

QString showValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                  std::function<bool(QString const&, QString&)> const& validator,
                                  std::function<bool(QString const&, QString&)> const& softValidator)
{
    const auto strategy = current();
    return strategy->showValidationInputDialog(title, label, text, validator, softValidator);
}

QString showValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                  std::function<bool(QString const&, QString&)> const& validator)
{
    const auto strategy = current();
    return strategy->showValidationInputDialog(title, label, text, validator, &acceptEverything);
}

QString showCrumbitInputDialog(QString const& title, QString const& text, QString const& confirmText,
                               QString const& cancelText, QString const& placeholder)
{
    const auto strategy = current();
    return strategy->showCrumbitInputDialog(title, text, confirmText, cancelText, placeholder);
}

} // namespace Dialog
