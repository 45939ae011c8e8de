#include <algorithm>

#include "Thread/BlockSource.h"
#include "Thread/BlockSplitter.h"

using namespace nubble;

namespace {

void requireBounds(QStringView text, const Block &block)
{
    constexpr qsizetype longest = BlockLimits::part + BlockLimits::paragraph;
    if (block.start < 0 || block.length < 0 || block.end() > text.size() || block.length > longest)
        qFatal("a block out of its bounds");
    if (block.head < 0 || block.headLength < 0 || block.head + block.headLength > text.size()
        || block.headLength > 2 * longest)
        qFatal("a head out of its bounds");
    if (block.depth > 2 * BlockSplitter::deepest)
        qFatal("a list that is too deep");
    (void)BlockSource::plain(text, block);
    (void)BlockSource::code(text, block);
    (void)BlockSource::paragraph(text, block);
    if (block.kind == Block::Kind::Table) {
        (void)BlockSource::table(text, block);
        (void)BlockSource::tableSample(text, block);
    }
}

} // namespace

// Whatever a reply holds, it is cut into bounded blocks, which are the same wherever it has been interrupted.
// The first byte tells where. "@@" stands for what is longer than a line that is looked at whole.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    QString text =
        QString::fromUtf8(reinterpret_cast<const char *>(data) + 1, static_cast<qsizetype>(size) - 1);
    text.replace(QStringLiteral("@@"), QStringLiteral("words ").repeated(400));
    text.truncate(100'000);
    BlockSplitter whole;
    whole.read(text);
    BlockSplitter pieces;
    pieces.read(QStringView(text).first(text.size() * data[0] / 255));
    const std::vector<Block> before = pieces.blocks();
    const qsizetype same = pieces.read(text);
    if (pieces.blocks() != whole.blocks())
        qFatal("other blocks in two pieces");
    if (same > std::ssize(before)
        || !std::equal(before.begin(), before.begin() + same, whole.blocks().begin()))
        qFatal("a change that was not told of");
    for (const Block &block : whole.blocks())
        requireBounds(text, block);
    return 0;
}
