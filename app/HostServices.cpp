#include "HostServices.h"

#include "DialogGallery.h"
#include "DialogTrail.h"

#include <Statistics.h>
#include <Customization.h>
#include <Dialog/DialogStrategy.h>

#include <App/ILookAndFeelManager.h>
#include <App/LookAndFeelManager.h>
#include <App/ProductServices.h>
#include <App/ServiceRegistry.h>
#include <Util/StyleSheet.h>

#include <QApplication>
#include <QLocale>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include <glog/logging.h>

#include <algorithm>

namespace HostServices {

QString registerProduct(const QString& binDirectory, const QString& requestedLocale)
{
    QString locale = requestedLocale.isEmpty() ? QLocale::system().name() : QLocale(requestedLocale).name();
    // A session without a language ("C", "POSIX") gets the language the texts are written in.
    if (locale == QLatin1String("C"))
        locale = QStringLiteral("en_US");
    Tavrin::App::ProductServicesOptions options;
    options.locale = locale;
    options.translationsDirectory = binDirectory + QStringLiteral("/translations");
    Tavrin::App::registerProductServices(binDirectory + QStringLiteral("/product.json"), options);
    return locale;
}

int dismissDialogsAfterMs()
{
    bool set = false;
    const int ms = qEnvironmentVariableIntValue("KLIPVANE_DISMISS_DIALOGS_MS", &set);
    return set ? std::max(0, ms) : -1;
}

void install(QApplication& application)
{
    auto lookAndFeel = Tavrin::App::ServiceRegistry::instance().get<Tavrin::App::ILookAndFeelManager>();
    Customization::init(lookAndFeel);
    if (auto* manager = dynamic_cast<Tavrin::App::LookAndFeelManager*>(lookAndFeel.get()))
        manager->installTranslators(&application);
    Customization::apply(&application);
    application.setStyleSheet(Tavrin::Util::applicationStyleSheet());
    // Unattended runs (scripts, tests of the host) have no one to answer a dialog.
    Dialog::initialize(std::make_shared<DialogTrail>(std::make_shared<Dialog::DialogStrategy>(), dismissDialogsAfterMs()));
    LOG(INFO) << "product: " << Customization::productFullNameLocalized().toStdString() << ", locale "
              << Customization::currentLocale().toStdString();
}

namespace {
void addHelpLinks(QMenu* menu)
{
    struct Link
    {
        QString text;
        Tavrin::URLKeys key;
    };
    const Link links[] = {
        {QCoreApplication::translate("HostServices", "&Help"), Tavrin::URLKeys::HELP_URL_menu},
        {QCoreApplication::translate("HostServices", "Supported &formats"), Tavrin::URLKeys::HELP_URL_supported_formats},
        {QCoreApplication::translate("HostServices", "&Support center"), Tavrin::URLKeys::FAQ_URL_menu},
        {QCoreApplication::translate("HostServices", "&Contact support"), Tavrin::URLKeys::CONTACT_SUPPORT_menu},
        {QCoreApplication::translate("HostServices", "&Home page"), Tavrin::URLKeys::HOMEPAGE_URL_menu},
    };
    for (const Link& link : links) {
        QAction* action = menu->addAction(link.text);
        action->setObjectName(QStringLiteral("helpLink_") + Tavrin::toString(link.key));
        action->setToolTip(Customization::appUrl(link.key));
        Statistics::setEventKey(action, QStringLiteral("openHelpLink"), QStringLiteral("helpMenu"));
        Statistics::addEventParam(action, QStringLiteral("link"), Tavrin::toString(link.key));
        // A product without an address for the key keeps the entry, disabled.
        action->setEnabled(!action->toolTip().isEmpty());
        const Tavrin::URLKeys key = link.key;
        QObject::connect(action, &QAction::triggered, menu, [key] { Customization::openUrl(key); });
    }
}

} // namespace

void decorateMainWindow(QMainWindow* window)
{
    window->setWindowTitle(Customization::productFullNameLocalized());
    QMenu* help = window->menuBar()->addMenu(QCoreApplication::translate("HostServices", "&Help"));
    help->setObjectName(QStringLiteral("helpMenu"));
    addHelpLinks(help);
    help->addSeparator();
    QMenu* dialogs = help->addMenu(QCoreApplication::translate("HostServices", "Standard &dialogs"));
    dialogs->setObjectName(QStringLiteral("standardDialogsMenu"));
    DialogGallery::addToMenu(dialogs);
}

} // namespace HostServices
