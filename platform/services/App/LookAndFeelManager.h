#pragma once

#include "App/ILookAndFeelManager.h"

#include <QString>

class QCoreApplication;
class QTranslator;

namespace Tavrin {
namespace App {

// The locale the user interface runs in and the locales whose catalogues the host ships
// ("klipvane_<locale>.qm" in its translations folder). The source texts are English, so
// "en_US" is always available and comes first.
class LookAndFeelManager : public ILookAndFeelManager
{
public:
    LookAndFeelManager(const QString& locale, const QString& translationsDirectory);
    ~LookAndFeelManager() override;

    std::string currentLocale() const override;
    std::vector<std::string> availableLocales() const override;

    // The locale to start with: the value of "--locale <code>" or "--locale=<code>" in
    // `arguments`, else the system's locale (LANG, LC_ALL); in the form "de_DE".
    static QString chooseLocale(const QStringList& arguments);

    // Loads the catalogues of the current locale (the application's and Qt's own) into
    // `application`; false when the application's catalogue is missing (English stays).
    bool installTranslators(QCoreApplication* application);

    QString translationsDirectory() const { return m_directory; }

private:
    QString m_locale;
    QString m_directory;
    std::vector<QTranslator*> m_translators;
};

} // namespace App
} // namespace Tavrin
