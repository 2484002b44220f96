#pragma once

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace Tavrin {
namespace App {

// Keeps the desktop from blanking the screen and from sleeping while the editor does
// something the user watches (playback). Each call may come from any thread.
class IPowerManager
{
public:
    virtual ~IPowerManager() = default;
    // The desktop should stay awake until RestorePowerSaving().
    virtual void SuppressPowerSaving() = 0;
    virtual void RestorePowerSaving() = 0;
};

// The desktop's own inhibition services, reached over the session D-Bus without ever
// waiting on them on the calling thread. Logs "power: inhibited via <service>",
// "power: released" and "power: unavailable: <why>".
std::shared_ptr<IPowerManager> CreateDefaultImplPowerManager();

// Shares one power manager among independent users: the desktop is kept awake while any
// user suppresses power saving, and released when the last one restores it (or is
// destroyed while suppressing).
//
//   MultiUserPowerManager manager(CreateDefaultImplPowerManager());
//   auto playback = manager.GetPowerManager("playback");
//   playback->SuppressPowerSaving();   // inhibited
//   auto render = manager.GetPowerManager("render");
//   render->SuppressPowerSaving();     // still one inhibition
//   playback->RestorePowerSaving();    // still inhibited: render suppresses
//   render.reset();                    // released
class MultiUserPowerManager
{
public:
    explicit MultiUserPowerManager(std::shared_ptr<IPowerManager> implementation);
    ~MultiUserPowerManager();

    // The power manager of user `id`; the same object while it is alive.
    std::shared_ptr<IPowerManager> GetPowerManager(const std::string& id);

    // Ids of the users that have a power manager now, and of those that suppress.
    std::vector<std::string> Users() const;
    std::vector<std::string> SuppressingUsers() const;

    struct State;

private:
    std::shared_ptr<State> m_state;
};

} // namespace App
} // namespace Tavrin
