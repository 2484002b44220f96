#pragma once

namespace Tavrin {
namespace App {

// How the application (or any application of its product) was started this time,
// compared with the launches recorded in the settings store.
enum class LaunchType {
    Regular = 0,        // started before with the same version
    FirstAfterInstall,  // never started before
    FirstAfterUpdate,   // started before, with another version
};

class ILaunchTypeProcessor
{
public:
    virtual ~ILaunchTypeProcessor() = default;

    virtual bool isFirstProductLaunch() const = 0;
    virtual bool isFirstApplicationLaunch() const = 0;
    virtual LaunchType productLaunchType() const = 0;
    virtual LaunchType applicationLaunchType() const = 0;
};

} // namespace App
} // namespace Tavrin
