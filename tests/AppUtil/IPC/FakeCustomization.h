#pragma once

#include <App/ICustomizationManager.h>
#include <App/ServiceRegistry.h>

#include <memory>
#include <string>

// A customisation with just what the IPC layer reads: product id and single-instance key.
class FakeCustomization : public Tavrin::App::ICustomizationManager
{
public:
    void apply(QObject*) override {}
    std::string organizationId() const override { return "klipvane"; }
    std::string organizationPresentableName() const override { return "Klipvane"; }
    std::string organizationDomainName() const override { return "klipvane.example"; }
    std::string productName() const override { return "Klipvane"; }
    std::string productNameLocalized() const override { return "Klipvane"; }
    std::string applicationName() const override { return "Klipvane"; }
    std::string productId() const override { return product; }
    std::string singleInstanceKey() const override { return key; }
    std::shared_ptr<Tavrin::App::ILinksOpener> linksOpener() const override { return nullptr; }
    std::shared_ptr<Tavrin::App::ILinksGenerator> linksGenerator() const override { return nullptr; }

    std::string product = "klipvane";
    std::string key = "klipvane-test-editor";

    static std::shared_ptr<FakeCustomization> install()
    {
        auto manager = std::make_shared<FakeCustomization>();
        Tavrin::App::ServiceRegistry::instance().set<Tavrin::App::ICustomizationManager>(manager);
        return manager;
    }
};
