#pragma once

#include "AppUtil_export.h"

#include <QDialog>
#include <QStringList>

#include <memory>

struct ExternalResourceInfo;
namespace Timeline {
struct PasteFXResult;
}

// The notices of the default dialog strategy. Each is modal, parented to the window it
// is shown over, and translated in the context of its class name.

// Offers to change the project's frame size to the aspect ratio of files just added.
// Accepted by "Change".
class APPUTIL_EXPORT AdjustProjectAspectDialog : public QDialog
{
    Q_OBJECT

public:
    explicit AdjustProjectAspectDialog(QWidget* parent = nullptr);
    ~AdjustProjectAspectDialog() override;
};

// Lists the pasted effects that need to be set up again by hand.
class APPUTIL_EXPORT CantPasteEffectsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CantPasteEffectsDialog(Timeline::PasteFXResult const& result, QWidget* parent = nullptr);
    ~CantPasteEffectsDialog() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

// Explains that H.265 files cannot be shown and how to remedy it: converting the files, or
// installing the system's H.265 extensions for the kinds of files that failed. Accepted by
// "Got It".
class APPUTIL_EXPORT UnsupportedCodecInfoDialog : public QDialog
{
    Q_OBJECT

public:
    explicit UnsupportedCodecInfoDialog(QStringList const& files, QWidget* parent = nullptr);
    ~UnsupportedCodecInfoDialog() override;

    // The rich text shown, for those who check it.
    QString message() const;

private:
    QString m_message;
};

// Who made a stock resource, where it comes from, its licence and whether it may be used
// commercially. Links open through the application's links manager.
class APPUTIL_EXPORT ExternalResourceInfoDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ExternalResourceInfoDialog(ExternalResourceInfo const& info, QWidget* parent = nullptr);
    ~ExternalResourceInfoDialog() override;
};
