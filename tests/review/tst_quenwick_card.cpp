#include <QAbstractButton>
#include <QLabel>
#include <QScrollBar>
#include <QTest>

#include "Review/QuenwickCard.h"
#include "Review/QuenwickRow.h"
#include "Widgets/CappedScroll.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/Spinner.h"
#include "Widgets/TooltipShell.h"
#include "review/ReviewWorld.h"
#include "support/FakeDesktopPreferences.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class QuenwickCardTest : public QObject {
    Q_OBJECT

private:
    void show(QuenwickMonitor &quenwick)
    {
        m_shell = std::make_unique<TooltipShell>(
            quenwickCard(quenwick, m_world->clock, m_preferences).makeContent({.height = 700, .close = {}}),
            NotchEdge::Right, false);
        connect(m_shell.get(), &TooltipShell::contentResized, this, [this] {
            m_shell->resize(m_shell->sizeHint());
        });
        m_shell->resize(m_shell->sizeHint());
        m_shell->show();
        QCoreApplication::processEvents();
    }
    void showSample(const ReviewState &state)
    {
        m_sample = std::make_unique<QuenwickMonitor>(state);
        show(*m_sample);
    }
    void openLive(int pending, const QByteArray &items)
    {
        m_world->database();
        m_world->server.answer(
            "/api/notch", "{\"pending\":" + QByteArray::number(pending) + ",\"items\":[" + items + "]}");
        m_world->goLive();
        m_world->open();
        QTRY_VERIFY(m_world->monitor->state().live);
        show(*m_world->monitor);
    }
    [[nodiscard]] QList<QuenwickRow *> rows() const
    {
        QList<QuenwickRow *> shown;
        for (auto *row : m_shell->findChildren<QuenwickRow *>())
            if (row->isVisible())
                shown.append(row);
        return shown;
    }
    [[nodiscard]] QStringList names() const
    {
        QStringList names;
        for (const auto *row : rows())
            names.append(row->accessibleName());
        return names;
    }
    [[nodiscard]] QAbstractButton *button(const QString &name, const QWidget *within = nullptr) const
    {
        for (auto *button : (within ? within : m_shell.get())->findChildren<QAbstractButton *>())
            if (button->accessibleName() == name && button->isVisible())
                return button;
        return nullptr;
    }
    [[nodiscard]] QString said() const // the notes, line by line
    {
        QStringList texts;
        for (const QLabel *label : m_shell->findChildren<QLabel *>())
            if (label->isVisible())
                texts.append(QString(label->text()).remove(QChar(0x200b)));
        return texts.join(u'\n');
    }
    void press(Qt::Key key) { QTest::keyClick(m_shell->focusWidget(), key); }

    std::optional<ReviewWorld> m_world;
    FakeDesktopPreferences m_preferences;
    std::unique_ptr<QuenwickMonitor> m_sample;
    std::unique_ptr<TooltipShell> m_shell;

private Q_SLOTS:
    void init()
    {
        m_world.emplace();
        m_preferences.setReducedMotion(true);
    }
    void cleanup() { m_shell.reset(); }

    void saysHowThingsStand()
    {
        const QuenwickItem item{.guid = u"a"_s, .source = u"mail"_s, .who = u"Ada"_s};
        for (const auto &[state, text] :
             {std::pair(
                  ReviewState{.live = true},
                  u"Nothing waiting on you\nAll clear. New dates will show up here."_s),
              {{.inbox = {2, {item}}}, u"2 to review in Quenwick"_s},
              {{.inbox = {2, {item}}, .live = true, .lastMessage = u"2 new"_s},
               u"2 waiting for review\n2 new"_s},
              {{.inbox = {3, {}}, .live = true, .lastMessage = u"a\u202e\nb"_s},
               u"3 to review, none dated\nNothing dated coming up. The rest are in the app.\na b"_s}}) {
            showSample(state);
            QCOMPARE(said(), text);
            QCOMPARE(!button(u"Quenwick is closed. Open it to approve or schedule."_s), state.live);
            QCOMPARE(rows().size(), state.inbox.items.size());
        }
    }

    void aRowTellsWhatItIs()
    {
        QuenwickItem item{
            .guid = u"a"_s, .source = u"mail"_s, .who = u"Ada\u202e Lovelace"_s, .title = u"The draft"_s};
        item.text = u"word "_s.repeated(60);
        item.due = QDateTime({2026, 9, 22}, {9, 30}, Qt::UTC);
        item.timeKnown = true;
        QuenwickItem known = item;
        known.guid = u"b"_s;
        known.onCalendar = true;
        known.text = u"the DRAFT"_s;
        showSample({.inbox = {2, {item, known}}, .live = false, .busy = {u"mail:b"_s}});
        QCOMPARE(
            names(),
            QStringList(
                {u"Ada Lovelace, Tomorrow 9:30 AM, The draft"_s,
                 u"Ada Lovelace, Tomorrow 9:30 AM, The draft, Already on your calendar"_s}));
        QVERIFY(rows().first()->accessibleDescription().endsWith(u'…'));
        QVERIFY(rows().first()->height() - rows().last()->height() > 5); // the quote, but for the calendar
        QVERIFY(button(u"Approve — open Quenwick first"_s, rows().first()));
        QVERIFY(!button(u"Approve — open Quenwick first"_s, rows().last()));
        QVERIFY(rows().last()->findChild<Spinner *>()->isVisible());
        QCOMPARE(rows().last()->accessibleDescription(), u"Busy"_s);
        m_world->clock.advance(24h);
        showSample({.inbox = {2, {item, known}}, .live = true});
        QVERIFY(names().first().contains(u"Today 9:30 AM"));
        QVERIFY(
            button(u"Add to calendar…"_s, rows().first()) && !button(u"Add to calendar…"_s, rows().last()));
    }

    void decisionsAreTakenByMouseAndKeys()
    {
        openLive(
            4,
            R"({"guid":"a","source":"mail","who":"A"},{"guid":"b","source":"mail","who":"B"},)"
            R"({"guid":"c","source":"mail","who":"C"},{"guid":"d","source":"mail","who":"D"})");
        QCOMPARE(names(), QStringList({u"A"_s, u"B"_s, u"C"_s, u"D"_s}));
        rows().first()->setFocus();
        press(Qt::Key_Tab);
        QVERIFY(rows().first()->isAncestorOf(m_shell->focusWidget())); // before the next row
        rows().at(1)->setFocus();
        press(Qt::Key_Down);
        QCOMPARE(m_shell->focusWidget(), rows().at(2));
        press(Qt::Key_A);
        QTRY_COMPARE(names(), QStringList({u"A"_s, u"B"_s, u"D"_s}));
        QCOMPARE(m_shell->focusWidget(), rows().at(2));
        press(Qt::Key_D);
        QTRY_COMPARE(names(), QStringList({u"A"_s, u"B"_s}));
        press(Qt::Key_Up);
        press(Qt::Key_Up);
        press(Qt::Key_Up);
        QCOMPARE(m_shell->focusWidget(), rows().at(0));
        press(Qt::Key_C);
        QTest::mouseClick(button(u"Dismiss"_s, rows().at(1)), Qt::LeftButton);
        QTRY_COMPARE(names(), QStringList({u"A"_s}));
        QTRY_COMPARE(m_world->server.requestsFor("/api/decide").size(), 3);
        const auto asked = [this](const char *path) { return m_world->server.requestsFor(path).join(' '); };
        QVERIFY(asked("/api/decide").contains(R"("guid":"c","source":"mail","status":"approved")"));
        QVERIFY(asked("/api/decide").contains(R"("guid":"d","source":"mail","status":"dismissed")"));
        QTRY_VERIFY(asked("/api/focus").contains(R"("guid":"a")"));
        // Listed again while that is still under way, and takes nothing.
        m_world->monitor->refresh();
        QTRY_COMPARE(rows().size(), 4);
        QuenwickRow *busy = rows().at(2);
        QVERIFY(!button(u"Approve"_s, busy));
        busy->setFocus();
        press(Qt::Key_A);
        QCOMPARE(m_world->server.requestsFor("/api/decide").size(), 3);
        QTest::mouseClick(button(u"Check for new messages"_s), Qt::LeftButton);
        QTRY_COMPARE(m_world->server.requestsFor("/api/scan").size(), 1);
        QTest::mouseClick(button(u"Open Quenwick"_s), Qt::LeftButton);
        QVERIFY(!m_world->opened.isEmpty());
    }

    void aLongListKeepsToItsRoom()
    {
        QByteArrayList items;
        for (int i = 0; i < 300; ++i)
            items.append(
                R"({"guid":")" + QByteArray::number(i) + R"(","source":"mail","who":")" + QByteArray(90, 'x')
                + R"("})");
        openLive(300, items.join(','));
        QCOMPARE(rows().size(), 100);
        QVERIFY(m_shell->height() <= CardMetrics::maxHeight + 60);
        rows().first()->setFocus();
        for (int i = 0; i < 20; ++i)
            press(Qt::Key_Down);
        auto *scroll = m_shell->findChild<CappedScroll *>();
        const QRect seen = scroll->viewport()->rect();
        const QuenwickRow *row = rows().at(20);
        QVERIFY(seen.contains(QRect(row->mapTo(scroll->viewport(), QPoint()), row->size())));
        QCOMPARE(scroll->horizontalScrollBar()->maximum(), 0);
    }
};

QTEST_MAIN(QuenwickCardTest)
#include "tst_quenwick_card.moc"
