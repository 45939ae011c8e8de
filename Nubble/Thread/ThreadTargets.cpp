#include "Thread/ThreadTargets.h"

#include <algorithm>

#include "Thread/ThreadLayout.h"
#include "Thread/ThreadRows.h"

namespace nubble::ThreadTargets {

namespace {

using Kind = ThreadTarget::Kind;

// Cheap: most rows need not be laid out to know that nothing leads anywhere.
bool mayHaveLinks(const ThreadRows &rows, int row)
{
    const Block &block = rows.block(row);
    if (!rows.messageAt(row).isReply() || block.kind == Block::Kind::Code)
        return false;
    const QStringView text = QStringView(rows.messageAt(row).content.text).sliced(block.start, block.length);
    return text.contains(u"://") || text.contains(u"mailto:") || text.contains(u'@')
        || text.contains(u"www.");
}

} // namespace

QList<ThreadTarget> ofRow(const ThreadRows &rows, ThreadLayout &layout, int row)
{
    QList<ThreadTarget> targets;
    if (!rows.messageAt(row).isReply())
        return targets;
    if (rows.block(row).kind == Block::Kind::Code && !rows.block(row).continues)
        targets.append({Kind::CopyCode, row});
    if (mayHaveLinks(rows, row))
        for (int link = 0; link < layout.row(row).document->links().size(); ++link)
            targets.append({Kind::Link, row, link});
    if (rows.isLast(row) && rows.messageAt(row).isFinished)
        targets.append({Kind::CopyReply, row});
    return targets;
}

std::optional<ThreadTarget> at(const ThreadRows &rows, ThreadLayout &layout, const QPoint &point)
{
    const int row = layout.rowAt(point.y());
    if (row < 0)
        return std::nullopt;
    const QPoint inRow = point - QPoint(0, layout.yOf(row));
    for (const ThreadTarget &target : ofRow(rows, layout, row)) {
        const QList<QRect> all = rects(layout, target);
        if (std::any_of(all.begin(), all.end(), [&](const QRect &each) { return each.contains(inRow); }))
            return target;
    }
    return std::nullopt;
}

std::optional<ThreadTarget> from(const ThreadRows &rows, ThreadLayout &layout, int row, int step)
{
    int left = 64; // rows that are laid out in vain
    for (; row >= 0 && row < rows.count() && left > 0; row += step) {
        if (const QList<ThreadTarget> targets = ofRow(rows, layout, row); !targets.isEmpty())
            return step > 0 ? targets.first() : targets.last();
        left -= mayHaveLinks(rows, row) ? 1 : 0;
    }
    return std::nullopt;
}

std::optional<ThreadTarget> next(
    const ThreadRows &rows, ThreadLayout &layout, const ThreadTarget &target, int step)
{
    const QList<ThreadTarget> targets = ofRow(rows, layout, target.row);
    const qsizetype index = targets.indexOf(target);
    if (index >= 0 && index + step >= 0 && index + step < targets.size())
        return targets.at(index + step);
    return from(rows, layout, target.row + step, step);
}

QList<QRect> rects(ThreadLayout &layout, const ThreadTarget &target)
{
    const ThreadLayout::Row &row = layout.row(target.row);
    if (target.kind != Kind::Link)
        return {target.kind == Kind::CopyCode ? row.box.copyCode : row.box.copyReply};
    if (target.link >= row.document->links().size())
        return {};
    QList<QRect> result;
    for (const QRectF &each : row.document->rects(row.document->links().at(target.link)))
        result.append(each.toAlignedRect().translated(row.box.text));
    return result;
}

QUrl url(ThreadLayout &layout, const ThreadTarget &target)
{
    const auto &links = layout.row(target.row).document->links();
    return target.kind == Kind::Link && target.link < links.size() ? links.at(target.link).url : QUrl();
}

} // namespace nubble::ThreadTargets
