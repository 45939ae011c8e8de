#include "Thread/MarkdownLine.h"

#include <QList>

#include <algorithm>

namespace nubble::MarkdownLine {

namespace {

qsizetype run(QStringView text, QChar character)
{
    return std::find_if(text.begin(), text.end(), [=](QChar each) { return each != character; })
        - text.begin();
}

bool isSpace(QChar character)
{
    return character == u' ' || character == u'\t';
}

bool endsWord(QStringView rest, qsizetype at)
{
    return at == rest.size() || isSpace(rest.at(at));
}

std::optional<ListMark> numberMark(QStringView rest)
{
    constexpr qsizetype mostDigits = 9;
    qsizetype digits = 0;
    int number = 0;
    while (digits < rest.size() && digits < mostDigits && rest.at(digits) >= u'0' && rest.at(digits) <= u'9')
        number = number * 10 + rest.at(digits++).digitValue();
    if (digits == 0 || digits == rest.size() || !endsWord(rest, digits + 1))
        return std::nullopt;
    const QChar mark = rest.at(digits);
    if (mark != u'.' && mark != u')')
        return std::nullopt;
    return ListMark{mark, number, digits + 1};
}

bool announcesColumn(QStringView cell)
{
    const bool left = cell.startsWith(u':');
    const bool right = cell.size() > 1 && cell.endsWith(u':');
    const QStringView line = cell.sliced(left ? 1 : 0).chopped(right ? 1 : 0);
    return !line.isEmpty() && run(line, u'-') == line.size();
}

} // namespace

Indent indent(QStringView line, qsizetype from, int column, int until)
{
    qsizetype at = from;
    for (; at < line.size() && column < until && isSpace(line.at(at)); ++at)
        column = line.at(at) == u'\t' ? column / 4 * 4 + 4 : column + 1;
    return {at - from, column};
}

std::optional<Fence> fence(QStringView rest)
{
    if (rest.isEmpty() || (rest.front() != u'`' && rest.front() != u'~'))
        return std::nullopt;
    const Fence fence{rest.front(), run(rest, rest.front())};
    if (fence.length < 3 || (fence.mark == u'`' && rest.sliced(fence.length).contains(u'`')))
        return std::nullopt;
    return fence;
}

bool closes(const Fence &fence, QStringView rest)
{
    const qsizetype length = run(rest, fence.mark);
    return length >= fence.length && rest.sliced(length).trimmed().isEmpty();
}

std::optional<ListMark> listMark(QStringView rest)
{
    if (rest.isEmpty())
        return std::nullopt;
    const QChar first = rest.front();
    if (first != u'-' && first != u'*' && first != u'+')
        return numberMark(rest);
    return endsWord(rest, 1) ? std::optional(ListMark{first, -1, 1}) : std::nullopt;
}

int headingLevel(QStringView rest)
{
    const qsizetype level = run(rest, u'#');
    return level >= 1 && level <= 6 && endsWord(rest, level) ? static_cast<int>(level) : 0;
}

QStringView headingText(QStringView behindMark)
{
    const QStringView trimmed = behindMark.trimmed();
    const auto last = std::find_if(trimmed.rbegin(), trimmed.rend(), [](QChar each) { return each != u'#'; });
    const QStringView text = trimmed.first(trimmed.rend() - last);
    return text.isEmpty() || text.back().isSpace() ? text.trimmed() : trimmed;
}

int underlineLevel(QStringView rest)
{
    const QStringView line = rest.trimmed();
    // Shorter ones would make a heading of every line below which a list begins, for as long as it arrives.
    if (line.size() < 3 || run(line, line.front()) != line.size())
        return 0;
    return line.front() == u'=' ? 1 : line.front() == u'-' ? 2 : 0;
}

bool isRule(QStringView rest)
{
    if (rest.isEmpty() || (rest.front() != u'-' && rest.front() != u'*' && rest.front() != u'_'))
        return false;
    qsizetype marks = 0;
    for (const QChar each : rest) {
        if (each == rest.front())
            ++marks;
        else if (!isSpace(each))
            return false;
    }
    return marks >= 3;
}

bool isDefinition(QStringView rest)
{
    return rest.startsWith(u'[') && rest.contains(u"]:");
}

QList<QStringView> cells(QStringView row)
{
    row = row.trimmed();
    if (row.startsWith(u'|'))
        row = row.sliced(1);
    QList<QStringView> result;
    qsizetype start = 0;
    for (qsizetype at = 0; at < row.size(); ++at) {
        if (row.at(at) == u'\\') {
            ++at;
        } else if (row.at(at) == u'|') {
            result.append(row.sliced(start, at - start).trimmed());
            start = at + 1;
        }
    }
    if (start < row.size())
        result.append(row.sliced(start).trimmed());
    return result;
}

qsizetype announcedColumns(QStringView rest)
{
    constexpr QStringView allowed = u"|-: \t";
    const auto isAllowed = [=](QChar each) { return allowed.contains(each); };
    if (!rest.contains(u'|') || !std::all_of(rest.begin(), rest.end(), isAllowed))
        return 0;
    const QList<QStringView> columns = cells(rest);
    return std::all_of(columns.begin(), columns.end(), announcesColumn) ? columns.size() : 0;
}

} // namespace nubble::MarkdownLine
