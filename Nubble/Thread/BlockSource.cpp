#include "Thread/BlockSource.h"

#include <QList>

#include <algorithm>

#include "Thread/MarkdownLine.h"

using namespace Qt::StringLiterals;

namespace nubble::BlockSource {

namespace {

bool isMark(QChar character)
{
    return character.unicode() >= 0x300 && character.isMark();
}

// Paragraph ends inside of a line, borders of frames and placeholders of pictures, as documents store them.
bool isDocumentControl(QChar character)
{
    switch (character.unicode()) {
    case 0:
    case QChar::LineSeparator:
    case QChar::ParagraphSeparator:
    case 0xFDD0:
    case 0xFDD1:
    case QChar::ObjectReplacementCharacter:
        return true;
    default:
        return false;
    }
}

QString cleaned(QStringView text)
{
    constexpr int mostMarks = 8;
    QString result;
    result.reserve(text.size());
    int marks = 0;
    for (const QChar each : text) {
        marks = isMark(each) ? marks + 1 : 0;
        if (marks <= mostMarks && each != u'\r')
            result += isDocumentControl(each) ? QChar(QChar::ReplacementCharacter) : each;
    }
    return result;
}

QStringView withoutQuotes(QStringView line, int quotes)
{
    for (; quotes > 0; --quotes) {
        const qsizetype mark = MarkdownLine::indent(line).length;
        if (mark == line.size() || line.at(mark) != u'>')
            break;
        line = line.sliced(mark + 1);
        if (line.startsWith(u' '))
            line = line.sliced(1);
    }
    return line;
}

QStringView withoutIndent(QStringView line, int columns)
{
    return line.sliced(MarkdownLine::indent(line, 0, 0, columns).length);
}

// Calls `add` for each line; the first has been stripped when the block was cut.
template <typename Add> void eachLine(QStringView source, const Block &block, int columns, Add add)
{
    const QList<QStringView> lines = source.sliced(block.start, block.length).split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i)
        add(i == 0 ? lines.at(i) : withoutIndent(withoutQuotes(lines.at(i), block.quotes), columns));
}

constexpr int allColumns = 1 << 20;

QString joined(QStringView source, const Block &block, int columns)
{
    QString result;
    eachLine(source, block, columns, [&](QStringView line) {
        result += line;
        result += u'\n';
    });
    result.chop(1);
    return result;
}

// Where a backslash keeps the line from being anything but text; -1 where it needs none.
qsizetype escapeAt(QStringView line)
{
    if (const auto mark = MarkdownLine::listMark(line))
        return mark->length - 1;
    const bool isOther = line.startsWith(u'>') || MarkdownLine::isRule(line) || MarkdownLine::fence(line)
        || MarkdownLine::headingLevel(line) > 0 || MarkdownLine::isDefinition(line)
        || MarkdownLine::announcedColumns(line) > 0
        || std::all_of(line.begin(), line.end(), [](QChar each) { return each == u'=' || each == u'-'; });
    return isOther && !line.isEmpty() ? 0 : -1;
}

// The line below the header, as the importer understands it: with three dashes at least.
QString announcement(QStringView line)
{
    QString result = u"|"_s;
    for (const QStringView cell : MarkdownLine::cells(line)) {
        result += cell.startsWith(u':') ? u":---"_s : u"---"_s;
        result += cell.size() > 1 && cell.endsWith(u':') ? u":|"_s : u"|"_s;
    }
    return result;
}

QList<QStringView> headLines(QStringView source, const Block &block)
{
    QList<QStringView> lines = source.sliced(block.head, block.headLength).split(u'\n');
    for (QStringView &line : lines)
        line = withoutQuotes(line, block.quotes).trimmed();
    return lines;
}

} // namespace

QString plain(QStringView source, const Block &block)
{
    return cleaned(source.sliced(block.start, block.length));
}

QString code(QStringView source, const Block &block)
{
    return cleaned(joined(source, block, block.column));
}

QString paragraph(QStringView source, const Block &block)
{
    QString result;
    eachLine(source, block, allColumns, [&](QStringView line) {
        const qsizetype escape = escapeAt(line);
        result += line.first(std::max<qsizetype>(escape, 0));
        if (escape >= 0)
            result += u'\\';
        result += line.sliced(std::max<qsizetype>(escape, 0));
        result += u'\n';
    });
    result.chop(1);
    return cleaned(result);
}

QString table(QStringView source, const Block &block)
{
    const QList<QStringView> head = headLines(source, block);
    QString result = head.first() + u'\n' + announcement(head.last());
    if (block.length > 0)
        result += u'\n' + joined(source, block, allColumns);
    return cleaned(result);
}

QString tableSample(QStringView source, const Block &block)
{
    Block first = block;
    const qsizetype newline = source.indexOf(u'\n', block.head + block.headLength);
    first.start = newline < 0 ? source.size() : newline + 1;
    first.length = (block.continues ? block.sampleEnd : block.end()) - first.start;
    if (first.length <= 0)
        return headLines(source, block).first().toString();
    return headLines(source, block).first() + u'\n' + joined(source, first, allColumns);
}

} // namespace nubble::BlockSource
