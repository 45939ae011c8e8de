#include <QAbstractButton>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

#include "Placement/PanelShapes.h"
#include "Search/CategoryStrip.h"
#include "Search/ChatSearchWindow.h"
#include "Search/ChatTexts.h"
#include "Search/KeyPanel.h"
#include "Search/QueryField.h"
#include "Search/ResultList.h"
#include "Search/ThreadHeader.h"
#include "Search/ThreadPage.h"
#include "Thread/ThreadScene.h"
#include "Thread/ThreadView.h"
#include "Widgets/Menu.h"
#include "Widgets/ScrollFade.h"
#include "Widgets/SymbolSign.h"
#include "search/YarnbinStandIn.h"
#include "support/FakeDesktopPreferences.h"
#include "support/FakeFloatingSurface.h"
#include "support/ManualClock.h"

using namespace nubble;
using namespace Qt::StringLiterals;

class SearchWindowTest : public QObject {
    Q_OBJECT

private:
    template <typename Part> [[nodiscard]] Part *part() const
    {
        return m_surface->window.findChild<Part *>();
    }
    [[nodiscard]] QLineEdit *line() const { return part<QLineEdit>(); }
    [[nodiscard]] ResultList *list() const { return part<ResultList>(); }
    [[nodiscard]] const ChatSearch &search() const { return m_window->search(); }
    [[nodiscard]] bool isRead() const { return part<ThreadView>()->isVisible(); }
    // Whether a text is to be seen that begins so.
    [[nodiscard]] bool says(const QString &text) const
    {
        for (const QLabel *label : m_surface->window.findChildren<QLabel *>())
            if (label->isVisible() && label->text().startsWith(text))
                return true;
        return false;
    }
    [[nodiscard]] QAbstractButton *button(const QString &name) const
    {
        for (auto *button : m_surface->window.findChildren<QAbstractButton *>())
            if (button->accessibleName().startsWith(name) && button->isVisible())
                return button;
        return nullptr;
    }
    void press(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(m_surface->window.focusWidget(), static_cast<Qt::Key>(key), modifiers);
    }
    void untilAnswered() const
    {
        QSignalSpy answered(&search(), &ChatSearch::answered);
        QVERIFY(answered.wait());
    }
    void open()
    {
        m_window->show();
        m_surface->giveKeyboard(true);
        untilAnswered();
    }
    void read() // the chat that is selected
    {
        press(Qt::Key_Return);
        QTRY_VERIFY(isRead());
    }
    [[nodiscard]] QByteArray lastSearch() const
    {
        QByteArray last;
        for (const QByteArray &call : m_tool->calls())
            last = call.startsWith("search|") ? call : last;
        return last.split('|').value(4);
    }

    std::optional<TemporaryHome> m_home;
    std::optional<YarnbinStandIn> m_tool;
    ManualClock m_clock;
    FakeDesktopPreferences m_preferences;
    FakeFloatingSurface *m_surface = nullptr;
    QList<QUrl> m_opened;
    std::unique_ptr<ChatSearchWindow> m_window;

private Q_SLOTS:
    void initTestCase() { qputenv("PATH", "/usr/bin:/bin"); }
    void init()
    {
        m_window.reset();
        m_opened.clear();
        m_home.emplace();
        m_tool.emplace(*m_home);
        QJsonArray hits;
        for (int i = 0; i < 25; ++i)
            hits.append(hitJson(
                u"chat %1"_s.arg(i),
                i == 3 ? QJsonObject() : QJsonObject{{u"url"_s, u"https://claude.ai/chat/%1"_s.arg(i)}}));
        m_home->write(u"answer"_s, searchJson(hits));
        m_home->write(u"none"_s, searchJson({}));
        const auto category = [](const QString &name, int count) {
            return QJsonObject{{u"category"_s, name}, {u"count"_s, count}};
        };
        m_home->write(
            u"categories"_s,
            QJsonDocument(QJsonArray{category(u" "_s, 9), category(u"Work"_s, 3), category(u"Kids"_s, 1)})
                .toJson());
        QJsonArray messages;
        for (int i = 0; i < 60; ++i)
            messages.append(QJsonObject{{u"me"_s, i % 2 == 0}, {u"text"_s, u"word %1"_s.arg(i)}});
        const QJsonObject thread{
            {u"id"_s, u"1"_s},
            {u"source"_s, u"chat"_s},
            {u"title"_s, u"A chat"_s},
            {u"updated"_s, u"2026"_s},
            {u"url"_s, u"file:/etc/passwd"_s},
            {u"messages"_s, messages},
            {u"hits"_s, QJsonArray{0, 31, 59}}};
        m_home->write(u"thread"_s, QJsonDocument(thread).toJson());
        m_tool->follow("cat $home/$([[ $1 = search ]] && echo answer || echo $1)");
        m_window = std::make_unique<ChatSearchWindow>(
            m_home->home(),
            ChatSearchWindow::Surroundings{
                .clock = m_clock,
                .preferences = m_preferences,
                .makeSurface = FakeFloatingSurface::factory(m_surface),
                .place = [](const QSize &size) { return QRect(QPoint(100, 90), size); },
                .openLink = [this](const QUrl &url) { m_opened.append(url); }});
    }

    void whatIsSearchedFor()
    {
        for (const auto &[query, words] : std::initializer_list<std::pair<QString, QStringList>>{
                 {u" a  b a "_s, {u"a"_s, u"b"_s}},
                 {u"\"a b\" c"_s, {u"a b"_s, u"c"_s}},
                 {u"in:code CAT:\"a b\" tag:x is:starred after:2025 c"_s, {u"c"_s}},
                 {u"(a OR b*) AND NOT -c or"_s, {u"a"_s, u"b"_s, u"or"_s}},
                 {u" \"\" "_s, {}},
                 {u"std::map"_s, {u"std::map"_s}}})
            QCOMPARE(searchedWords(query), words);
        QCOMPARE(searchedWords(u"x"_s, {{u"x"_s, {u"y"_s, u"z"_s}}}), QStringList({u"x"_s, u"y"_s, u"z"_s}));
    }

    void datesAreSaidAsPeopleDo()
    {
        const QDateTime now(QDate(2026, 9, 21), QTime(20, 0));
        const std::pair<const char *, const char *> rows[]{
            {"2026-09-21T14:05:00", "Today 14:05"},
            {"2026-09-21", "Today"},
            {"2026-09-20 23:59", "Yesterday"},
            {"2026-09-16", "Wednesday"},
            {"2026-09-15", "Tuesday"},
            {"2026-09-14", "14 September"},
            {"2026-09-22", "22 September"},
            {"2025-12-31T00:00:00", "31 December 2025"},
            {"last week", "last week"},
            {"2026-13-01", "2026-13-01"},
            {"", ""}};
        for (const auto &[updated, text] : rows)
            QCOMPARE(dateText(QString::fromLatin1(updated), now), QLatin1String(text));
        QCOMPARE(
            dateText(u"2026-09-21T00:30:00Z"_s, now),
            u"Today "_s + QDateTime({2026, 9, 21}, {0, 30}, Qt::UTC).toLocalTime().toString(u"HH:mm"_s));
    }

    void foreignTextStandsOnOneLine()
    {
        QCOMPARE(singleLine(u"\u200f a\n\u202eb\u2029\u2066c\u200ed \u061c "_s), u"a b c\u200ed"_s);
        QCOMPARE(titleText(u" \u202e "_s), u"Untitled"_s);
        QVERIFY(!singleLine(QString(599, u'x') + u"😀"_s).back().isSurrogate());
        ChatHit hit;
        hit.project = hit.category = u"Both"_s;
        hit.updated = u"some day"_s;
        QCOMPARE(metaText(hit, {}).remove(u'\u2068').remove(u'\u2069'), u"Both  ·  some day"_s);
        const QString far = QString(u"x "_s).repeated(99) + u"y word z"_s;
        const QString shown = excerpt(far, TextMatcher({u"word"_s}));
        QVERIFY(shown.startsWith(u"…x") && shown.endsWith(u" y word z") && shown.size() < 60);
        QCOMPARE(excerpt(far, TextMatcher()), far);
    }

    void nothingIsOfferedThatLeadsNowhere()
    {
        ThreadHeader header;
        header.setThread({}, {});
        QVERIFY(header.findChildren<QAbstractButton *>().last()->isHidden());
        CategoryStrip strip;
        strip.setCategories(QList<ChatCategory>(5000, {u"Work"_s, 1}), {});
        QCOMPARE(strip.findChildren<QAbstractButton *>().size(), 101);
        const auto widthOf = [](const QAbstractButton &chip, const QString &text) {
            return QFontMetricsF(chip.font()).horizontalAdvance(text);
        };
        for (const QString &name : {u"Learning"_s, u"Illness"_s, u"Will"_s, u"Home"_s}) { // none is cut off
            strip.setCategories({{name, 3}}, {});
            const QAbstractButton &chip = *strip.findChildren<QAbstractButton *>().last();
            QVERIFY2(chip.width() >= 25 + widthOf(chip, name) + widthOf(chip, u"3"_s), qPrintable(name));
        }
    }

    void everythingWorksByKeyboard()
    {
        m_window->show();
        QCoreApplication::processEvents();
        QVERIFY(search().isSearching()); // at once
        untilAnswered();
        QCOMPARE(m_surface->window.focusWidget(), line());
        QCOMPARE(m_surface->window.geometry().size(), QSize(680, 460).grownBy(cardShadowRoom));
        for (const int key : {int(Qt::Key_Down), int(Qt::Key_Down), int(Qt::Key_Up)})
            press(key);
        QCOMPARE(list()->currentIndex().row(), 1);
        press(Qt::Key_PageDown);
        QVERIFY(list()->currentIndex().row() > 3);
        press(Qt::Key_PageUp);
        QCOMPARE(list()->currentIndex().row(), 1);
        read();
        QCOMPARE(m_tool->calls().last(), "thread|id-chat 1|--query|");
        const auto counter = [this] { return part<ThreadHeader>()->accessibleName(); };
        QCOMPARE(counter(), u"A chat, match 1 of 3"_s);
        press(Qt::Key_Up);
        QCOMPARE(counter(), u"A chat, match 3 of 3"_s);
        QVERIFY(part<ThreadView>()->scene().layout().value() > 1000);
        press(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"word 59"_s);
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        press(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"word 31"_s);
        const int value = part<ThreadView>()->scene().layout().value();
        press(Qt::Key_PageUp);
        QVERIFY(part<ThreadView>()->scene().layout().value() < value - 100);
        press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY(says(u"This link can't be opened."_s));
        press(Qt::Key_Up); // and forgotten
        QVERIFY(!says(u"This link can't be opened."_s));
        press(Qt::Key_Down);
        const auto *page = part<ThreadPage>();
        QTRY_COMPARE(page->geometry().bottom(), page->parentWidget()->rect().bottom()); // without hints
        QVERIFY(!part<ThreadView>()->scene().rows().message(0).isReply());
        QVERIFY(part<ThreadView>()->scene().rows().message(1).isReply());
        press(Qt::Key_Escape);
        QVERIFY(!isRead() && m_window->isOpen());
        QSignalSpy ready(part<ThreadPage>(), &ThreadPage::ready);
        connect(
            &search(), &ChatSearch::threadChanged, &ready, [this] { press(Qt::Key_Escape); },
            Qt::SingleShotConnection);
        press(Qt::Key_Return); // and left before it is there
        QTRY_VERIFY(!search().isSearching());
        press(Qt::Key_Return);
        press(Qt::Key_Escape); // even sooner
        QVERIFY(m_window->isOpen() && !search().isReading());
        read();
        QCOMPARE(ready.size(), 1);
        QCOMPARE(counter(), u"A chat, match 1 of 3"_s);
        press(Qt::Key_Escape);
        QVERIFY(says(u"in:code · in:chat · cat: · tag: · is:starred · after:"_s));
        press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY(!m_window->isOpen());
        QCOMPARE(m_opened, QList<QUrl>{QUrl(u"https://claude.ai/chat/1"_s)});
        open();
        press(Qt::Key_Escape);
        QVERIFY(!m_window->isOpen());
    }

    void whatScrollsFadesAtTheEndsThatHideMore()
    {
        open();
        const double rim = m_surface->outline.boundingRect().left(); // has a line
        const auto fades = [rim](const QAbstractScrollArea *area) {
            QString shown;
            for (const ScrollFade *fade : area->findChildren<ScrollFade *>()) {
                const QRect &at = fade->geometry();
                const bool isWhole = at.width() == area->viewport()->width() && at.height() == 16;
                if (fade->isVisible() && isWhole && fade->mapTo(fade->window(), QPoint()).x() > rim)
                    shown = at.y() == 0 ? u"top "_s + shown : shown + u"bottom "_s;
            }
            return shown;
        };
        QCOMPARE(fades(list()), u"bottom "_s);
        press(Qt::Key_PageDown);
        press(Qt::Key_PageDown);
        QCOMPARE(fades(list()), u"top bottom "_s);
        QCOMPARE(list()->viewport()->width(), list()->width()); // the bar lies over it
        list()->resize(list()->width() - 50, list()->height());
        QCOMPARE(fades(list()), u"top bottom "_s);
        read();
        QTRY_COMPARE(fades(part<ThreadView>()), u"bottom "_s);
        press(Qt::Key_PageDown);
        QCOMPARE(fades(part<ThreadView>()), u"top bottom "_s);
    }

    void buttonsStandAsFarFromTheRimAsInTheCards()
    {
        open();
        const auto fromRim = [this](const QString &name, int side) {
            const QWidget &shown = *button(name);
            const int middle = shown.mapTo(&m_surface->window, shown.rect().center()).x();
            return m_surface->outline.boundingRect().right() - middle - side / 2.0;
        };
        QTest::keyClicks(line(), u"a"_s);
        QVERIFY(std::abs(fromRim(u"Clear the search"_s, 22) - 12) <= 1);
        untilAnswered();
        read();
        QVERIFY(std::abs(fromRim(u"Open this chat"_s, 26) - 12) <= 1);
    }

    void editingKeysReachTheField()
    {
        open();
        QTest::keyClicks(line(), u"some"_s);
        press(Qt::Key_A, Qt::ControlModifier);
        press(Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(line()->text(), QString());
        const QKeyEvent other(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier | Qt::AltModifier);
        QVERIFY(!part<KeyPanel>()->performKeyEquivalent(other));
        press(Qt::Key_V, Qt::ControlModifier);
        press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(line()->text(), u"somesome"_s);
        press(Qt::Key_Z, Qt::ControlModifier);
        const QString undone = line()->text();
        QVERIFY(undone != u"somesome");
        press(Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(line()->text(), u"somesome"_s);
        press(Qt::Key_Z, Qt::ControlModifier);
        press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(line()->text(), u"somesome"_s);
        untilAnswered();
        QCOMPARE(lastSearch(), "somesome");
        QTRY_VERIFY(button(u"All"_s));
        press(Qt::Key_Tab); // to the button that clears
        press(Qt::Key_Tab);
        QCOMPARE(m_surface->window.focusWidget(), button(u"All"_s));
        press(Qt::Key_PageDown);
        QVERIFY(list()->currentIndex().row() > 1);
        press(Qt::Key_PageUp);
        press(Qt::Key_Down);
        QCOMPARE(list()->currentIndex().row(), 1);
        press(Qt::Key_Return); // presses the button, and reads nothing
        QVERIFY(!search().isReading());
        press(Qt::Key_Tab);
        QCOMPARE(m_surface->window.focusWidget(), list());
        press(Qt::Key_Down);
        QCOMPARE(list()->currentIndex().row(), 2);
        press(Qt::Key_X);
        QCOMPARE(m_surface->window.focusWidget(), line());
        QCOMPARE(line()->text(), u"somesomex"_s);
        list()->setFocus();
        press(Qt::Key_L, Qt::ControlModifier);
        QCOMPARE(line()->selectedText(), u"somesomex"_s);
        read();
        button(u"Previous match"_s)->setFocus();
        press(Qt::Key_Down);
        QCOMPARE(search().hit(), 1);
        press(Qt::Key_Return);
        QCOMPARE(search().hit(), 0);
        line()->setFocus();
        press(Qt::Key_Right);
        QTest::keyClick(line(), 'y');
        QVERIFY(!isRead());
        QCOMPARE(search().query(), u"somesomexy"_s);
        m_window->toggle();
        open();
        QCOMPARE(lastSearch(), "somesomexy");
        QCOMPARE(line()->selectedText(), u"somesomexy"_s);
        m_surface->giveKeyboard(false);
        QVERIFY(!m_window->isOpen());
    }

    void theMouseChoosesAndOpens()
    {
        open();
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, {}, {50, 50});
        QCoreApplication::sendEvent(line(), &menu);
        QVERIFY(line()->findChild<Menu *>());
        QTest::keyClick(line()->findChild<Menu *>(), Qt::Key_Escape);
        QTRY_VERIFY(button(u"Work"_s));
        button(u"Work"_s)->click();
        untilAnswered();
        QCOMPARE(lastSearch(), "cat:\"Work\" ");
        m_home->write(u"categories"_s, "[]");
        m_window->show();
        untilAnswered();
        QTRY_VERIFY(!button(u"Kids"_s));
        // Though there is none of it any more; a new chip is shown a little later.
        QTRY_VERIFY(button(u"Work"_s) && button(u"Work"_s)->isChecked());
        button(u"All"_s)->click();
        untilAnswered();
        QCOMPARE(lastSearch(), "");
        const auto row = [this](int index) { return list()->visualRect(list()->model()->index(index, 0)); };
        QTest::mouseClick(list()->viewport(), Qt::RightButton, {}, row(3).center());
        QCOMPARE(search().selection(), 0);
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, row(2).center());
        QTRY_VERIFY(isRead());
        QCOMPARE(m_surface->window.focusWidget(), line());
        button(u"Next match"_s)->click();
        QCOMPARE(search().hit(), 1);
        button(u"Previous match"_s)->click();
        QCOMPARE(search().hit(), 0);
        button(u"Back to the results"_s)->click();
        QVERIFY(!isRead());
        QCOMPARE(search().selection(), 2);
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, ChatRow::openButton(row(3)).center());
        QTRY_VERIFY(isRead()); // as it has no such button
        press(Qt::Key_Escape);
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, ChatRow::openButton(row(1)).center());
        QTRY_COMPARE(m_opened, QList<QUrl>{QUrl(u"https://claude.ai/chat/1"_s)});
        QTRY_VERIFY(!m_window->isOpen());
        open();
        QTest::keyClicks(line(), u"a"_s);
        untilAnswered();
        button(u"Clear the search"_s)->click();
        untilAnswered();
        QVERIFY(line()->text().isEmpty());
        QCOMPARE(m_surface->window.focusWidget(), line());
        QCOMPARE(lastSearch(), "");
    }

    void whatItSaysMeanwhileAndAfterwards()
    {
        m_tool->follow("while [[ $5 = slow && ! -e $home/go ]]; do sleep 0.02; done; cat $home/$([[ $5 = no* "
                       "]] && echo none || echo answer)");
        m_window->show();
        m_surface->giveKeyboard(true);
        QVERIFY(!says(u"No chats match."_s) && !part<SymbolSign>()->isVisible());
        untilAnswered();
        QSignalSpy gone(list()->model(), &QAbstractItemModel::modelReset);
        const auto isRunning = [this] { return part<QueryField>()->accessibleDescription() == u"Searching"; };
        QElapsedTimer running;
        connect(&search(), &ChatSearch::searchingChanged, &gone, [&running] { running.start(); });
        QTest::keyClicks(line(), u"slow"_s);
        QTRY_VERIFY(isRunning());
        QVERIFY(running.elapsed() >= 200);
        QVERIFY(list()->isVisible() && list()->model()->rowCount() == 25 && gone.isEmpty());
        m_home->write(u"go"_s, {});
        untilAnswered();
        QVERIFY(!isRunning());
        press(Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(line(), u"not"_s);
        untilAnswered();
        QVERIFY(says(u"No chats match."_s) && part<SymbolSign>()->isVisible() && !list()->isVisible());
        press(Qt::Key_Return);
        press(Qt::Key_Return, Qt::ControlModifier);
        m_home->write(u"answer"_s, searchJson({hitJson(u"one"_s)}, {{u"teh"_s, QJsonArray{u"the"_s}}}));
        QTest::keyClicks(line(), u"x"_s);
        press(Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(line(), u"teh"_s);
        untilAnswered();
        QVERIFY(says(u"teh → the"_s) && list()->isVisible());
        QCOMPARE(search().words(), QStringList({u"teh"_s, u"the"_s}));
        m_tool->remove();
        QTest::keyClicks(line(), u"x"_s);
        untilAnswered();
        const QString problem = u"yarnbin isn't installed — the `yarnbin` command wasn't found"_s;
        QVERIFY(says(problem) && !says(u"teh"_s) && m_opened.isEmpty());
        QTest::keyClicks(line(), u"x"_s);
        QVERIFY(!says(problem));
    }
};

QTEST_MAIN(SearchWindowTest)
#include "tst_search_window.moc"
