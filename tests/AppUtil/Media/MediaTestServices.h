#pragma once

// Small stand-ins for the managers the media-intake code reaches through the service
// registry (links and customisation), with fixed, recognisable values.

#include "FakeCustomization.h"

#include <App/ILinksManager.h>
#include <App/ServiceRegistry.h>

namespace MediaTestServices {

inline QString faqUrl() { return QStringLiteral("https://support.klipvane.test/faq"); }
inline QString formatsUrl() { return QStringLiteral("https://support.klipvane.test/formats"); }

class Links : public Tavrin::App::ILinksManager
{
public:
    QString url(Tavrin::URLKeys key) const override
    {
        if (key == Tavrin::URLKeys::FAQ_URL)
            return faqUrl();
        if (key == Tavrin::URLKeys::HELP_URL_supported_formats)
            return formatsUrl();
        return QString();
    }
    QString generateUrl(const QString& base, const Tavrin::App::UrlParameters&) const override { return base; }
    bool openUrl(const QString&) override { return false; }
    bool openUrl(Tavrin::URLKeys) override { return false; }
    void setLinksOpener(std::shared_ptr<Tavrin::App::ILinksOpener>) override {}
};

inline void install()
{
    auto& registry = Tavrin::App::ServiceRegistry::instance();
    registry.set<Tavrin::App::ILinksManager>(std::make_shared<Links>());
    FakeCustomization::install();
}

} // namespace MediaTestServices
