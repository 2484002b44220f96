#include "Util/StyleSheet.h"

#include <QFile>

namespace Tavrin {
namespace Util {

QString applicationStyleSheet()
{
    QFile file(QStringLiteral(":/style/klipvane.qss"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return QString();
    return QString::fromUtf8(file.readAll());
}

} // namespace Util
} // namespace Tavrin
