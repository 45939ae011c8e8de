#include "Shell/OneLine.h"

#include <algorithm>

namespace nubble {

namespace {

// It turns what stands beside it, and is seen by nobody.
bool isDirectionMark(QChar each)
{
    return each == QChar(0x200e) || each == QChar(0x200f) || each == QChar(0x061c);
}

bool isNothingToSee(QChar each)
{
    return each.isSpace() || isDirectionMark(each);
}

} // namespace

bool isDirectionChange(QChar each)
{
    return (each >= QChar(0x202a) && each <= QChar(0x202e))
        || (each >= QChar(0x2066) && each <= QChar(0x2069));
}

QString withoutControls(QString text)
{
    for (QChar &each : text)
        if (each.category() == QChar::Other_Control || each == QChar::LineSeparator
            || each == QChar::ParagraphSeparator)
            each = u' ';
    return text.removeIf(isDirectionChange);
}

QString oneLine(QString text)
{
    const QString line = withoutControls(std::move(text)).simplified();
    const auto begin = std::find_if_not(line.begin(), line.end(), isNothingToSee);
    const auto end = std::find_if_not(line.rbegin(), std::make_reverse_iterator(begin), isNothingToSee);
    return line.sliced(begin - line.begin(), end.base() - begin);
}

QString shortened(const QString &text, qsizetype most)
{
    if (text.size() <= most)
        return text;
    QString start = text.first(std::max<qsizetype>(most - 1, 0));
    if (!start.isEmpty() && start.back().isHighSurrogate())
        start.chop(1);
    return start + u'…';
}

} // namespace nubble
