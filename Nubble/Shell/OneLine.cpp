#include "Shell/OneLine.h"

namespace nubble {

QString oneLine(QString text)
{
    for (QChar &each : text)
        if (each.category() == QChar::Other_Control)
            each = u' ';
    const auto changesDirection = [](QChar each) {
        return (each >= QChar(0x202a) && each <= QChar(0x202e))
            || (each >= QChar(0x2066) && each <= QChar(0x2069));
    };
    return text.removeIf(changesDirection).simplified();
}

} // namespace nubble
