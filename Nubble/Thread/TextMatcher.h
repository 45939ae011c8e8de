#pragma once

#include <QList>
#include <QStringList>
#include <QStringView>

#include <optional>
#include <string>
#include <vector>

namespace nubble {

struct TextRange {
    int from = 0;
    int to = 0;

    bool operator==(const TextRange &) const = default;
};

// Finds words and phrases where a word begins, as a search index does: case and accents do not count, nor how
// much space there is within a phrase. Words of scripts that are written without spaces are found anywhere.
// The cost follows the text, hardly how many words there are. Pure, any thread.
class TextMatcher {
public:
    explicit TextMatcher(const QStringList &words = {}); // empty ones count for nothing
    [[nodiscard]] bool isEmpty() const { return m_words.empty(); }
    [[nodiscard]] QList<TextRange> in(QStringView text) const; // in order, none overlap; the longest ones
    [[nodiscard]] bool occursIn(QStringView text) const { return next(text, 0).has_value(); }
    // The longest word of each phrase alone: what marks within the phrase do not hide.
    [[nodiscard]] TextMatcher loose() const;
    bool operator==(const TextMatcher &) const = default;

private:
    void sort();
    [[nodiscard]] std::optional<TextRange> next(QStringView text, qsizetype from) const;
    [[nodiscard]] qsizetype endOfMatch(QStringView text, qsizetype start) const; // -1: there is none

    std::vector<std::u32string> m_words; // folded and sorted
    quint64 m_starts = 0;                // a bit for each 64th of the characters that begin one
};

} // namespace nubble
