#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace Tavrin {
namespace App {

// Sends usage events. Data fillers add fields to the events whose name matches their
// pattern ("*" matches every event), so a caller can stamp the events that code it does not
// own sends on its behalf.
class IStatisticsTracker
{
public:
    using Fields = std::map<std::string, std::string>;
    using DataFiller = std::function<void(const std::string& event, Fields& fields)>;

    virtual ~IStatisticsTracker() = default;
    virtual void addDataFiller(const std::string& eventPattern, DataFiller filler) = 0;
    virtual void sendEvent(const std::string& event, Fields fields) = 0;
};

// Makes trackers; registered in the application's service registry.
class IStatisticsTrackerFactory
{
public:
    virtual ~IStatisticsTrackerFactory() = default;
    virtual std::shared_ptr<IStatisticsTracker> createTracker() = 0;
};

// Applies its fillers and writes each event as one log line:
//   statistics: <event> <field>=<value> ...
class LoggingStatisticsTracker : public IStatisticsTracker
{
public:
    void addDataFiller(const std::string& eventPattern, DataFiller filler) override;
    void sendEvent(const std::string& event, Fields fields) override;

    // Whether `event` matches `pattern` ("*" and "?" wildcards).
    static bool matches(const std::string& pattern, const std::string& event);

private:
    std::multimap<std::string, DataFiller> m_fillers;
};

class LoggingStatisticsTrackerFactory : public IStatisticsTrackerFactory
{
public:
    std::shared_ptr<IStatisticsTracker> createTracker() override;
};

} // namespace App
} // namespace Tavrin
