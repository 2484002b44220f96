#pragma once

#include "AppUtil_export.h"

#include <App/ILaunchTypeProcessor.h>
#include <App/URLKeys.h>

#include <QString>
#include <QStringList>

#include <memory>
#include <string>

class QLayout;
class QObject;

namespace Tavrin {
namespace App {
class ILookAndFeelManager;
}
}

// Everything that depends on the product build and on the user's environment: names,
// launch type, locale, web addresses. Each call fetches the responsible manager from the
// application's service registry (Tavrin::App::ServiceRegistry) and asks it; a manager
// the host did not register is a wiring mistake and is not guarded against.
//
//   label->setText(Customization::productFullNameLocalized());
//   Customization::openUrl(Tavrin::URLKeys::HELP_URL_menu);
namespace Customization {

APPUTIL_EXPORT void init(std::weak_ptr<Tavrin::App::ILookAndFeelManager> const& lookAndFeel);

APPUTIL_EXPORT QString appUrl(Tavrin::URLKeys const& key);
APPUTIL_EXPORT QString supportCenterUrl();
// An anchor to the support centre, without underline, for rich-text messages.
APPUTIL_EXPORT QString supportCenterHRef();
APPUTIL_EXPORT QString supportedFormatsURL();
APPUTIL_EXPORT QString homepageYoutubeLocalized();
APPUTIL_EXPORT QString homepageVimeoLocalized();
APPUTIL_EXPORT QString generateUrl(QString const& url);
APPUTIL_EXPORT void openUrl(QString const& url);
APPUTIL_EXPORT void openUrl(Tavrin::URLKeys const& key);

APPUTIL_EXPORT QString applicationName();
APPUTIL_EXPORT QString productName();
APPUTIL_EXPORT QString productNameLocalized();
APPUTIL_EXPORT QString organizationId();
APPUTIL_EXPORT QString organizationDomainName();
APPUTIL_EXPORT QString organizationPresentableName();
// "<organisation> <product>"; with an empty organisation the leading blank stays.
APPUTIL_EXPORT QString productFullName();
APPUTIL_EXPORT QString productFullNameLocalized();
APPUTIL_EXPORT QString effectsStoreName();
APPUTIL_EXPORT QString effectsStoreNameBranded();

APPUTIL_EXPORT Tavrin::App::LaunchType applicationLaunchType();
APPUTIL_EXPORT Tavrin::App::LaunchType productLaunchType();
APPUTIL_EXPORT bool isFirstApplicationLaunch();
APPUTIL_EXPORT bool isFirstProductLaunch();

// The user-interface locales the application offers; filled once, on the first call that
// finds the list empty.
APPUTIL_EXPORT QStringList const& availableLocales();
APPUTIL_EXPORT QString currentLocale();
APPUTIL_EXPORT std::string startupLocale();
// `text` in bold, except under the locales whose scripts have no usable bold face.
APPUTIL_EXPORT QString localeDependedBoldText(QString const& text);

APPUTIL_EXPORT void apply(QObject* object);
// Keeps the widgets of `layout` named in `order`, in that order, and deletes the others.
APPUTIL_EXPORT void applyLayout(QLayout* layout, QStringList const& order);

} // namespace Customization
