#pragma once

#include <QStringView>

#include <optional>
#include <vector>

namespace nubble {

// A piece of a text that is laid out and drawn by itself, so bounded in size. Positions are characters of the
// text; a block whose thing is larger than a block may be is continued by the next one.
struct Block {
    enum class Kind : quint8 { Paragraph, Heading, Code, Table, Rule };
    enum class Marker : quint8 { None, Bullet, Number, ToDo, Done };

    Kind kind = Kind::Paragraph;
    Marker marker = Marker::None;
    bool continues = false; // the same thing as the block before
    int level = 0;          // of a heading
    int number = 0;         // beside the first line of an item
    int depth = 0;          // of the lists around it
    int quotes = 0;         // around it
    int outside = 0;        // how many of the lists stand around the quotes
    int column = 0;         // of code: what stands before it belongs to what is around it
    qsizetype start = 0;    // its lines, without marks of lists and headings, fences and a table's head
    qsizetype length = 0;
    qsizetype head = 0; // the language of a fence; a table's header and the line below
    qsizetype headLength = 0;
    qsizetype sampleEnd = 0; // of a table that continues: where its first part ends, whose columns it has

    [[nodiscard]] qsizetype end() const { return start + length; }
    bool operator==(const Block &) const = default;
};

// How large a block may be: a growing one is laid out anew each frame, so this is what a frame costs.
namespace BlockLimits {

inline constexpr qsizetype paragraph = 2048; // characters, also of a line that is looked at whole
inline constexpr qsizetype part = 4096;      // of code, tables and plain text
inline constexpr int rows = 40;              // of a table's part
inline constexpr int cells = 200;            // of that, where it has many columns
inline constexpr int lines = 128;            // of code and plain text

} // namespace BlockLimits

// A line, or as much of it as is looked at whole.
struct LinePiece {
    qsizetype length = 0;
    qsizetype next = 0; // where the next one begins, from the start of this one
    bool endsLine = true;
};
// The next one, cut at a space where it can be; nothing when its end may not have arrived yet.
[[nodiscard]] std::optional<LinePiece> nextPiece(QStringView text);

// The blocks of plain text: parts that end with a line where they can.
[[nodiscard]] std::vector<Block> plainBlocks(QStringView text);

} // namespace nubble
