#pragma once

#include <QSize>

#include <memory>
#include <unordered_map>
#include <vector>

#include "Thread/BlockDocument.h"
#include "Thread/HeightIndex.h"
#include "Thread/RowBox.h"

namespace nubble {

class ThreadRows;

// Which rows are seen and where. Only rows that are seen have a document; the heights of others are guessed
// until they come into sight. The truth is the row at the upper edge and how much of it is hidden: what is
// corrected above never moves what is seen. While it follows, the truth is the end. Main thread only.
class ThreadLayout {
public:
    struct Row {
        std::unique_ptr<BlockDocument> document;
        RowBox box;
        QList<TextRange> matches;
        QList<QRectF> lit; // where they stand, in the document
        quint64 used = 0;
    };
    struct Shown {
        int row = 0;
        int y = 0; // in the view
    };

    explicit ThreadLayout(const ThreadRows &rows) : m_rows(rows) { }

    void resize(QSize size);                         // of the view
    void setLive(bool isLive) { m_isLive = isLive; } // only what is live follows its end
    void setMatcher(const TextMatcher &matcher);     // what is lit
    [[nodiscard]] const TextMatcher &matcher() const { return m_matcher; }
    void setFooterHeight(int height) { m_footer = height; }
    void rowsChanged(int first); // that one and all behind it
    void forget();               // all documents
    // Finds out what is seen. To be called behind any of the changes above and below.
    void arrange();

    void scrollBy(int pixels);
    void scrollTo(int value); // of the scroll bar
    void scrollToStart();
    void scrollTo(int row, int inRow, int y); // so that this of the row stands there; exact
    void scrollToEnd() { m_follows = true; }
    void reveal(int row, const QRect &rect); // of the row
    [[nodiscard]] bool follows() const { return m_follows; }

    [[nodiscard]] int count() const { return m_heights.count(); }
    [[nodiscard]] QSize size() const { return m_size; }
    [[nodiscard]] const std::vector<Shown> &shown() const { return m_shown; }
    [[nodiscard]] const Row &row(int index); // lays it out if need be
    [[nodiscard]] int yOf(int row) const;    // in the view; exact for what is seen
    [[nodiscard]] int rowAt(int y) const;    // the nearest one; -1 without any
    [[nodiscard]] int end() const { return yOf(m_heights.count()); }
    [[nodiscard]] int value() const; // of the scroll bar
    [[nodiscard]] int maximum() const;
    [[nodiscard]] std::size_t documentCount() const { return m_live.size(); }

private:
    void estimateRest();
    void place(int index, Row &row);
    void light(Row &row) const;
    [[nodiscard]] int measure(int row);
    [[nodiscard]] int below() const; // how much is below the last row
    void arrangeFromEnd();
    void evict();

    const ThreadRows &m_rows;
    QSize m_size;
    int m_footer = 0;
    HeightIndex m_heights;
    std::unordered_map<int, Row> m_live;
    std::vector<Shown> m_shown;
    int m_top = 0;
    int m_hidden = 0; // pixels of the row at the upper edge
    bool m_follows = true;
    bool m_isLive = true;
    TextMatcher m_matcher;
    quint64 m_clock = 0;
};

} // namespace nubble
