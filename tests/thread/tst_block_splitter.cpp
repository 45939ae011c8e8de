#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <ctime>
#include <numeric>

#include "Thread/BlockSource.h"
#include "Thread/BlockSplitter.h"
#include "Thread/HeightIndex.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

QString mark(const Block &block)
{
    switch (block.marker) {
    case Block::Marker::None:
        return block.depth > 0 ? u"_ "_s : u""_s;
    case Block::Marker::Bullet:
        return u"* "_s;
    case Block::Marker::Number:
        return QString::number(block.number) + u". "_s;
    case Block::Marker::ToDo:
        return u"[ ] "_s;
    case Block::Marker::Done:
        return u"[x] "_s;
    }
    return {};
}

QString content(const QString &text, const Block &block)
{
    switch (block.kind) {
    case Block::Kind::Paragraph:
        return BlockSource::paragraph(text, block);
    case Block::Kind::Heading:
        return u"H%1 "_s.arg(block.level) + BlockSource::paragraph(text, block);
    case Block::Kind::Code:
        return u"code(%1) "_s.arg(text.mid(block.head, block.headLength)) + BlockSource::code(text, block);
    case Block::Kind::Table:
        return u"table "_s + BlockSource::table(text, block);
    case Block::Kind::Rule:
        return u"----"_s;
    }
    return {};
}

// A block a line: quotes, depth of lists, mark, kind, text with its line breaks as \n.
QStringList drawn(const QString &text, const BlockSplitter &splitter)
{
    QStringList lines;
    for (const Block &block : splitter.blocks()) {
        const QString line = QString(block.quotes, u'>') + QString(std::max(0, block.depth - 1), u'-')
            + mark(block) + (block.continues ? u"… "_s : u""_s) + content(text, block);
        lines.append(QString(line).replace(u'\n', u"\\n"_s));
    }
    return lines;
}

QStringList drawn(const QString &text)
{
    BlockSplitter splitter;
    splitter.read(text);
    return drawn(text, splitter);
}

const std::initializer_list<std::pair<QString, QStringList>> structures{
    {u"a\nb\n\n\nc"_s, {u"a\\nb"_s, u"c"_s}},
    {u"# One #\ntext\n###### Six\n####### seven"_s,
     {u"H1 One"_s, u"text"_s, u"H6 Six"_s, u"####### seven"_s}},
    {u"Title\n=====\nOther\n-----\na\n--"_s, {u"H1 Title"_s, u"H2 Other"_s, u"a\\n\\--"_s}},
    {u"a\n***\nb\n\n- - -\n"_s, {u"a"_s, u"----"_s, u"b"_s, u"----"_s}},
    // Numbers are true, and only a first one interrupts.
    {u"3. x\n4. y\n\n   more\n\n1. z"_s, {u"3. x"_s, u"4. y"_s, u"_ more"_s, u"5. z"_s}},
    {u"1. a\n1. b\n7. c\n- d"_s, {u"1. a"_s, u"2. b"_s, u"7. c"_s, u"* d"_s}},
    {u"1. a\n\ntext\n2. b\n\n2. c"_s, {u"1. a"_s, u"text\\n2\\. b"_s, u"2. c"_s}},
    {u"So:\n- a\n  and on\nlazily\n- b"_s, {u"So:"_s, u"* a\\nand on\\nlazily"_s, u"* b"_s}},
    // Nested, also where the indentation is careless.
    {u"- a\n  - b\n    - c\n- d\n * e"_s, {u"* a"_s, u"-* b"_s, u"--* c"_s, u"* d"_s, u"* e"_s}},
    {u"1. a\n  - b\n      c\n\n  text"_s, {u"1. a"_s, u"-* b\\nc"_s, u"_ text"_s}},
    {u"- [x] a\n- [ ] b\n- [y] c\n-\n- - d"_s, {u"[x] a"_s, u"[ ] b"_s, u"* [y] c"_s, u"* "_s, u"-* d"_s}},
    {u"1234567890. a\n\n123456789. b"_s, {u"1234567890. a"_s, u"123456789. b"_s}},
    {u"a\n-\n+\nb"_s, {u"a\\n\\-\\n\\+\\nb"_s}},
    {u"-not\n1.not\n+ yes"_s, {u"-not\\n1.not"_s, u"* yes"_s}},
    // Code keeps what is its own, and loses what is its surroundings'.
    {u"a\n```c++ x\n  b\n\n# c\n```\nd"_s, {u"a"_s, u"code(c++ x)   b\\n\\n# c"_s, u"d"_s}},
    {u"2. a\n   ~~~\n   b\n     c\n d\n   ~~~\n3. e"_s, {u"2. a"_s, u"_ code() b\\n  c\\nd"_s, u"3. e"_s}},
    {u"````\n```\na\n````\n```open\nb"_s, {u"code() ```\\na"_s, u"code(open) b"_s}},
    {u"~~~\na\n    ~~~\n   ~~~\nb"_s, {u"code() a\\n    ~~~"_s, u"b"_s}},
    {u"    a\n\n      b\nc\n    d"_s, {u"code() a\\n\\n  b"_s, u"c\\nd"_s}},
    {u"\ta\n- ```\n  b"_s, {u"code() a"_s, u"* code() b"_s}},
    {u"`` ` ``"_s, {u"`` ` ``"_s}},
    // Quotes
    {u"> a\nb\n> - c\n>> d\n\ne"_s, {u">a\\nb"_s, u">* c"_s, u">>d"_s, u"e"_s}},
    {u"> ```\n> a\n> > b\nc"_s, {u">code() a\\n> b"_s, u"c"_s}},
    {u"1. a\n   > b\n\n2. c"_s, {u"1. a"_s, u">_ b"_s, u"2. c"_s}},
    // Tables, with what the importer needs made good
    {u"a | b\n-|:-:\n1 | 2\n\nc"_s, {u"table a | b\\n|---|:---:|\\n1 | 2"_s, u"c"_s}},
    {u"So:\n| a |\n|---|\n| 1 |\ntext"_s, {u"So:"_s, u"table | a |\\n|---|\\n| 1 |"_s, u"text"_s}},
    {u"a | b\n--|--|--\n"_s, {u"a | b\\n\\--|--|--"_s}},
    {u"> | a | b |\n> |---|---|\n> | 1 | 2 |"_s, {u">table | a | b |\\n|---|---|\\n| 1 | 2 |"_s}},
    // What a paragraph must not become again
    {u"[a]: http://b\r\nc"_s, {u"\\[a]: http://b\\nc"_s}},
};

QString randomText(QRandomGenerator &random)
{
    static const QStringList pieces{u"- "_s,        u"1. "_s,
                                    u"10) "_s,      u"> "_s,
                                    u"```\n"_s,     u"~~~"_s,
                                    u"\n"_s,        u"\n\n"_s,
                                    u"  "_s,        u"    "_s,
                                    u"\t"_s,        u"# "_s,
                                    u"---"_s,       u"==="_s,
                                    u"| a "_s,      u"|"_s,
                                    u"\n|-|-|\n"_s, u"*b*"_s,
                                    u"`c`"_s,       u"\r\n"_s,
                                    u"[x] "_s,      u"word "_s,
                                    u"😀"_s,         u"[a](b)"_s,
                                    u"\\"_s,        u"long"_s.repeated(700)};
    QString text;
    for (int i = random.bounded(40); i >= 0; --i)
        text += pieces.at(random.bounded(pieces.size()));
    return text;
}

} // namespace

class TestBlockSplitter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cutsIntoBlocks()
    {
        for (const auto &[text, blocks] : structures)
            QCOMPARE(drawn(text), blocks);
    }

    void isTheSameInPiecesAsInOneAndSaysFromWhereItChanged()
    {
        QRandomGenerator random(11);
        QStringList texts;
        for (const auto &[text, blocks] : structures)
            texts.append(text);
        for (int i = 0; i < 400; ++i)
            texts.append(randomText(random));
        for (const QString &text : texts) {
            const int longest = text.size() < 100 ? 1 : 1 + random.bounded(600);
            BlockSplitter splitter;
            QStringList before;
            for (qsizetype at = 0; at < text.size();) {
                at = std::min<qsizetype>(text.size(), at + 1 + random.bounded(longest));
                const QString part = text.first(at);
                const qsizetype same = splitter.read(part);
                const QStringList now = drawn(part, splitter);
                QCOMPARE(now, drawn(part));
                QVERIFY(same <= before.size());
                QCOMPARE(now.first(same), before.first(same));
                before = now;
            }
        }
    }

    void boundsEveryBlock()
    {
        // `joined` is what the parts together must be, if that is easily said.
        const auto check = [](const QString &text, const QString &joined = {}) {
            BlockSplitter splitter;
            splitter.read(text);
            QString together;
            for (const Block &block : splitter.blocks()) {
                QVERIFY(block.length <= 4096 + 2048 && block.headLength <= 4096);
                QVERIFY(block.depth <= 2 * BlockSplitter::deepest);
                const bool isTable = block.kind == Block::Kind::Table;
                const QStringView source = QStringView(text).sliced(block.start, block.length);
                QVERIFY(source.count(u'\n') < (isTable ? 40 : 2048));
                QVERIFY(source.isEmpty() || !source.front().isLowSurrogate());
                together += QString(source.toString()).remove(u'\n');
            }
            if (!joined.isNull())
                QVERIFY(together.trimmed() == joined.trimmed());
            std::vector<Block> plain = plainBlocks(text);
            QVERIFY(std::all_of(
                plain.begin(), plain.end(), [](const Block &each) { return each.length <= 4096; }));
            QCOMPARE(plain.back().end(), text.endsWith(u'\n') ? text.size() - 1 : text.size());
        };
        const QString words = u"words without an end, "_s.repeated(2000);
        const QString letters = u"x😀"_s.repeated(20'000);
        QString code;
        for (int i = 0; i < 3000; ++i)
            code += u"line %1\n"_s.arg(i);
        check(words, words);
        check(letters, letters);
        check(u"```\n"_s + code, code.chopped(1).remove(u'\n'));
        check(u"```\n"_s + letters, letters);
        check(u"```\n"_s + u"\n"_s.repeated(10'000), u""_s);
        check(u"- "_s + words, words);
        check(u"# "_s + words);
        check(u"|a|b|\n|-|-|\n"_s + u"|c|d|\n"_s.repeated(5000));
        check(u"a|"_s + words + u"\n-|-\n1|2"_s);
        check(u"|"_s.repeated(400) + u"\n"_s + u"|-"_s.repeated(399) + u"|\n|1|\n"_s);
        check(u">"_s.repeated(100'000));
        check(u"+ "_s.repeated(20'000));
        check(u" "_s.repeated(100'000));
    }

    void looksAtEachLineOnce()
    {
        // Were all of it looked at again each time, this would take minutes.
        QString text;
        BlockSplitter splitter;
        const std::clock_t start = std::clock();
        for (int i = 0; i < 100'000; ++i) {
            text += u"- word\n"_s;
            splitter.read(text);
        }
        QCOMPARE(splitter.blocks().size(), 100'000U);
        QVERIFY((std::clock() - start) / CLOCKS_PER_SEC < 5);
    }

    void takesOutWhatDocumentsCannotBear()
    {
        const QString text =
            u"a"_s + QString(500, QChar(0x301)) + u"b\u2029c\uFDD0d\uFFFC"_s + QChar(u'\0') + u"e\r"_s;
        Block block;
        block.length = text.size();
        const QString expected = u"a"_s + QString(8, QChar(0x301)) + u"b�c�d��e"_s;
        QCOMPARE(BlockSource::plain(text, block), expected);
        QCOMPARE(BlockSource::paragraph(text, block), expected);
        QCOMPARE(BlockSource::code(text, block), expected);
    }

    void indexesHeights()
    {
        QRandomGenerator random(5);
        HeightIndex index;
        QList<int> heights;
        QCOMPARE(index.at(10), -1);
        for (int i = 0; i < 2000; ++i) {
            const int height = random.bounded(50);
            if (random.bounded(3) > 0 || heights.isEmpty()) {
                index.append(height);
                heights.append(height);
            } else if (random.bounded(10) > 0) {
                const int which = random.bounded(static_cast<int>(heights.size()));
                index.set(which, height);
                heights[which] = height;
            } else {
                heights.resize(random.bounded(static_cast<int>(heights.size()) + 1));
                index.truncate(static_cast<int>(heights.size()));
            }
            const int which = random.bounded(static_cast<int>(heights.size()) + 1);
            const int start = std::accumulate(heights.begin(), heights.begin() + which, 0);
            QCOMPARE(index.start(which), start);
            if (which < heights.size() && heights.at(which) > 0)
                QCOMPARE(index.at(start + heights.at(which) - 1), which);
        }
    }
};

QTEST_GUILESS_MAIN(TestBlockSplitter)
#include "tst_block_splitter.moc"
