#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

#include "Shell/LineBuffer.h"

namespace nubble {

// Makes whole characters, and lines, of the chunks of a recorder's output. Left out are lines of more than
// 64 KB, and those that come before the last 64 KB of a chunk: only a flood has such.
class RecorderOutput {
public:
    // What may be logged of it: all but the beginning of a character whose end has not come, which goes with
    // the next chunk; nothing when it is no UTF-8.
    [[nodiscard]] QByteArray append(const QByteArray &chunk);

    // The next line that is not empty, without the blanks around it; none until its end has come.
    [[nodiscard]] std::optional<QString> takeLine();

private:
    static constexpr qsizetype longestLine = 64 * 1024;

    QByteArray m_begun; // a character
    LineBuffer m_lines{longestLine};
};

} // namespace nubble
