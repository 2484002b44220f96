#pragma once

#include <App/ICustomizationManager.h>
#include <App/ServiceRegistry.h>

#include <memory>
#include <string>

// A product customisation with plain, writable values, for tests of code that reads the
// customisation manager from the service registry (names, product id, single-instance key).
class FakeCustomization : public Tavrin::App::ICustomizationManager
{
public:
    std::string organization = "Tavrin";
    std::string product = "klipvane";
    std::string localizedName = "Klipvane";
    std::string key = "klipvane-test-editor";
    QObject* applied = nullptr;

    void apply(QObject* object) override { applied = object; }
    std::string organizationId() const override { return "tavrin"; }
    std::string organizationPresentableName() const override { return organization; }
    std::string organizationDomainName() const override { return "klipvane.example"; }
    std::string productName() const override { return "Klipvane"; }
    std::string productNameLocalized() const override { return localizedName; }
    std::string applicationName() const override { return "Klipvane"; }
    std::string productId() const override { return product; }
    std::string singleInstanceKey() const override { return key; }
    std::shared_ptr<Tavrin::App::ILinksOpener> linksOpener() const override { return nullptr; }
    std::shared_ptr<Tavrin::App::ILinksGenerator> linksGenerator() const override { return nullptr; }

    // Registers a new fake as the application's customisation manager.
    static std::shared_ptr<FakeCustomization> install()
    {
        auto manager = std::make_shared<FakeCustomization>();
        Tavrin::App::ServiceRegistry::instance().set<Tavrin::App::ICustomizationManager>(manager);
        return manager;
    }
};
