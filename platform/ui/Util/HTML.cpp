#include "Util/HTML.h"

namespace Util {
namespace HTML {

QString textWithLink(const QString& text, const QString& url, const QString& style)
{
    QString anchor = QStringLiteral("<a href=\"%1\"").arg(url.toHtmlEscaped());
    if (!style.isEmpty())
        anchor += QStringLiteral(" style=\"%1\"").arg(style.toHtmlEscaped());
    return anchor + QLatin1Char('>') + text + QStringLiteral("</a>");
}

QString fontWeight(const QString& text, int weight)
{
    return QStringLiteral("<span style=\"font-weight:%1\">").arg(weight) + text + QStringLiteral("</span>");
}

} // namespace HTML
} // namespace Util
