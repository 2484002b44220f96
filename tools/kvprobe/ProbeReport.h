#pragma once

#include <FileOpenHandler.h>

#include <QJsonObject>
#include <QList>

class ProbeDialogStrategy;

// The JSON report of one batch: each file's facts, the handler's analysis and the dialogs
// the editor would have shown.
QJsonObject probeReport(const QList<const Media::File*>& files, const FileOpenHandler::AnalyzedProduct& product,
                        const ProbeDialogStrategy& dialogs, const QJsonArray& statistics);
