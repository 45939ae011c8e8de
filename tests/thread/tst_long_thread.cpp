#include <QAbstractButton>
#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTest>

#include <ctime>

#include <malloc.h>

#include "Thread/TextMatcher.h"
#include "Thread/ThreadScene.h"
#include "Thread/ThreadView.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

const QString prose =
    u"Some **words** in a line, `code` and [more](https://example.org/needle).\nAnd on.\n\n"_s;

ThreadMessage question(const QString &text)
{
    return {ThreadMessage::Kind::Question, text, {}, {}};
}

ThreadMessage reply(const QString &text)
{
    return {ThreadMessage::Kind::Reply, text, {}, {}};
}

// 10,000 messages and a megabyte in the midst of them; every fifth has a match.
const QList<ThreadMessage> &longThread()
{
    static const QList<ThreadMessage> all = [] {
        QList<ThreadMessage> messages;
        for (int i = 0; i < 10'000; ++i) {
            const QString text = prose.repeated(1 + i % 7) + (i % 5 == 0 ? u"- a **Needle**\n"_s : u""_s);
            messages.append(i % 2 > 0 ? reply(text) : question(text));
        }
        messages.insert(5000, reply(prose.repeated(10'000) + u"The needle\n\n"_s + prose.repeated(2000)));
        return messages;
    }();
    return all;
}

double milliseconds(std::clock_t since)
{
    return 1000.0 * static_cast<double>(std::clock() - since) / CLOCKS_PER_SEC;
}

} // namespace

class TestLongThread : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<ThreadView> m_view;

    ThreadScene &scene() { return m_view->scene(); }
    ThreadLayout &layout() { return scene().layout(); }
    const ThreadRows &rows() { return scene().rows(); }
    void open(const QList<ThreadMessage> &messages, const QStringList &words = {})
    {
        m_view->setRows(ThreadRows::of(messages));
        m_view->setMatcher(TextMatcher(words));
    }
    QString lit(int row)
    {
        QString text = layout().row(row).document->toPlainText();
        const QList<TextRange> matches = layout().row(row).matches;
        for (auto match = matches.rbegin(); match != matches.rend(); ++match)
            text.insert(match->to, u']').insert(match->from, u'[');
        return text;
    }
    // How far the first match of a message, or else its beginning, is from the middle; pixels.
    int fromMiddle(int message)
    {
        ThreadPosition place{rows().message(message).firstRow, 0};
        for (const ThreadLayout::Shown &shown : layout().shown())
            if (rows().messageOf(shown.row) == message && place.offset == 0)
                if (const auto &matches = layout().row(shown.row).matches; !matches.isEmpty())
                    place = {shown.row, matches.first().from};
        const QRect line = ThreadPositions::caret(layout(), place);
        return layout().yOf(place.row) + line.center().y() - layout().size().height() / 2;
    }
    QImage picture()
    {
        QImage image(m_view->viewport()->size(), QImage::Format_RGB32);
        image.fill(Qt::black);
        m_view->viewport()->render(&image, {}, {}, QWidget::DrawChildren);
        return image;
    }
    // Pixels that are a little, and those that are very much the colour of matches.
    std::pair<int, int> amber(const QRect &area = {})
    {
        const QImage image = picture();
        std::pair<int, int> counts;
        const QRect all = area.isNull() ? image.rect() : area;
        for (int y = all.top(); y <= all.bottom(); ++y)
            for (int x = all.left(); x <= all.right(); ++x) {
                const int depth = qRed(image.pixel(x, y)) - qBlue(image.pixel(x, y));
                counts.first += depth > 50 && depth <= 150;
                counts.second += depth > 150;
            }
        return counts;
    }

private Q_SLOTS:
    void init()
    {
        m_view = std::make_unique<ThreadView>();
        m_view->resize(420, 400);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    }
    void cleanup() { m_view.reset(); }

    void findsWords()
    {
        const auto check = [](const QString &marked, const QStringList &words) {
            QString text = marked;
            text.remove(u'[').remove(u']');
            QString found = text;
            const QList<TextRange> ranges = TextMatcher(words).in(text);
            for (auto range = ranges.rbegin(); range != ranges.rend(); ++range)
                found.insert(range->to, u']').insert(range->from, u'[');
            QCOMPARE(found, marked);
        };
        check(u"[Word]s, s_[word], [word]word, swords and 2words ([WORD])"_s, {u"word"_s});
        check(u"a [therefore] [the]n [other]"_s, {u"the"_s, u"therefore"_s, u"other"_s});
        check(u"[Zürich] in [zu\u0308rich] or [ZURICH]"_s, {u"zurich"_s});
        check(u"[e\u0301\u0301] n\u0303e"_s, {u"É"_s});
        check(u"[full \n text] full stop [Full\u00A0Text]ual full"_s, {u" full  text "_s});
        check(u"#[c++] #c+"_s, {u"c++"_s});
        check(u"使用[全文]搜索[Qt]和q"_s, {u"全文"_s, u"qt"_s});
        check(u"ภาษา[ไทย]"_s, {u"ไทย"_s});
        check(u"[한국]어 대한국 [\u1112\u1161\u11AB\u1100\u116E\u11A8]어"_s, {u"한국"_s});
        check(u"한국 が [か]ん"_s, {u"하"_s, u"か"_s});
        check(u"[कि]ताब [ताब]"_s, {u"ताब"_s, u"क"_s});
        check(u"a😀b [😀b] [𐐀]x 𐐁y"_s, {u"😀b"_s, u"𐐨"_s});
        check(u"[Йод] [под] еще [Σ]ας"_s, {u"иод"_s, u"ПОД"_s, u"ς"_s});
        check(u"nothing at all"_s, {u""_s, u"  "_s, u"\u0301"_s});
    }

    void aHundredWordsCostLittleMoreThanOne()
    {
        const QString text = u"a common beginning of words 共同的 "_s.repeated(30'000);
        QStringList words;
        for (int i = 0; i < 100; ++i)
            words.append({u"common beginning of x%1"_s.arg(i), u"共同x%1"_s.arg(i)});
        const auto cost = [&](const QStringList &some) {
            const std::clock_t start = std::clock();
            const bool isFound = TextMatcher(some).occursIn(text);
            return isFound ? 0 : milliseconds(start);
        };
        const double one = cost(words.first(2));
        const double all = cost(words);
        QVERIFY2(one > 0 && all < 4 * one, qPrintable(u"%1 then %2 ms"_s.arg(one).arg(all)));
    }

    void isCutAsWhatComesOneByOne()
    {
        const QList<ThreadMessage> messages{
            question(u"a\nb"_s.repeated(3000)), reply({}), reply(prose.repeated(50) + u"``"_s), question({}),
            reply(u"|a|\n|-|\n"_s + u"|b|\n"_s.repeated(100))};
        for (const ThreadMessage &message : messages)
            m_view->append(message);
        m_view->finishLast();
        const ThreadRows whole = ThreadRows::of(messages);
        QCOMPARE(whole.count(), rows().count());
        QCOMPARE(whole.messageCount(), rows().messageCount());
        for (int row = 0; row < whole.count(); ++row) {
            QVERIFY(whole.block(row) == rows().block(row));
            QCOMPARE(whole.messageOf(row), rows().messageOf(row));
        }
        for (int i = 0; i < messages.size(); ++i) {
            QCOMPARE(whole.message(i).endRow, rows().message(i).endRow);
            QVERIFY(whole.message(i).isFinished);
        }
    }

    void opensAtOnce()
    {
        (void)longThread();
        const struct mallinfo2 before = ::mallinfo2();
        std::clock_t start = std::clock();
        ThreadRows all = ThreadRows::of(longThread());
        const double cutting = milliseconds(start);
        const struct mallinfo2 after = ::mallinfo2();
        QVERIFY(after.uordblks + after.hblkhd < before.uordblks + before.hblkhd + 5'000'000);
        const qsizetype imported = BlockDocument::importedCharacters();
        start = std::clock();
        m_view->setRows(std::move(all));
        const double opening = milliseconds(start);
        QVERIFY2(opening < cutting, qPrintable(u"%1 and %2 ms"_s.arg(cutting).arg(opening)));
        QVERIFY(BlockDocument::importedCharacters() - imported < 10'000);
        QCOMPARE(layout().value(), 0);
        QVERIFY(layout().documentCount() < 40);
    }

    void showsAnyMessageInTheMiddleAndDoesNotSlip()
    {
        open(longThread(), {u"needle"_s});
        QRandomGenerator random(7);
        for (int i = 0; i < 100; ++i) {
            const int message = i == 50 ? 5000 : random.bounded(10, 9900);
            m_view->showMessage(message);
            QVERIFY2(std::abs(fromMiddle(message)) < 10, qPrintable(QString::number(message)));
            const auto read = layout().shown().at(layout().shown().size() / 2);
            for (int step = 0, y = read.y; step < 5; ++step) {
                scene().scrollBy(-60);
                QCOMPARE(layout().yOf(read.row), y += 60);
            }
        }
        m_view->showMessage(0);
        QCOMPARE(layout().value(), 0);
        m_view->showMessage(rows().messageCount());
        m_view->showMessage(-1);
        QCOMPARE(layout().value(), 0);
        m_view->showMessage(rows().messageCount() - 1);
        QCOMPARE(m_view->verticalScrollBar()->value(), m_view->verticalScrollBar()->maximum());
    }

    void staysInTheMiddleUntilTheUserScrolls()
    {
        m_view->hide();
        open(longThread(), {u"needle"_s});
        m_view->showMessage(5000);
        m_view->show();
        QVERIFY(std::abs(fromMiddle(5000)) < 10);
        m_view->resize(300, 300);
        QVERIFY(std::abs(fromMiddle(5000)) < 10);
        m_view->scrollPages(1);
        QCOMPARE(fromMiddle(5000) / 10, -(layout().size().height() - 40) / 10);
        const int row = layout().shown().front().row;
        m_view->resize(420, 400);
        QCOMPARE(layout().shown().front().row, row);
    }

    void looksForAMatchWithinBounds_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<int>("row");
        QTest::newRow("none") << prose.repeated(12'000) << QStringList{u"absent"_s} << 0;
        QTest::newRow("in addresses only") << prose.repeated(12'000) << QStringList{u"needle"_s} << 0;
        const QString far = u"line\n\n"_s.repeated(2000) + prose.repeated(20) + u"A needle"_s;
        QTest::newRow("behind others") << far << QStringList{u"needle"_s} << 2020;
        const QString phrase = u"# Title\n\nsome `texts`"_s;
        QTest::newRow("phrase") << phrase << QStringList{u"absent"_s, u"some texts"_s} << 1;
        QTest::newRow("table") << u"b\n\n|needle|\n|-|\n|c|"_s << QStringList{u"needle"_s} << 1;
    }
    void looksForAMatchWithinBounds()
    {
        QFETCH(const QString, text);
        QFETCH(const QStringList, words);
        QFETCH(const int, row);
        const QString space = u"line\n\n"_s.repeated(40);
        open({reply(space), reply(text), reply(space)}, words);
        const qsizetype before = BlockDocument::importedCharacters();
        m_view->showMessage(1);
        QVERIFY(BlockDocument::importedCharacters() - before < 20'000);
        const int shown = rows().message(1).firstRow + row;
        const int middle = layout().size().height() / 2;
        QCOMPARE(layout().rowAt(middle), shown);
    }

    void lightsWhatIsShown()
    {
        const QString text =
            u"> A **Tést** and `test(1)`, [testing](https://test.org)\n\n```\nint test;\n```\n\n|test|\n|-|\n|c|\n"_s;
        open({question(u"*test*\ntest"_s), reply(text), reply(u"A test"_s)});
        QCOMPARE(amber(), std::pair(0, 0));
        m_view->setMatcher(TextMatcher({u"test"_s})); // what is laid out already
        QCOMPARE(lit(0), u"*[test]*\n[test]"_s);
        QCOMPARE(lit(1), u"A [Tést] and [test](1), [test]ing"_s);
        QCOMPARE(lit(2), u"int [test];"_s);
        QCOMPARE(lit(3), u"\n[test]\nc\n"_s);
        QVERIFY(amber().first > 500);
        QCOMPARE(amber().second, 0);
        const auto shown = [&](int row) {
            return QRect(0, layout().yOf(row), 380, layout().row(row).box.height);
        };
        m_view->showMessage(1);
        QCOMPARE(amber(shown(0)).second, 0);
        for (const int row : {1, 2, 3})
            QVERIFY(amber(shown(row)).second > 200 && amber(shown(row)).second > amber(shown(row)).first);
        QVERIFY(amber(shown(4)).first > 100 && amber(shown(4)).second == 0);
        QVERIFY(amber(QRect(0, shown(1).center().y(), 12, 1)).second > 0); // beside the message
        const QRectF match = layout().row(2).lit.first().translated(layout().row(2).box.text);
        const QImage dark = picture().copy(match.translated(0, layout().yOf(2)).toRect());
        for (int x = 0; x < dark.width(); ++x)
            for (int y = 0; y < dark.height(); ++y)
                QVERIFY(qBlue(dark.pixel(x, y)) < 120); // no white text
        m_view->showMessage(2);
        QCOMPARE(amber(shown(1)).second, 0);
        m_view->setMatcher(TextMatcher());
        QCOMPARE(amber(shown(1)), std::pair(0, 0));
    }

    void copiesWhatWasChosenLast()
    {
        QClipboard *clipboard = QGuiApplication::clipboard();
        const auto copied = [&](bool byKey) {
            clipboard->clear();
            if (byKey)
                QTest::keyClick(m_view.get(), Qt::Key_C, Qt::ControlModifier);
            return byKey || m_view->copy() ? clipboard->text() : u"nothing"_s;
        };
        open({question(u"First"_s), reply(u"A *second*"_s), question(u"Third"_s)});
        const auto click = [&](int row) {
            const QPoint point(100, layout().yOf(row) + layout().row(row).box.height / 2);
            QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, point);
        };
        QCOMPARE(copied(false), u"nothing"_s);
        m_view->showMessage(2);
        QCOMPARE(copied(true), u"Third"_s);
        click(1);
        QCOMPARE(copied(false), u"A *second*"_s);
        QCOMPARE(copied(true), u"A *second*"_s);
        scene().select({{0, 1}, {0, 3}});
        QCOMPARE(copied(false), u"ir"_s);
        scene().select({});
        m_view->showMessage(0);
        QCOMPARE(copied(false), u"First"_s);
        scene().activate({ThreadTarget::Kind::CopyReply, 1});
        QCOMPARE(clipboard->text(), u"A *second*"_s);
        click(1);
        open({question(u"Other"_s)});
        QCOMPARE(copied(false), u"nothing"_s);
    }

    void isReadFromItsTop()
    {
        const auto *jump = m_view->findChild<QAbstractButton *>();
        open(longThread());
        QVERIFY(!jump->isVisible());
        const int end = m_view->verticalScrollBar()->maximum();
        m_view->verticalScrollBar()->setValue(end);
        QVERIFY(layout().end() <= layout().size().height());
        open({question(u"Short"_s), reply(prose.repeated(2))});
        m_view->resize(420, 60);
        QCOMPARE(layout().value(), 0);
        QVERIFY(!jump->isVisible());
        m_view->append(reply(prose)); // it goes on after all
        QVERIFY(jump->isVisible());
        m_view->clear();
        m_view->append(reply(prose.repeated(9)));
        QCOMPARE(m_view->verticalScrollBar()->value(), m_view->verticalScrollBar()->maximum());
    }

    void tabSearchesWithinBounds()
    {
        open({reply(u"a ://b\n\n"_s.repeated(5000)), question(u"more"_s), reply(u"end"_s)});
        const qsizetype before = BlockDocument::importedCharacters();
        QTest::keyClick(m_view.get(), Qt::Key_Tab);
        QVERIFY(BlockDocument::importedCharacters() - before < 1000);
        scene().focus(ThreadTarget{ThreadTarget::Kind::CopyReply, 4999});
        QVERIFY(scene().focusNext(1));
        QCOMPARE(scene().focused()->row, 5001);
    }

    void assistiveTechnologyAsksForWhatItNeeds()
    {
        open(longThread());
        QAccessibleInterface *view = QAccessible::queryAccessibleInterface(m_view.get());
        QCOMPARE(view->childCount(), rows().count());
        QAccessibleInterface *far = view->child(20'000);
        QVERIFY(far->text(QAccessible::Name).startsWith(u"Some words"_s));
        QCOMPARE(view->indexOfChild(far), 20'000);
        QCOMPARE(view->indexOfChild(view), -1);
        QVERIFY(QAccessible::uniqueId(view->child(30)) - QAccessible::uniqueId(far) < 5); // made since
    }
};

QTEST_MAIN(TestLongThread)
#include "tst_long_thread.moc"
