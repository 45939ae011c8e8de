#include "Thread/Block.h"

namespace nubble {

namespace {

// Where a piece of a line that is too long ends: behind a space in its second half, else where it must.
qsizetype cutPoint(QStringView longest)
{
    const qsizetype space = longest.lastIndexOf(u' ');
    if (space > longest.size() / 2)
        return space + 1;
    return longest.size() - (longest.back().isHighSurrogate() ? 1 : 0);
}

} // namespace

std::optional<LinePiece> nextPiece(QStringView text)
{
    const QStringView window = text.left(BlockLimits::paragraph + 1);
    const qsizetype newline = window.indexOf(u'\n');
    if (newline >= 0)
        return LinePiece{newline, newline + 1, true};
    if (window.size() <= BlockLimits::paragraph)
        return std::nullopt;
    const qsizetype cut = cutPoint(window.chopped(1));
    return LinePiece{cut, cut, false};
}

std::vector<Block> plainBlocks(QStringView text)
{
    std::vector<Block> blocks{Block{}};
    int lines = 0;
    for (qsizetype at = 0; at < text.size();) {
        const LinePiece piece =
            nextPiece(text.sliced(at)).value_or(LinePiece{text.size() - at, text.size() - at, true});
        const bool isFull =
            at + piece.length - blocks.back().start > BlockLimits::part || lines >= BlockLimits::lines;
        if (isFull) {
            Block next;
            next.start = at;
            next.continues = true;
            blocks.push_back(next);
            lines = 0;
        }
        blocks.back().length = at + piece.length - blocks.back().start;
        lines += piece.endsLine ? 1 : 0;
        at += piece.next;
    }
    return blocks;
}

} // namespace nubble
