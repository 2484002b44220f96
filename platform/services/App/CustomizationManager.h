#pragma once

#include "App/ICustomizationManager.h"
#include "App/ProductDescription.h"

namespace Tavrin {
namespace App {

// The product's names from its description; the localized product name follows the
// locale the manager was created with.
class CustomizationManager : public ICustomizationManager
{
public:
    CustomizationManager(ProductDescription description, const QString& locale,
                         std::shared_ptr<ILinksOpener> opener, std::shared_ptr<ILinksGenerator> generator);
    ~CustomizationManager() override;

    // A QCoreApplication gets the organisation's name and domain and the application's
    // name and version (which place the settings and caches); a top-level widget without
    // a title gets the localized full product name.
    void apply(QObject* object) override;

    std::string organizationId() const override;
    std::string organizationPresentableName() const override;
    std::string organizationDomainName() const override;
    std::string productName() const override;
    std::string productNameLocalized() const override;
    std::string applicationName() const override;
    std::string productId() const override;
    std::string singleInstanceKey() const override;

    std::shared_ptr<ILinksOpener> linksOpener() const override;
    std::shared_ptr<ILinksGenerator> linksGenerator() const override;

    const ProductDescription& description() const { return m_description; }

private:
    ProductDescription m_description;
    QString m_locale;
    std::shared_ptr<ILinksOpener> m_opener;
    std::shared_ptr<ILinksGenerator> m_generator;
};

} // namespace App
} // namespace Tavrin
