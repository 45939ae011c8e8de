#include "Thread/TextMatcher.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nubble {

namespace {

constexpr std::size_t longestWord = 128; // characters that are compared
constexpr std::size_t mostWords = 256;

struct Character {
    char32_t code = 0;
    qsizetype next = 0; // where the next one begins
};

Character characterAt(QStringView text, qsizetype at)
{
    const QChar first = text.at(at);
    if (first.isHighSurrogate() && at + 1 < text.size() && text.at(at + 1).isLowSurrogate())
        return {QChar::surrogateToUcs4(first, text.at(at + 1)), at + 2};
    return {first.unicode(), at + 1};
}

bool isAccent(char32_t code)
{
    return code >= 0x300 && code <= 0x36F;
}

bool isMark(char32_t code)
{
    return code >= 0x300 && QChar::isMark(code);
}

bool isHan(char32_t code)
{
    return code >= 0x3400 && code <= 0x9FFF;
}

// A letter of a script that has no spaces between words.
bool isUnspaced(char32_t code)
{
    if (code < 0xE00)
        return false;
    constexpr std::array<std::pair<char32_t, char32_t>, 8> scripts{
        {{0xE00, 0xEFF},   // Thai, Lao
         {0x1000, 0x109F}, // Burmese
         {0x1780, 0x17FF}, // Khmer
         {0x3040, 0x30FF}, // kana
         {0x31F0, 0x31FF},
         {0xF900, 0xFAFF},
         {0xFF66, 0xFF9F},
         {0x20000, 0x3FFFF}}};
    return isHan(code) || std::any_of(scripts.begin(), scripts.end(), [code](const auto &script) {
               return code >= script.first && code <= script.second;
           });
}

// A character as it is compared: decomposed, without accents and case. Marks that are letters' own stay.
class Folded {
public:
    explicit Folded(char32_t code)
    {
        if ((code >= U'!' && code < 0x7F) || isHan(code)) // most of them
            m_codes[m_count++] = code >= U'A' && code <= U'Z' ? code + 32 : code;
        else
            add(code, 0);
    }
    [[nodiscard]] const char32_t *begin() const { return m_codes.data(); }
    [[nodiscard]] const char32_t *end() const { return m_codes.data() + m_count; }

private:
    void add(char32_t code, int depth)
    {
        const QString parts = depth < 4 ? canonical(code) : QString();
        for (qsizetype at = 0; at < parts.size();) {
            const Character part = characterAt(parts, at);
            add(part.code, depth + 1);
            at = part.next;
        }
        if (parts.isEmpty() && !isAccent(code) && m_count < m_codes.size())
            m_codes[m_count++] = QChar::isSpace(code) ? U' ' : QChar::toCaseFolded(code);
    }
    static QString canonical(char32_t code)
    {
        const bool isSplit = code >= 0xC0 && QChar::decompositionTag(code) == QChar::Canonical;
        return isSplit ? QChar::decomposition(code) : QString();
    }

    std::array<char32_t, 8> m_codes{};
    std::size_t m_count = 0;
};

// What is asked of every character of a text.
struct Trait {
    bool isMark = false;
    bool isLetter = false; // or a digit, of a script with spaces
    bool isUnspaced = false;
    quint8 start = 0; // the bit of what it begins with when folded

    explicit Trait(char32_t code = 0)
        : isMark(!isHan(code) && nubble::isMark(code)), isUnspaced(nubble::isUnspaced(code))
    {
        if (isMark)
            return;
        isLetter = !isUnspaced && QChar::isLetterOrNumber(code);
        start = *Folded(code).begin() % 64;
    }
};

// Of most scripts from a table, for the character database takes its time.
Trait traitOf(char32_t code)
{
    static const auto table = [] {
        std::array<Trait, 0x800> all;
        for (char32_t each = 0; each < all.size(); ++each)
            all.at(each) = Trait(each);
        return all;
    }();
    return code < table.size() ? table[code] : Trait(code);
}

std::u32string folded(const QString &word)
{
    const QString text = word.simplified();
    std::u32string result;
    for (qsizetype at = 0; at < text.size() && result.size() < longestWord;) {
        const Character character = characterAt(text, at);
        for (const char32_t code : Folded(character.code))
            result += code;
        at = character.next;
    }
    return result;
}

qsizetype skipSpace(QStringView text, qsizetype at)
{
    while (at < text.size() && text.at(at).isSpace())
        ++at;
    return at;
}

qsizetype skipMarks(QStringView text, qsizetype at)
{
    while (at < text.size() && isMark(text.at(at).unicode()))
        ++at;
    return at;
}

// Whether what stands at `at` goes on with a word that stands before.
bool isWithinWord(QStringView text, qsizetype at)
{
    while (at > 0 && isMark(text.at(at - 1).unicode()))
        --at;
    if (at == 0)
        return false;
    const qsizetype before = at > 1 && text.at(at - 1).isLowSurrogate() ? at - 2 : at - 1;
    return traitOf(characterAt(text, before).code).isLetter;
}

} // namespace

TextMatcher::TextMatcher(const QStringList &words)
{
    for (const QString &word : words)
        if (std::u32string each = folded(word); !each.empty() && m_words.size() < mostWords)
            m_words.push_back(std::move(each));
    sort();
}

TextMatcher TextMatcher::loose() const
{
    TextMatcher result;
    for (const std::u32string &phrase : m_words) {
        std::u32string longest;
        for (std::size_t from = 0; from <= phrase.size();) {
            const std::size_t to = std::min(phrase.find(U' ', from), phrase.size());
            if (to - from > longest.size())
                longest = phrase.substr(from, to - from);
            from = to + 1;
        }
        result.m_words.push_back(longest);
    }
    result.sort();
    return result;
}

void TextMatcher::sort()
{
    std::sort(m_words.begin(), m_words.end());
    m_words.erase(std::unique(m_words.begin(), m_words.end()), m_words.end());
    m_starts = 0;
    for (const std::u32string &word : m_words)
        m_starts |= quint64(1) << (word.front() % 64);
}

QList<TextRange> TextMatcher::in(QStringView text) const
{
    QList<TextRange> ranges;
    for (auto range = next(text, 0); range; range = next(text, range->to))
        ranges.append(*range);
    return ranges;
}

std::optional<TextRange> TextMatcher::next(QStringView text, qsizetype from) const
{
    if (isEmpty())
        return std::nullopt;
    bool isWithin = isWithinWord(text, from);
    for (qsizetype at = from; at < text.size();) {
        const auto [code, behind] = characterAt(text, at);
        const Trait trait = traitOf(code);
        const bool mayBe =
            !trait.isMark && (!isWithin || trait.isUnspaced) && (m_starts >> trait.start & 1) != 0;
        if (const qsizetype end = mayBe ? endOfMatch(text, at) : -1; end >= 0)
            return TextRange{static_cast<int>(at), static_cast<int>(end)};
        if (!trait.isMark)
            isWithin = trait.isLetter;
        at = behind;
    }
    return std::nullopt;
}

// The words that begin as the text does are next to one another; with each character they become fewer.
qsizetype TextMatcher::endOfMatch(QStringView text, qsizetype start) const
{
    auto first = m_words.begin();
    auto last = m_words.end();
    std::size_t length = 0;
    const auto narrow = [&](char32_t code) {
        const auto isBelow = [&](const std::u32string &word, char32_t value) {
            return word.size() <= length || word[length] < value;
        };
        first = std::lower_bound(first, last, code, isBelow);
        last = std::lower_bound(first, last, code + 1, isBelow);
        ++length;
        return first != last;
    };
    qsizetype longest = -1;
    for (qsizetype at = start; at < text.size();) {
        const Character character = characterAt(text, at);
        const Folded folded(character.code);
        for (const char32_t code : folded)
            if (!narrow(code))
                return longest;
        const bool isSpace = folded.begin() != folded.end() && *folded.begin() == U' ';
        at = isSpace ? skipSpace(text, character.next) : character.next;
        if (first->size() == length)
            longest = skipMarks(text, at);
    }
    return longest;
}

} // namespace nubble
