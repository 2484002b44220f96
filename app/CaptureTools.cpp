#include "CaptureTools.h"

#include <Statistics.h>
#include <IPCController.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <glog/logging.h>

CaptureTools::CaptureTools(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("captureTools"));
    m_screen = new QPushButton(tr("Record the screen"));
    m_screen->setObjectName(QStringLiteral("runScreenCapture"));
    m_video = new QPushButton(tr("Capture video"));
    m_video->setObjectName(QStringLiteral("runVideoCapture"));
    Statistics::setEventKey(m_screen, QStringLiteral("runScreenCapture"), QStringLiteral("toolsPage"));
    Statistics::setEventKey(m_video, QStringLiteral("runVideoCapture"), QStringLiteral("toolsPage"));
    m_status = new QLabel;
    m_status->setObjectName(QStringLiteral("captureStatus"));

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_screen);
    buttons->addWidget(m_video);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(buttons);
    layout->addWidget(m_status);

    if (!IPC::Controller::exists()) {
        m_screen->setEnabled(false);
        m_video->setEnabled(false);
        m_status->setText(tr("Capture needs the editor's inter-process layer, which is not running."));
        return;
    }
    IPC::Controller& controller = IPC::Controller::instance();
    connect(m_screen, &QPushButton::clicked, &controller, [&controller] {
        LOG(INFO) << "capture: screen recorder requested";
        controller.runScreenCapture();
    });
    connect(m_video, &QPushButton::clicked, &controller, [&controller] {
        LOG(INFO) << "capture: video capture requested";
        controller.runVideoCapture();
    });
    connect(&controller, &IPC::Controller::startStateChanged, this, &CaptureTools::refresh);
    connect(&controller, &IPC::Controller::childProcessTerminated, this, [this] {
        LOG(INFO) << "capture: a capture application has quit";
        refresh();
    });
    refresh();
}

void CaptureTools::refresh()
{
    const IPC::Controller& controller = IPC::Controller::instance();
    const bool screenInstalled = controller.screenCaptureIsAvailable();
    const bool videoInstalled = controller.videoCaptureIsAvailable();
    m_screen->setEnabled(screenInstalled && controller.canStartScreenCapture());
    m_video->setEnabled(videoInstalled && controller.canStartVideoCapture());
    if (!screenInstalled && !videoInstalled)
        m_status->setText(tr("No capture application is installed."));
    else if (!m_screen->isEnabled() || !m_video->isEnabled())
        m_status->setText(tr("A capture application is starting or running."));
    else
        m_status->setText(QString());
}
