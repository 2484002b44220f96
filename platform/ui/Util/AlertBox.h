#pragma once

#include <QMessageBox>

namespace Tavrin {
namespace Util {

// The application's message box. The alert level picks the icon and the style hint the
// style sheet dresses it by: information (0), warnings and errors (1), and questions that
// ask for a decision (2).
//
//   if (AlertBox::Exec(AlertBox::Question, title, text, QMessageBox::Yes | QMessageBox::No,
//                      parent) == QMessageBox::Yes) ...
class AlertBox : public QMessageBox
{
    Q_OBJECT

public:
    enum AlertLevel {
        Information = 0,
        Warning = 1,
        Question = 2,
    };
    Q_ENUM(AlertLevel)

    AlertBox(AlertLevel level, const QString& title, const QString& text, QMessageBox::StandardButtons buttons,
             QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint);
    ~AlertBox() override;

    AlertLevel alertLevel() const { return m_level; }

    // Runs the box modally and returns the standard button that closed it (the escape
    // button's value for Escape); NoButton when a custom button or nothing closed it.
    QMessageBox::StandardButton Exec();

    static QMessageBox::StandardButton Exec(AlertLevel level, const QString& title, const QString& text,
                                            QMessageBox::StandardButtons buttons, QWidget* parent = nullptr,
                                            Qt::WindowFlags flags = Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint);

protected:
    void showEvent(QShowEvent* event) override;

private:
    AlertLevel m_level;
};

} // namespace Util
} // namespace Tavrin
