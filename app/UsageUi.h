#pragma once

#include <QDialog>

class QButtonGroup;
class QLabel;
class QMainWindow;
class QTableWidget;
class UsageTracker;

// What the user sees of the usage tracker: Settings > Preferences... to choose a level
// (nothing is recorded until they do), Help > Usage Data to read what was recorded.
namespace UsageUi {

// Adds the two menu entries to the window.
void install(QMainWindow* window, UsageTracker* tracker);

// Connects every tagged control of the finished window: its widgets and menus, its
// toolbars' and widgets' actions. Safe to call again after more controls were added.
void parseWindow(QMainWindow* window);

// Clicks or triggers, once, the first control tagged with `event` ("event@source" picks the
// source too); false when there is none. For scripts and tests of the host.
bool activateTagged(QWidget* window, const QString& tag);

} // namespace UsageUi

// The usage page of the preferences: one level of three, each explained.
class UsagePreferencesDialog : public QDialog
{
    Q_OBJECT
public:
    UsagePreferencesDialog(UsageTracker* tracker, QWidget* parent = nullptr);
    void accept() override;

private:
    void describe(int level);
    UsageTracker* m_tracker;
    QButtonGroup* m_levels;
    QLabel* m_details;
};

// The records of the audit log, readable: when, what, where, with which details.
class UsageDataDialog : public QDialog
{
    Q_OBJECT
public:
    UsageDataDialog(UsageTracker* tracker, QWidget* parent = nullptr);
    QTableWidget* table() const { return m_table; }

private:
    void fill();
    UsageTracker* m_tracker;
    QLabel* m_status;
    QTableWidget* m_table;
};
