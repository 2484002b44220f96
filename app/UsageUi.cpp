#include "UsageUi.h"

#include "UsageTracker.h"

#include <Statistics.h>

#include <QAbstractButton>
#include <QAction>
#include <QButtonGroup>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <glog/logging.h>

namespace UsageUi {

namespace {
QMenu* menuNamed(QMainWindow* window, const QString& name, const QString& title)
{
    if (auto* menu = window->menuBar()->findChild<QMenu*>(name))
        return menu;
    auto* menu = new QMenu(title, window->menuBar());
    menu->setObjectName(name);
    window->menuBar()->addMenu(menu);
    return menu;
}
} // namespace

void install(QMainWindow* window, UsageTracker* tracker)
{
    QMenu* help = menuNamed(window, QStringLiteral("helpMenu"), QCoreApplication::translate("HostServices", "&Help"));
    // Settings sits before Help, where desktop applications keep it.
    auto* settings = new QMenu(QCoreApplication::translate("UsageUi", "&Settings"), window->menuBar());
    settings->setObjectName(QStringLiteral("settingsMenu"));
    window->menuBar()->insertMenu(help->menuAction(), settings);

    QAction* preferences = settings->addAction(QCoreApplication::translate("UsageUi", "&Preferences..."));
    preferences->setObjectName(QStringLiteral("preferencesAction"));
    preferences->setMenuRole(QAction::PreferencesRole);
    Statistics::setEventKey(preferences, QStringLiteral("preferences"), QStringLiteral("settingsMenu"));
    QObject::connect(preferences, &QAction::triggered, window, [window, tracker] {
        UsagePreferencesDialog(tracker, window).exec();
    });

    QAction* data = help->addAction(QCoreApplication::translate("UsageUi", "Usage &Data..."));
    data->setObjectName(QStringLiteral("usageDataAction"));
    Statistics::setEventKey(data, QStringLiteral("usageData"), QStringLiteral("helpMenu"));
    QObject::connect(data, &QAction::triggered, window, [window, tracker] { UsageDataDialog(tracker, window).exec(); });
}

void parseWindow(QMainWindow* window)
{
    Statistics::parse(window);
    Statistics::parse(window->menuBar());
    // Toolbar actions, submenus and actions added to widgets are not widget children.
    Statistics::parse(window->findChildren<QAction*>());
}

bool activateTagged(QWidget* window, const QString& tag)
{
    const int at = tag.indexOf(QLatin1Char('@'));
    const QString event = at < 0 ? tag : tag.left(at);
    const QString source = at < 0 ? QString() : tag.mid(at + 1);
    auto matches = [&](const QObject* object) {
        return object->property(Statistics::EventProperty).toString() == event
            && (at < 0 || object->property(Statistics::SourceProperty).toString() == source);
    };
    for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
        if (matches(button)) {
            button->click();
            return true;
        }
    }
    for (QAction* action : window->findChildren<QAction*>()) {
        if (matches(action)) {
            action->trigger();
            return true;
        }
    }
    return false;
}

} // namespace UsageUi

namespace {
QString levelDetails(UsageTracker::Level level)
{
    switch (level) {
    case UsageTracker::Level::Basic:
        return QCoreApplication::translate("UsageUi",
            "Klipvane records which commands, buttons and menu entries you use, and when. "
            "Nothing else: no file names, no folders, no names of you or your computer.");
    case UsageTracker::Level::Detailed:
        return QCoreApplication::translate("UsageUi",
            "As above, and the details of each: the page shown, the format of a file that failed "
            "to open, whether you removed failed files. Still no file names, folders or identifiers.");
    case UsageTracker::Level::Off:
        break;
    }
    return QCoreApplication::translate("UsageUi", "Nothing is recorded.");
}

// The level as the user reads it; UsageTracker::levelName() is the word the settings keep.
QString levelText(UsageTracker::Level level)
{
    switch (level) {
    case UsageTracker::Level::Basic:
        return QCoreApplication::translate("UsageUi", "basic", "usage recording level");
    case UsageTracker::Level::Detailed:
        return QCoreApplication::translate("UsageUi", "detailed", "usage recording level");
    case UsageTracker::Level::Off:
        break;
    }
    return QCoreApplication::translate("UsageUi", "off", "usage recording level");
}
} // namespace

UsagePreferencesDialog::UsagePreferencesDialog(UsageTracker* tracker, QWidget* parent)
    : QDialog(parent), m_tracker(tracker), m_levels(new QButtonGroup(this)), m_details(new QLabel)
{
    setObjectName(QStringLiteral("usagePreferencesDialog"));
    setWindowTitle(QCoreApplication::translate("UsageUi", "Preferences"));
    auto* layout = new QVBoxLayout(this);
    auto* intro = new QLabel(QCoreApplication::translate("UsageUi",
        "Klipvane can keep a record of how you use it, on this computer only: nothing is sent "
        "anywhere. You can read the record under Help > Usage Data and delete it there."));
    intro->setWordWrap(true);
    layout->addWidget(intro);
    const struct
    {
        UsageTracker::Level level;
        const char* name;
        const char* text;
    } choices[] = {
        {UsageTracker::Level::Off, "usageLevelOff", QT_TRANSLATE_NOOP("UsageUi", "Do not record anything")},
        {UsageTracker::Level::Basic, "usageLevelBasic", QT_TRANSLATE_NOOP("UsageUi", "Record which commands I use")},
        {UsageTracker::Level::Detailed, "usageLevelDetailed",
         QT_TRANSLATE_NOOP("UsageUi", "Record which commands I use, with their details")},
    };
    for (const auto& choice : choices) {
        auto* button = new QRadioButton(QCoreApplication::translate("UsageUi", choice.text));
        button->setObjectName(QLatin1String(choice.name));
        m_levels->addButton(button, static_cast<int>(choice.level));
        layout->addWidget(button);
    }
    m_details->setObjectName(QStringLiteral("usageLevelDetails"));
    m_details->setWordWrap(true);
    layout->addWidget(m_details);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_levels, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
        if (checked)
            describe(id);
    });
    m_levels->button(static_cast<int>(tracker->level()))->setChecked(true);
}

void UsagePreferencesDialog::describe(int level)
{
    m_details->setText(levelDetails(static_cast<UsageTracker::Level>(level)));
}

void UsagePreferencesDialog::accept()
{
    m_tracker->setLevel(static_cast<UsageTracker::Level>(m_levels->checkedId()));
    QDialog::accept();
}

UsageDataDialog::UsageDataDialog(UsageTracker* tracker, QWidget* parent)
    : QDialog(parent), m_tracker(tracker), m_status(new QLabel), m_table(new QTableWidget(0, 4))
{
    setObjectName(QStringLiteral("usageDataDialog"));
    setWindowTitle(QCoreApplication::translate("UsageUi", "Usage Data"));
    resize(720, 420);
    auto* layout = new QVBoxLayout(this);
    m_status->setObjectName(QStringLiteral("usageDataStatus"));
    m_status->setWordWrap(true);
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_status);
    m_table->setObjectName(QStringLiteral("usageDataTable"));
    m_table->setHorizontalHeaderLabels({QCoreApplication::translate("UsageUi", "When"),
                                        QCoreApplication::translate("UsageUi", "What"),
                                        QCoreApplication::translate("UsageUi", "Where"),
                                        QCoreApplication::translate("UsageUi", "Details")});
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->verticalHeader()->hide();
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    layout->addWidget(m_table);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QPushButton* clear = buttons->addButton(QCoreApplication::translate("UsageUi", "Delete the Record"),
                                            QDialogButtonBox::DestructiveRole);
    clear->setObjectName(QStringLiteral("deleteUsageRecordButton"));
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(clear, &QPushButton::clicked, this, [this] {
        m_tracker->clearRecords();
        fill();
    });
    fill();
}

void UsageDataDialog::fill()
{
    const QList<UsageTracker::Record> records = m_tracker->records();
    QString status = QCoreApplication::translate("UsageUi", "Recording: %1. %n record(s), kept in %2.", nullptr, records.size())
                         .arg(levelText(m_tracker->level()), m_tracker->logPath());
    if (!m_tracker->isLogHealthy())
        status += QLatin1Char(' ') + QCoreApplication::translate("UsageUi",
            "That file cannot be written or is damaged: this session's records are kept in memory only.");
    m_status->setText(status);
    m_table->setRowCount(records.size());
    // Newest first, as people read a history.
    for (int row = 0; row < records.size(); ++row) {
        const UsageTracker::Record& record = records.at(records.size() - 1 - row);
        QStringList details;
        for (auto it = record.params.cbegin(); it != record.params.cend(); ++it)
            details << it.key() + QStringLiteral(": ") + it.value();
        const QStringList cells{QLocale().toString(record.time.toLocalTime(), QLocale::ShortFormat), record.event,
                                record.source, details.join(QStringLiteral(", "))};
        for (int column = 0; column < cells.size(); ++column)
            m_table->setItem(row, column, new QTableWidgetItem(cells.at(column)));
    }
    m_table->resizeColumnsToContents();
    LOG(INFO) << "usage data: " << records.size() << " record(s) shown";
}
