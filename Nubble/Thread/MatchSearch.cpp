#include "Thread/MatchSearch.h"

#include "Thread/ThreadLayout.h"
#include "Thread/ThreadRows.h"

namespace nubble {

namespace {

QStringView sourceOf(const ThreadRows::Message &message, const Block &block)
{
    const bool hasHead = block.kind == Block::Kind::Table && !block.continues;
    const qsizetype start = hasHead ? block.head : block.start;
    return QStringView(message.content.text).sliced(start, block.end() - start);
}

std::optional<ThreadPosition> firstWhere(
    const ThreadRows &rows, ThreadLayout &layout, const ThreadRows::Message &message,
    const TextMatcher &promising)
{
    qsizetype left = BlockLimits::part; // characters that are laid out in vain
    for (int row = message.firstRow; row < message.endRow && left > 0; ++row) {
        const QStringView source = sourceOf(message, rows.block(row));
        if (!promising.occursIn(source))
            continue;
        if (const QList<TextRange> &matches = layout.row(row).matches; !matches.isEmpty())
            return ThreadPosition{row, matches.first().from};
        left -= source.size();
    }
    return std::nullopt;
}

} // namespace

std::optional<ThreadPosition> firstMatch(const ThreadRows &rows, ThreadLayout &layout, int message)
{
    const TextMatcher &matcher = layout.matcher();
    if (matcher.isEmpty())
        return std::nullopt;
    if (const auto found = firstWhere(rows, layout, rows.message(message), matcher))
        return found;
    const TextMatcher loose = matcher.loose();
    return loose == matcher ? std::nullopt : firstWhere(rows, layout, rows.message(message), loose);
}

} // namespace nubble
