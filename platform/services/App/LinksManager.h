#pragma once

#include "App/ILinksManager.h"
#include "App/ProductDescription.h"

#include <functional>

namespace Tavrin {
namespace App {

// Addresses from the product description; generated addresses carry the product's
// parameters and the current locale.
class LinksGenerator : public ILinksGenerator
{
public:
    // `locale` is asked on every generation, so a locale switch shows in the next address.
    LinksGenerator(ProductDescription description, std::function<QString()> locale);
    ~LinksGenerator() override;

    QString url(URLKeys key) const override;
    QString generateUrl(const QString& base, const UrlParameters& parameters) const override;

private:
    ProductDescription m_description;
    std::function<QString()> m_locale;
};

// Opens http and https addresses with the desktop's browser (QDesktopServices); every
// other scheme is refused with a log line, so a configuration cannot make the editor
// start a program.
class DesktopLinksOpener : public ILinksOpener
{
public:
    bool openUrl(const QString& url) override;
};

class LinksManager : public ILinksManager
{
public:
    LinksManager(std::shared_ptr<ILinksGenerator> generator, std::shared_ptr<ILinksOpener> opener);
    ~LinksManager() override;

    QString url(URLKeys key) const override;
    QString generateUrl(const QString& base, const UrlParameters& parameters) const override;
    bool openUrl(const QString& url) override;
    bool openUrl(URLKeys key) override;
    void setLinksOpener(std::shared_ptr<ILinksOpener> opener) override;

private:
    std::shared_ptr<ILinksGenerator> m_generator;
    std::shared_ptr<ILinksOpener> m_defaultOpener;
    std::shared_ptr<ILinksOpener> m_opener;
};

} // namespace App
} // namespace Tavrin
