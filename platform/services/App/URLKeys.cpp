#include "App/URLKeys.h"

#include <QHash>

#include <iterator>

namespace Tavrin {
namespace {
// In the order of the enumeration.
const char* const keyNames[] = {
    "INTELMEDIA_ENCODING_MORE_URL_settings",
    "NVIDIA_ENCODING_MORE_URL_settings",
    "FAQ_URL_menu",
    "FAQ_URL_menuabout",
    "FAQ_URL_errorkey",
    "FAQ_URL_erroroffline",
    "FAQ_URL",
    "HOMEPAGE_URL_menu",
    "HOMEPAGE_URL_menuabout",
    "HOMEPAGE_URL_socialtab",
    "HOMEPAGE_URL",
    "DOWNLOAD_URL_checkupdatest",
    "HELP_URL_menu",
    "LIVECHAT_URL_menu",
    "LIVECHAT_URL_other",
    "CONTACT_SUPPORT_menu",
    "CUSTOM_ABOUT_URL",
    "CUSTOM_ABOUT_CAPTION_URL",
    "THANK_FOR_INSTALL_URL",
    "THANK_FOR_REINSTALL_URL",
    "ALL_PATENTS_URL",
    "FEEDBACK_URL_POST",
    "FEEDBACK_URL_GET",
    "NPS_URL_POST",
    "PRIVACY_POLICY_URL",
    "WHAT_IS_PLATFORM_URL",
    "DOWNLOAD_PLATFORM_URL_widgetlk",
    "NTP_SERVICE_HOST_URL",
    "WEB_CONFIG_URL",
    "SPARKLE_APPCAST_URL",
    "FORUM_URL_socialtab",
    "FORUM_URL_menu",
    "INSTAGRAM_URL_socialtab",
    "INSTAGRAM_URL_menu",
    "FACEBOOK_URL_socialtab",
    "FACEBOOK_URL_menu",
    "ODNOKLASSNIKI_URL_socialtab",
    "ODNOKLASSNIKI_URL_menu",
    "GOOGLE_PLUS_URL_socialtab",
    "GOOGLE_PLUS_URL_menu",
    "VKONTAKTE_URL_socialtab",
    "VKONTAKTE_URL_menu",
    "YOU_TUBE_URL_socialtab",
    "YOU_TUBE_URL_menu",
    "UPLOAD_ITUNES_URL_other",
    "DRIVER_UPDATE_GUIDE_URL_other",
    "FAQ_URL_erroropengl",
    "HOMEPAGE_URL_youtube_description",
    "HOMEPAGE_URL_vimeo_description",
    "TAVRIN_CLOUD_HOST_URL",
    "HELP_URL_start_dialog",
    "HELP_URL_supported_formats",
    "GOOGLE_PRIVACY_POLICY_URL_export_dialog",
    "GOOGLE_PRIVACY_POLICY_URL",
    "YOUTUBE_TERMS_URL_export_dialog",
    "GOOGLE_ACCOUNT_URL_export_dialog",
    "YOUTUBE_TERMS_OF_SERVICES_URL",
    "GOOGLE_SECURITY_PERMISSIONS_URL",
    "CHECK_FOR_UPDATES_URL",
    "CHANGELOG_URL",
    "YOU_TUBE_URL_tutorial",
    "COLLECTIONS_EXTERNAL_AUDIO_URL",
    "COLLECTIONS_EXTERNAL_EFFECTS_URL",
    "MS_EXTENSION_VIDEO_h265notification",
    "MS_EXTENSION_IMAGE_h265notification",
    "CONVERT_LINK_h265notification",
    "COLLECTIONS_TRENDING_REQUEST_URL",
    "VIDEOBLOCKS_URL_other_import",
    "AUDIOBLOCKS_URL_other_import",
    "GRAPHICSTOCK_URL_other_import",
    "COLLECTION_PROMO_FEED",
    "STORE_URL_filters_store",
    "STORE_URL_transitions_store",
    "STORE_URL_titles_store",
    "STORE_URL_stickers_store",
    "STORE_URL_callouts_store",
    "STORE_URL_menu",
    "FTHD_MORE_URL_settings",
    "ACCELERATION_LEARNMORE_URL_settings",
    "HOW_TO_CREATE_SLIDESHOW_URL_newprojectdialog",
    "HOW_TO_CREATE_ONLINE_COURSE_URL_start_dialog",
    "HOW_TO_RECORD_LECTURES_URL_start_dialog",
    "HOW_TO_MAKE_VIDEO_IN_5MIN_URL_start_dialog",
    "HOW_TO_RECORD_AND_DOWNLOAD_LECTURES_URL_start_dialog",
    "HOW_TO_EDIT_AND_ENHANCE_URL_start_dialog",
    "HOW_TO_ALL_URL_start_dialog",
};
static_assert(std::size(keyNames) == std::size_t(urlKeyCount), "every key needs its name");
} // namespace

QString toString(URLKeys key)
{
    const int index = int(key);
    if (index < 0 || index >= urlKeyCount)
        return QString();
    return QLatin1String(keyNames[index]);
}

std::optional<URLKeys> urlKeyFromString(const QString& name)
{
    static const QHash<QString, int> byName = [] {
        QHash<QString, int> names;
        for (int i = 0; i < urlKeyCount; ++i)
            names.insert(QLatin1String(keyNames[i]), i);
        return names;
    }();
    const auto found = byName.constFind(name);
    if (found == byName.constEnd())
        return std::nullopt;
    return URLKeys(*found);
}

} // namespace Tavrin
