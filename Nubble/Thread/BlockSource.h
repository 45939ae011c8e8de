#pragma once

#include <QString>

#include "Thread/Block.h"

// What a block says, without what it stands in: quotation marks and indentation are gone. Pure; `source` is
// the text that the block was cut from. What would cost far more to lay out than it is long, or would take
// the toolkit's documents apart, is gone as well: stacks of accents, control characters of documents.
namespace nubble::BlockSource {

[[nodiscard]] QString plain(QStringView source, const Block &block);
[[nodiscard]] QString code(QStringView source, const Block &block);
// Markdown of one paragraph: no line of it can be taken for the start of anything else.
[[nodiscard]] QString paragraph(QStringView source, const Block &block);
// Markdown of a table with its header.
[[nodiscard]] QString table(QStringView source, const Block &block);
// The rows that decide how wide all parts of a table are, its header included.
[[nodiscard]] QString tableSample(QStringView source, const Block &block);

} // namespace nubble::BlockSource
