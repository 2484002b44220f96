#include "Dialog/DialogStrategy.h"

// The default strategy's dialogs. Filled in with the dialogs themselves.
namespace Dialog {

DialogStrategy::~DialogStrategy() = default;

bool DialogStrategy::alertModifiedProject(bool& save) const { save = false; return false; }
bool DialogStrategy::alertOverwrite(QString const&) const { return false; }
bool DialogStrategy::alertOverwriteFolder(QString const&) const { return false; }
bool DialogStrategy::alertRestoreSession() const { return false; }
bool DialogStrategy::alertAdjustProjectAspect() const { return false; }
int DialogStrategy::alertAction(QString const&, QString const&, QString const&, QString const&, QString const&) const { return 0x400000; }
bool DialogStrategy::alertAction(QString const&, QString const&, QString const&, QString const&) const { return false; }
void DialogStrategy::showFileInfo(Media::File const*) const {}
void DialogStrategy::showResourceLicense(ExternalResourceInfo const&) const {}
bool DialogStrategy::showHasFailedFiles(bool, QString const&) const { return false; }
bool DialogStrategy::showHasH265FailedFiles(std::set<Media::File const*> const&) const { return false; }
void DialogStrategy::showCantPasteEffects(Timeline::PasteFXResult const&) const {}
int DialogStrategy::showInfo(QString const&, QString const&, QString const&, QString const&) const { return 0x400; }
void DialogStrategy::showWarning(QString const&, QString const&) const {}
void DialogStrategy::showCriticalError(QApplication const&) const {}
QString DialogStrategy::showValidationInputDialog(QString const&, QString const&, QString const&,
                                                  std::function<bool(QString const&, QString&)> const&,
                                                  std::function<bool(QString const&, QString&)> const&) { return {}; }
QString DialogStrategy::showCrumbitInputDialog(QString const&, QString const&, QString const&, QString const&,
                                               QString const&) { return {}; }
MissingFileAction DialogStrategy::alertMissingFile(QString const&, QString const&) { return MissingFileAction::Skip; }

} // namespace Dialog
