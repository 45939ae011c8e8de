#pragma once

#include <QStringView>
#include <QVarLengthArray>

#include <vector>

#include "Thread/Block.h"
#include "Thread/MarkdownLine.h"

namespace nubble {

// Cuts a growing Markdown text into blocks, looking at each complete line once: the cost follows what has
// been added. Lists and quotes are flat, every item a block that knows its depth and its number. More lenient
// than the standard where replies are commonly careless about indentation. Pure.
class BlockSplitter {
public:
    static constexpr qsizetype mostColumns = 32; // wider tables are code
    static constexpr int deepest = 32;           // lists and quotes

    // `text` is the text of the last call and perhaps more. Returns the first block that may have changed.
    qsizetype read(QStringView text);
    [[nodiscard]] const std::vector<Block> &blocks() const { return m_blocks; }

private:
    enum class Open { None, Paragraph, Fence, Indented, Table };
    struct ListLevel {
        int column = 0; // of its mark
        MarkdownLine::ListMark mark;
    };
    using Lists = QVarLengthArray<ListLevel, 8>;
    struct State {
        Open open = Open::None;
        MarkdownLine::Fence fence;
        int quotes = 0;
        Lists lists;
        Lists outside;                              // the quote
        Block::Marker marker = Block::Marker::None; // waits for the item's first block
        int lines = 0;                              // of the open block
        int rows = 0;                               // that a part of the open table may have
        qsizetype lastLine = 0;                     // of the open paragraph: where it starts
    };
    struct Line {
        qsizetype start = 0;
        qsizetype end = 0;
        qsizetype at = 0; // how far it is read
        int column = 0;   // there
    };

    [[nodiscard]] QStringView rest(const Line &line) const
    {
        return m_text.sliced(line.at, line.end - line.at);
    }
    void readLine(Line line, bool isWhole);
    void resumeLine(const Line &line);
    [[nodiscard]] bool readFenced(Line line);
    int skipQuotes(Line &line, int most) const;
    void enterQuotes(int quotes, const Line &line);
    void readContent(Line line);
    [[nodiscard]] bool readOpen(const Line &line);
    [[nodiscard]] bool readBlockStart(const Line &line);
    [[nodiscard]] bool startsBlock(const Line &line) const;
    [[nodiscard]] bool readItem(const Line &line);
    void beginItem(const MarkdownLine::ListMark &mark, const Line &line);
    void beginFence(const MarkdownLine::Fence &fence, const Line &line);
    void beginHeading(int level, Line line);
    [[nodiscard]] bool beginTable(const Line &line);
    void readText(const Line &line);
    void leaveLists(int column);
    void skipIndent(Line &line, int until = 1 << 20) const;
    Block &begin(Block::Kind kind, qsizetype start, qsizetype end);
    void extend(const Line &line, qsizetype longest, int mostLines);
    void close();

    QStringView m_text; // during read()
    std::vector<Block> m_blocks;
    State m_state;
    // As it was behind the last complete line, for what comes after may turn out otherwise.
    qsizetype m_position = 0;
    bool m_lineStarts = true;
    State m_settled;
    std::vector<Block>::size_type m_settledBlocks = 0;
    Block m_settledLast;
};

} // namespace nubble
