#include "App/LookAndFeelManager.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QTranslator>

#include <glog/logging.h>

#include <algorithm>

namespace Tavrin {
namespace App {
namespace {
const char sourceLocale[] = "en_US";
}

LookAndFeelManager::LookAndFeelManager(const QString& locale, const QString& translationsDirectory)
    : m_locale(locale.isEmpty() ? QString::fromLatin1(sourceLocale) : locale)
    , m_directory(translationsDirectory)
{
}

LookAndFeelManager::~LookAndFeelManager()
{
    // The translators belong to the application once installed; remove ours so a later
    // manager can install its own without the old catalogues shadowing them.
    for (QTranslator* translator : m_translators) {
        QCoreApplication::removeTranslator(translator);
        delete translator;
    }
}

std::string LookAndFeelManager::currentLocale() const
{
    return m_locale.toStdString();
}

std::vector<std::string> LookAndFeelManager::availableLocales() const
{
    std::vector<std::string> locales{sourceLocale};
    if (m_directory.isEmpty())
        return locales;
    const QRegularExpression pattern(QStringLiteral("^klipvane_([a-z]{2,3}_[A-Z]{2})\\.qm$"));
    const QStringList files = QDir(m_directory).entryList({QStringLiteral("klipvane_*.qm")}, QDir::Files, QDir::Name);
    for (const QString& file : files) {
        const QRegularExpressionMatch match = pattern.match(file);
        if (!match.hasMatch())
            continue;
        const std::string locale = match.captured(1).toStdString();
        if (std::find(locales.begin(), locales.end(), locale) == locales.end())
            locales.push_back(locale);
    }
    return locales;
}

QString LookAndFeelManager::chooseLocale(const QStringList& arguments)
{
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        if (argument == QLatin1String("--locale") && i + 1 < arguments.size())
            return QLocale(arguments.at(i + 1)).name();
        if (argument.startsWith(QLatin1String("--locale=")))
            return QLocale(argument.mid(9)).name();
    }
    return QLocale::system().name();
}

bool LookAndFeelManager::installTranslators(QCoreApplication* application)
{
    if (!application)
        return false;
    auto* own = new QTranslator;
    if (!own->load(QStringLiteral("klipvane_") + m_locale, m_directory)) {
        delete own;
        if (m_locale != QLatin1String(sourceLocale))
            LOG(WARNING) << "No translation for locale " << m_locale.toStdString() << " in "
                         << m_directory.toStdString() << "; the interface stays in English";
        return false;
    }
    application->installTranslator(own);
    m_translators.push_back(own);
    auto* qt = new QTranslator;
    if (qt->load(QStringLiteral("qtbase_") + m_locale, QLibraryInfo::location(QLibraryInfo::TranslationsPath))) {
        application->installTranslator(qt);
        m_translators.push_back(qt);
    } else {
        delete qt;
    }
    return true;
}

} // namespace App
} // namespace Tavrin
