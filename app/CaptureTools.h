#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

// The tools page's capture buttons: each launches its companion application through the
// IPC controller. A button is enabled while its companion can be started; while the
// screen recorder works, the editor steps aside (the controller hides the main window).
class CaptureTools : public QWidget
{
    Q_OBJECT
public:
    explicit CaptureTools(QWidget* parent = nullptr);

private:
    void refresh();

    QPushButton* m_screen = nullptr;
    QPushButton* m_video = nullptr;
    QLabel* m_status = nullptr;
};
