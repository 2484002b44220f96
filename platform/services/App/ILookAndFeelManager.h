#pragma once

#include <string>
#include <vector>

namespace Tavrin {
namespace App {

// The user interface's locale and the locales the application ships translations for.
// Locale codes are language, underscore, country ("de_DE").
class ILookAndFeelManager
{
public:
    virtual ~ILookAndFeelManager() = default;

    virtual std::string currentLocale() const = 0;
    // Every locale the user interface can be shown in, the source language first.
    virtual std::vector<std::string> availableLocales() const = 0;
};

} // namespace App
} // namespace Tavrin
