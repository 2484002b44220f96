#include "Translator/Translator.h"

#include <QCoreApplication>

namespace Translator {

QString translate(const QString& key, const QString& defaultText)
{
    const QByteArray utf8 = key.toUtf8();
    const QString text = QCoreApplication::translate("Keys", utf8.constData());
    if (text != key)
        return text;
    return defaultText.isEmpty() ? key : defaultText;
}

} // namespace Translator
