#include "App/ProductServices.h"

#include "App/CustomizationManager.h"
#include "App/LaunchTypeProcessor.h"
#include "App/LinksManager.h"
#include "App/LookAndFeelManager.h"
#include "App/ServiceRegistry.h"

#include <glog/logging.h>

namespace Tavrin {
namespace App {

bool registerProductServices(const QString& productFile, const ProductServicesOptions& options, QString* error)
{
    QString reason;
    std::optional<ProductDescription> loaded = ProductDescription::load(productFile, &reason);
    if (!loaded)
        LOG(ERROR) << reason.toStdString() << "; running with the built-in names and without web addresses";
    if (error)
        *error = reason;
    const ProductDescription description = loaded ? *loaded : ProductDescription::fallback();

    auto lookAndFeel = std::make_shared<LookAndFeelManager>(options.locale, options.translationsDirectory);
    const QString locale = QString::fromStdString(lookAndFeel->currentLocale());
    std::weak_ptr<LookAndFeelManager> weakLookAndFeel = lookAndFeel;
    auto generator = std::make_shared<LinksGenerator>(description, [weakLookAndFeel] {
        const auto manager = weakLookAndFeel.lock();
        return manager ? QString::fromStdString(manager->currentLocale()) : QString();
    });
    auto opener = std::make_shared<DesktopLinksOpener>();
    auto customization = std::make_shared<CustomizationManager>(description, locale, opener, generator);
    auto links = std::make_shared<LinksManager>(generator, opener);
    const QString version = options.applicationVersion.isEmpty() ? description.productVersion : options.applicationVersion;
    auto launchType = std::make_shared<LaunchTypeProcessor>(description.productId, description.applicationName, version);

    ServiceRegistry& registry = ServiceRegistry::instance();
    registry.set<ILookAndFeelManager>(lookAndFeel);
    registry.set<ICustomizationManager>(customization);
    registry.set<ILinksManager>(links);
    registry.set<ILaunchTypeProcessor>(launchType);
    registry.setValue("startupLocale", locale.toStdString());
    return loaded.has_value();
}

void unregisterProductServices()
{
    ServiceRegistry& registry = ServiceRegistry::instance();
    registry.remove<ILookAndFeelManager>();
    registry.remove<ICustomizationManager>();
    registry.remove<ILinksManager>();
    registry.remove<ILaunchTypeProcessor>();
    registry.setValue("startupLocale", boost::any());
}

} // namespace App
} // namespace Tavrin
