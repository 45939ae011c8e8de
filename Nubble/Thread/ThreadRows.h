#pragma once

#include <vector>

#include "Thread/BlockSplitter.h"
#include "Thread/ThreadMessage.h"

namespace nubble {

// The messages of a conversation and the blocks they are made of, numbered through: a row is a block. Text
// that arrives is only stored; `update()` cuts it. Rows change at the end alone.
class ThreadRows {
public:
    struct Message {
        ThreadMessage content;
        BlockSplitter splitter;   // of a reply
        std::vector<Block> plain; // of a question
        qsizetype read = 0;       // how much of the text is cut
        int firstRow = 0;
        bool isFinished = false;

        [[nodiscard]] bool isReply() const { return content.kind == ThreadMessage::Kind::Reply; }
        [[nodiscard]] const std::vector<Block> &blocks() const
        {
            return isReply() ? splitter.blocks() : plain;
        }
        [[nodiscard]] int endRow() const { return firstRow + static_cast<int>(blocks().size()); }
    };

    [[nodiscard]] int count() const { return m_messages.empty() ? 0 : m_messages.back().endRow(); }
    [[nodiscard]] int messageCount() const { return static_cast<int>(m_messages.size()); }
    [[nodiscard]] const Message &message(int index) const
    {
        return m_messages.at(static_cast<std::size_t>(index));
    }
    [[nodiscard]] int messageOf(int row) const;
    [[nodiscard]] const Message &messageAt(int row) const { return message(messageOf(row)); }
    [[nodiscard]] const Block &block(int row) const;
    [[nodiscard]] bool isFirst(int row) const { return messageAt(row).firstRow == row; }
    [[nodiscard]] bool isLast(int row) const { return messageAt(row).endRow() == row + 1; }
    // The rows of the same thing: [first, second).
    [[nodiscard]] std::pair<int, int> parts(int row) const;
    [[nodiscard]] QString codeAt(int row) const; // the whole source between its fences

    void clear();
    void append(const ThreadMessage &message);
    void appendText(QStringView text);
    void setText(const QString &text);
    void finishLast();
    void removeLast();

    // Takes in what has come since the last call. Returns the first row that may have changed.
    int update();
    [[nodiscard]] bool isBehind() const; // something is held back for the next update

private:
    [[nodiscard]] qsizetype readable(const Message &message);

    std::vector<Message> m_messages;
    int m_changed = 0;    // the first row touched since the last update
    qsizetype m_seen = 0; // of the last message's text at the last update
};

} // namespace nubble
