#pragma once

#include <vector>

#include "Thread/BlockSplitter.h"
#include "Thread/ThreadMessage.h"

namespace nubble {

// The messages of a conversation and the blocks they are made of, numbered through: a row is a block. Text
// that arrives is only stored; `update()` cuts it. Rows change at the end alone. A value, for any thread.
class ThreadRows {
public:
    struct Message {
        ThreadMessage content;
        int firstRow = 0;
        int endRow = 0;
        bool isFinished = false;

        [[nodiscard]] bool isReply() const { return content.kind == ThreadMessage::Kind::Reply; }
    };

    // A whole conversation, all of it finished.
    [[nodiscard]] static ThreadRows of(const QList<ThreadMessage> &messages);

    [[nodiscard]] int count() const { return static_cast<int>(m_blocks.size()); }
    [[nodiscard]] int messageCount() const { return static_cast<int>(m_messages.size()); }
    [[nodiscard]] const Message &message(int index) const
    {
        return m_messages.at(static_cast<std::size_t>(index));
    }
    [[nodiscard]] int messageOf(int row) const;
    [[nodiscard]] const Message &messageAt(int row) const { return message(messageOf(row)); }
    [[nodiscard]] const Block &block(int row) const { return m_blocks.at(static_cast<std::size_t>(row)); }
    [[nodiscard]] bool isFirst(int row) const { return messageAt(row).firstRow == row; }
    [[nodiscard]] bool isLast(int row) const { return messageAt(row).endRow == row + 1; }
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
    void add(const ThreadMessage &message);
    void cutLast(QStringView text);
    [[nodiscard]] qsizetype readable(const Message &message) const;

    std::vector<Message> m_messages;
    std::vector<Block> m_blocks;
    BlockSplitter m_splitter; // of the last message, if it is a reply; others do not grow
    qsizetype m_read = 0;     // how much of its text is cut
    int m_changed = 0;        // the first row touched since the last update
    qsizetype m_seen = 0;     // of the last message's text at the last update
};

} // namespace nubble
