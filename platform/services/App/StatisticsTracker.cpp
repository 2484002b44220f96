#include "StatisticsTracker.h"

#include <QRegularExpression>
#include <QString>

#include <glog/logging.h>

namespace Tavrin {
namespace App {

bool LoggingStatisticsTracker::matches(const std::string& pattern, const std::string& event)
{
    const QRegularExpression expression(
        QRegularExpression::wildcardToRegularExpression(QString::fromStdString(pattern)));
    return expression.match(QString::fromStdString(event)).hasMatch();
}

void LoggingStatisticsTracker::addDataFiller(const std::string& eventPattern, DataFiller filler)
{
    m_fillers.emplace(eventPattern, std::move(filler));
}

void LoggingStatisticsTracker::sendEvent(const std::string& event, Fields fields)
{
    for (const auto& [pattern, filler] : m_fillers) {
        if (matches(pattern, event))
            filler(event, fields);
    }
    std::string line = event;
    for (const auto& [name, value] : fields)
        line += ' ' + name + '=' + value;
    LOG(INFO) << "statistics: " << line;
}

std::shared_ptr<IStatisticsTracker> LoggingStatisticsTrackerFactory::createTracker()
{
    return std::make_shared<LoggingStatisticsTracker>();
}

} // namespace App
} // namespace Tavrin
