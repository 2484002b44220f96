#pragma once

namespace Tavrin {
namespace App {

// Whether the machine looks connected, for features that offer to download or report.
class IInternetConnectionChecker
{
public:
    virtual ~IInternetConnectionChecker() = default;
    virtual bool isConnected() const = 0;
};

// Connected when a network interface other than loopback is up and has an address.
class InternetConnectionChecker : public IInternetConnectionChecker
{
public:
    bool isConnected() const override;
};

} // namespace App
} // namespace Tavrin
