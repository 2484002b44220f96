#pragma once

#include "App/ILinksManager.h"

#include <memory>

namespace Tavrin {
namespace App {

class IPCPlatformProtocol;

// Opens web addresses through the product family's platform application while it runs,
// so the user lands in the browser session that application manages; otherwise, or
// before communication has started, through the wrapped opener.
//
//   links->setLinksOpener(std::make_shared<IPCLinksDecorator>(
//       customization->linksOpener(), customization->linksGenerator(), protocol));
class IPCLinksDecorator : public ILinksOpener
{
public:
    IPCLinksDecorator(std::shared_ptr<ILinksOpener> opener, std::shared_ptr<ILinksGenerator> generator,
                      std::shared_ptr<IPCPlatformProtocol> protocol);

    bool openUrl(const QString& url) override;

private:
    std::shared_ptr<ILinksOpener> m_opener;
    std::shared_ptr<ILinksGenerator> m_generator;
    std::weak_ptr<IPCPlatformProtocol> m_protocol;
};

} // namespace App
} // namespace Tavrin
