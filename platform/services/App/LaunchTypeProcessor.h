#pragma once

#include "App/ILaunchTypeProcessor.h"

#include <QString>

namespace Tavrin {
namespace App {

// Compares this launch with the last one recorded in the settings store and records
// this one. The product's record is shared by every application of the product, so the
// first application started after an install sees the first product launch.
//
// Settings keys: "Launches/Product/<product id>" and "Launches/Application/<application
// name>", each holding the version that ran last.
class LaunchTypeProcessor : public ILaunchTypeProcessor
{
public:
    LaunchTypeProcessor(const QString& productId, const QString& applicationName, const QString& version);
    ~LaunchTypeProcessor() override;

    bool isFirstProductLaunch() const override;
    bool isFirstApplicationLaunch() const override;
    LaunchType productLaunchType() const override;
    LaunchType applicationLaunchType() const override;

private:
    LaunchType m_product = LaunchType::Regular;
    LaunchType m_application = LaunchType::Regular;
};

} // namespace App
} // namespace Tavrin
