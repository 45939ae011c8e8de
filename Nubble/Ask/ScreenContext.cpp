#include "Ask/ScreenContext.h"

#include <QStringList>

namespace nubble {

QString ScreenContext::label() const
{
    QStringList parts{appName.value_or(QString()), windowTitle.value_or(QString())};
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" — "));
}

} // namespace nubble
