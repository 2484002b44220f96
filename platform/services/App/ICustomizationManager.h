#pragma once

#include <memory>
#include <string>

class QObject;

namespace Tavrin {
namespace App {

class ILinksOpener;
class ILinksGenerator;

// The product's customisation: names, the single-instance key, the product id. Names are
// UTF-8 strings. Implemented by platform/services from the product description file.
class ICustomizationManager
{
public:
    virtual ~ICustomizationManager() = default;

    // Applies the product's customisation (names, icons) to an object, typically the application.
    virtual void apply(QObject* object) = 0;

    virtual std::string organizationId() const = 0;
    virtual std::string organizationPresentableName() const = 0;
    virtual std::string organizationDomainName() const = 0;
    virtual std::string productName() const = 0;
    virtual std::string productNameLocalized() const = 0;
    // The name of this application within the product family ("Klipvane").
    virtual std::string applicationName() const = 0;
    // Product id shared by every application of one product (compared by IPC to find peers).
    virtual std::string productId() const = 0;
    // The key under which processes of the editor recognise each other.
    virtual std::string singleInstanceKey() const = 0;

    virtual std::shared_ptr<ILinksOpener> linksOpener() const = 0;
    virtual std::shared_ptr<ILinksGenerator> linksGenerator() const = 0;
};

} // namespace App
} // namespace Tavrin
