#include "App/IPCLinksDecorator.h"

#include "App/IPCPlatformProtocol.h"

#include <QUrl>

#include <glog/logging.h>

namespace Tavrin {
namespace App {
namespace {
const char kPlatformAppId[] = "orvelplatform";
}

IPCLinksDecorator::IPCLinksDecorator(std::shared_ptr<ILinksOpener> opener, std::shared_ptr<ILinksGenerator> generator,
                                     std::shared_ptr<IPCPlatformProtocol> protocol)
    : m_opener(std::move(opener)), m_generator(std::move(generator)), m_protocol(protocol)
{
}

bool IPCLinksDecorator::openUrl(const QString& url)
{
    const QUrl parsed(url, QUrl::StrictMode);
    const QString scheme = parsed.scheme().toLower();
    if (!parsed.isValid() || (scheme != QLatin1String("http") && scheme != QLatin1String("https"))) {
        LOG(WARNING) << "Refusing to open \"" << url.toStdString() << "\": not a web address";
        return false;
    }
    // The protocol belongs to the IPC controller; once it is gone, the browser opener is all
    // that is left.
    const auto protocol = m_protocol.lock();
    if (protocol && protocol->IsCommunicationStarted() && protocol->IsApplicationConnected(kPlatformAppId)) {
        // The platform application opens what it is given: the address must already carry
        // the product's parameters (generateUrl keeps those already present).
        protocol->SendOpenLink(m_generator ? m_generator->generateUrl(url, {}) : url);
        return true;
    }
    return m_opener ? m_opener->openUrl(url) : false;
}

} // namespace App
} // namespace Tavrin
