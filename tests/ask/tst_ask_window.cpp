#include <QAbstractButton>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include <ctime>
#include <unistd.h>

#include "Ask/AskTexts.h"
#include "Ask/AskWindow.h"
#include "Ask/Composer.h"
#include "Ask/ReplyFooter.h"
#include "Ask/ScreenChip.h"
#include "Ask/ThinkingDots.h"
#include "Thread/ThreadScene.h"
#include "Thread/ThreadView.h"
#include "Widgets/CardHeader.h"
#include "Widgets/Menu.h"
#include "ask/ClaudeStandIn.h"
#include "support/FakeDesktopPreferences.h"
#include "support/FakeFloatingSurface.h"
#include "support/FakeScreenCapture.h"
#include "support/FakeWorkspace.h"

using namespace nubble;
using namespace Qt::StringLiterals;

class AskWindowTest : public QObject {
    Q_OBJECT

private:
    // Whether the window would have been in each picture of the whole screen.
    [[nodiscard]] bool isSeen() const
    {
        return m_surface && m_surface->window.isVisible() && !m_surface->unseen;
    }
    // The desktop takes its time until it draws what is below an open window, and fades it.
    [[nodiscard]] bool isDrawn() const { return isSeen() || (m_ask->isOpen() && m_looks < 12); }
    void untilSeen() { QTRY_VERIFY(!m_ask->conversation().isCapturing() && isSeen()); }
    void type(const QString &text) { QTest::keyClicks(field(), text); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(field(), key, modifiers);
    }
    [[nodiscard]] QPlainTextEdit *field() const { return m_surface->window.findChild<QPlainTextEdit *>(); }
    [[nodiscard]] QString chip() const
    {
        const auto *chip = m_surface->window.findChild<ScreenChip *>();
        return chip->isVisible() ? chip->accessibleName() : QString();
    }
    [[nodiscard]] QAbstractButton *button(const QString &name) const
    {
        for (auto *button : m_surface->window.findChildren<QAbstractButton *>())
            if ((button->accessibleName() == name || button->text() == name) && button->isVisible())
                return button;
        return nullptr;
    }
    void click(const QString &name) const
    {
        QVERIFY2(button(name) && button(name)->isEnabled(), qPrintable(name));
        button(name)->click();
    }
    // Whether the whole picture is, once the pointer has come to the small one.
    [[nodiscard]] bool isPreviewed() const
    {
        const auto *chip = m_surface->window.findChild<ScreenChip *>();
        const QRect place(chip->mapToGlobal(QPoint()), chip->size());
        for (const auto *each : chip->findChildren<QWidget *>())
            if (each->isWindow() && each->isVisible() && !each->geometry().intersects(place)
                && each->mask().isEmpty() == m_surface->translucent)
                return each->screen()->availableGeometry().contains(
                    each->contentsRect().translated(each->pos()));
        return false;
    }
    void comeToChip()
    {
        QEnterEvent enter({}, {}, {});
        QCoreApplication::sendEvent(m_surface->window.findChild<ScreenChip *>(), &enter);
        QVERIFY(isPreviewed());
    }
    [[nodiscard]] QStringList said() const
    {
        QStringList texts;
        for (const AskMessage &message : m_ask->conversation().messages())
            texts.append(message.text);
        return texts;
    }
    [[nodiscard]] QString promptOfTurn(qsizetype turn) const
    {
        return m_claude->turns()
            .value(turn)["message"_L1]["content"_L1]
            .toArray()
            .last()["text"_L1]
            .toString();
    }
    void untilAnswered(qsizetype messages)
    {
        QTRY_COMPARE(said().size(), messages);
        QTRY_VERIFY(!m_ask->conversation().isBusy());
    }

    std::optional<TemporaryHome> m_home;
    std::optional<ClaudeStandIn> m_claude;
    FakeWorkspace m_workspace;
    FakeScreenCapture m_screen;
    FakeDesktopPreferences m_preferences;
    FakeFloatingSurface *m_surface = nullptr;
    int m_looks = 0;        // at the screen since it was seen last
    QStringList m_pictures; // of each grab: whether it came at the right time
    QUrl m_opened;
    std::unique_ptr<AskWindow> m_ask;

private Q_SLOTS:
    void init()
    {
        m_surface = nullptr;
        m_pictures.clear();
        m_home.emplace();
        m_claude.emplace(*m_home);
        m_claude->follow("while True:\n turn()\n say(reply('answer'), done())\n");
        m_workspace.front = RunningApplication{7, u"Editor"_s, u"editor"_s};
        m_workspace.titles = {{7, u"a.txt"_s}};
        m_preferences.setReducedMotion(true);
        m_screen.allowed = true;
        m_screen.picture = QImage(800, 600, QImage::Format_RGB32);
        m_screen.picture.fill(Qt::red);
        m_screen.part = [this] {
            QImage part(1, 1, QImage::Format_RGB32);
            m_looks = isSeen() ? 0 : m_looks + 1;
            part.fill(qRgb(0, 0, std::clamp((m_looks - 8) / 2, 0, 2)));
            return part;
        };
        m_screen.grabbed = [this] {
            const bool isRight = !isDrawn() && m_ask->conversation().isCapturing();
            m_pictures.append(isRight ? u"right"_s : u"wrong"_s);
        };
        m_ask = std::make_unique<AskWindow>(
            m_home->home(),
            AskWindow::Surroundings{
                .workspace = m_workspace,
                .capture = m_screen,
                .preferences = m_preferences,
                .makeSurface = FakeFloatingSurface::factory(m_surface),
                .place = [](const QSize &size) { return QRect(QPoint(100, 90), size); },
                .openLink = [this](const QUrl &url) { m_opened = url; }});
    }
    void cleanup()
    {
        QVERIFY(!m_pictures.contains(u"wrong"_s));
        m_ask.reset();
    }

    void isNeverInItsOwnPicture()
    {
        m_ask->toggle();
        QVERIFY(isSeen()); // at once, for the screen has been grabbed
        untilSeen();
        m_surface->giveKeyboard(true);
        m_ask->recapture();
        QVERIFY(!isSeen() && m_ask->isOpen());
        untilSeen();
        m_ask->toggle();
        QVERIFY(!isSeen() && !m_ask->isOpen());
        m_ask->toggle(); // may still be fading
        QVERIFY(!isSeen());
        untilSeen();
        m_ask->recapture();
        m_ask->recapture();
        m_ask->toggle(); // closed meanwhile, and stays so
        QTRY_VERIFY(!m_ask->conversation().isCapturing());
        QVERIFY(!m_ask->isOpen() && !isSeen());
        m_ask->toggle();
        m_ask->toggle(); // before it has opened
        QTRY_VERIFY(!m_ask->conversation().isCapturing());
        QVERIFY(!m_ask->isOpen());
        m_screen.grabbed = [this, picture = m_screen.grabbed] {
            picture();
            m_workspace.front = RunningApplication{8, u"Other"_s, {}};
            if (m_pictures.size() == 6)
                m_ask->recapture(); // while one is being taken
        };
        m_ask->recapture();
        untilSeen();
        QCOMPARE(m_pictures, QStringList(7, u"right"_s));
        QCOMPARE(chip(), u"Other"_s);
    }

    void theTargetIsWhatWasInFrontBeforeTheWindow()
    {
        m_ask->activate(u"one"_s);
        untilAnswered(2);
        QCOMPARE(promptOfTurn(0), u"[On screen: Editor — a.txt]\n\none"_s);
        m_workspace.front = RunningApplication{::getpid(), u"nubble"_s, u"nubble"_s};
        m_ask->screenshot();
        untilSeen();
        QCOMPARE(chip(), u"Editor — a.txt"_s);
        m_workspace.front.reset();
        comeToChip();
        m_ask->screenshot();
        QVERIFY(!isPreviewed());
        untilSeen();
        QCOMPARE(chip(), u"Your screen"_s);
        m_surface->setTranslucent(true);
        m_surface->window.move(100, -450); // no room above the chip
        comeToChip();
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(m_surface->window.findChild<ScreenChip *>(), &leave);
        QVERIFY(!isPreviewed());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        comeToChip();
        button(u"Don't send the screen"_s)->setFocus();
        click(u"Don't send the screen"_s);
        QCOMPARE(chip(), QString());
        QVERIFY(!isPreviewed() && field()->hasFocus());
        QCOMPARE(said().size(), 2);
        m_screen.allowed = false;
        m_workspace.front = RunningApplication{7, u"Editor"_s, u"editor"_s};
        m_ask->screenshot();
        untilSeen();
        QCOMPARE(chip(), u"No screenshot · Editor"_s);
        type(u"two"_s);
        press(Qt::Key_Return);
        untilAnswered(4);
        QCOMPARE(promptOfTurn(1), u"[On screen: Editor (no screenshot available)]\n\ntwo"_s);
        m_screen.allowed = true;
        m_ask->activate();
        QCOMPARE(said().size(), 0);
        untilSeen();
    }

    void whatIsSentWhileThePictureIsTakenWaitsForIt()
    {
        m_ask->activate();
        QCOMPARE(chip(), u"Looking at your screen…"_s);
        QVERIFY(!button(u"Don't send the screen"_s));
        type(u"early"_s);
        press(Qt::Key_Return);
        QCOMPARE(said().size(), 0);
        untilAnswered(2);
        QCOMPARE(m_claude->turns().first()["message"_L1]["content"_L1].toArray().size(), 2);
        QVERIFY(field()->toPlainText().isEmpty());

        m_ask->activate(u"asked elsewhere"_s);
        m_workspace.front = RunningApplication{8, u"Other"_s, {}};
        m_ask->recapture();
        type(u"draft"_s);
        press(Qt::Key_Return);
        untilAnswered(2);
        QVERIFY(promptOfTurn(1).startsWith(u"[On screen: Other]"));
        QCOMPARE(said().first(), u"asked elsewhere"_s);
        QCOMPARE(field()->toPlainText(), u"draft"_s);
    }

    void theFieldGrowsAndTakesKeys()
    {
        m_ask->activate();
        untilSeen();
        const int one = field()->height();
        type(u"a"_s);
        for (int line = 2; line <= 8; ++line) {
            press(Qt::Key_Return, Qt::ShiftModifier);
            const int lines = std::min(line, 6);
            QVERIFY(
                qAbs(field()->height() - one - (lines - 1) * QFontMetricsF(field()->font()).lineSpacing())
                <= 1);
            QCOMPARE(field()->verticalScrollBarPolicy() == Qt::ScrollBarAlwaysOn, line > 6);
        }
        press(Qt::Key_Up);
        QVERIFY(field()->toPlainText().startsWith(u"a\n"_s));
        press(Qt::Key_Enter, Qt::KeypadModifier);
        untilAnswered(2);
        QCOMPARE(field()->height(), one);
        press(Qt::Key_Up);
        type(u"b"_s);
        QCOMPARE(field()->toPlainText(), u"ab"_s);
        button(u"Send"_s)->setFocus();
        click(u"Send"_s);
        untilAnswered(4);
        QVERIFY(field()->hasFocus());
        press(Qt::Key_Up);
        QCOMPARE(field()->toPlainText(), u"ab"_s);

        QGuiApplication::clipboard()->setText(QString(300'000, u'x'));
        const std::clock_t start = std::clock();
        field()->paste();
        QVERIFY2((std::clock() - start) / CLOCKS_PER_SEC < 3, "by the square it is 10 s");
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, {}, {50, 50});
        QCoreApplication::sendEvent(field(), &menu);
        QVERIFY(field()->findChild<Menu *>());
        QCOMPARE(field()->toPlainText().size(), 300'002);
    }

    void aReplyIsAwaitedAndCanBeStopped()
    {
        m_claude->follow("turn()\ntime.sleep(0.3)\nsay(delta('part'))\ntime.sleep(60)");
        m_ask->activate();
        untilSeen();
        click(u"Explain what I'm looking at"_s);
        auto *dots = m_surface->window.findChild<ThinkingDots *>();
        QTRY_VERIFY(dots->isVisible() && dots->height() > 0);
        QVERIFY(button(u"Stop"_s)->isEnabled());
        const auto areAlike = [dots](const QImage &all) {
            return all.copy(0, 0, 6, all.height()) == all.copy(11, 0, 6, all.height());
        };
        QVERIFY(areAlike(dots->grab().toImage()));
        m_preferences.setReducedMotion(false);
        QVERIFY(!areAlike(dots->grab().toImage()));
        QTRY_VERIFY(said().last() == u"part" && !dots->isVisible());
        auto *thread = m_surface->window.findChild<ThreadView *>();
        const ThreadRows &rows = thread->scene().rows();
        QVERIFY(!rows.message(1).isFinished);
        const double rim = m_surface->outline.boundingRect().left(); // has a line
        QVERIFY(thread->mapTo(&m_surface->window, QPoint()).x() > rim);
        QCOMPARE(thread->viewport()->width(), thread->width()); // the bar lies over it
        const QImage title = m_surface->window.findChild<CardHeader *>()->grab().toImage();
        for (const bool isBefore : {true, false}) // the text's margin
            QCOMPARE(areAlike(title.copy(isBefore ? 3 : 16, 0, 17, title.height())), isBefore);
        type(u"draft"_s);
        press(Qt::Key_Return);
        click(u"Stop"_s);
        QVERIFY(!m_ask->conversation().isBusy());
        QCOMPARE(field()->toPlainText(), u"draft"_s);
        QVERIFY(rows.messageCount() == 2 && rows.message(1).isFinished);

        m_claude->follow("turn()\nsay(failed(result='It is broken. ' + 'x' * 99))");
        press(Qt::Key_Return);
        const auto problem = [this] {
            for (const auto *label : m_surface->window.findChildren<QLabel *>())
                if (label->text().startsWith(u"It is broken.") && label->isVisible())
                    return label->minimumSizeHint().width() <= label->width();
            return false;
        };
        QTRY_VERIFY(problem());
        for (const Qt::Key last : {Qt::Key_Up, Qt::Key_Down}) { // selects all, copies
            QContextMenuEvent menu(QContextMenuEvent::Mouse, {5, 5}, {50, 50});
            auto *footer = m_surface->window.findChild<ReplyFooter *>();
            QCoreApplication::sendEvent(footer->findChild<QLabel *>(), &menu);
            QTest::keyClick(footer->findChild<Menu *>(), last);
            QTest::keyClick(footer->findChild<Menu *>(), Qt::Key_Return);
            QTRY_VERIFY(!footer->findChild<Menu *>());
        }
        QCOMPARE(QGuiApplication::clipboard()->text(), u"It is broken. "_s + QString(99, u'x'));
        QVERIFY(rows.messageCount() == 3 && !rows.message(2).isFinished); // the question
        click(u"New conversation"_s);
        untilSeen();
        QVERIFY(!problem());
        QCOMPARE(rows.messageCount(), 0);
        click(u"Close"_s);
        QVERIFY(!m_ask->isOpen());
    }

    void everythingIsReachedWithTabAndHasAName()
    {
        m_ask->activate();
        untilSeen();
        const auto namesOnTheWay = [this](const QString &last) {
            QStringList names;
            field()->setFocus();
            do {
                QTest::keyClick(m_surface->window.focusWidget(), Qt::Key_Tab);
                const auto *button = qobject_cast<QAbstractButton *>(m_surface->window.focusWidget());
                const QString name = m_surface->window.focusWidget()->accessibleName();
                names.append(name.isEmpty() && button ? button->text() : name);
            } while (names.last() != last && names.size() < 20);
            return names;
        };
        type(u"a"_s);
        const QStringList names{
            u"Send"_s, u"Don't send the screen"_s, u"New conversation"_s,
            u"Take a new screenshot  Ctrl+Alt+S"_s, u"Close"_s};
        QCOMPARE(namesOnTheWay(u"Question"_s), names + suggestions() + QStringList(u"Question"_s));
        press(Qt::Key_Return);
        untilAnswered(2);
        QVERIFY(namesOnTheWay(u"Question"_s).contains(u"Conversation"_s));
        press(Qt::Key_PageUp);
        press(Qt::Key_PageDown);
        QVERIFY(field()->hasFocus());
    }

    void saysWhatClaudeSees()
    {
        ScreenContext seen{.jpeg = "x", .appName = u"A"_s, .windowTitle = u"b c"_s};
        QCOMPARE(chipText(seen, false), u"A — b c"_s);
        QCOMPARE(chipText(std::nullopt, true), u"Looking at your screen…"_s);
        QCOMPARE(chipText(ScreenContext(), false), u"No screenshot"_s);
        QVERIFY(invitation(seen, false) == invitation({}, true));
        QCOMPARE(invitation({}, false), u"Ask Claude anything."_s);
    }
};

QTEST_MAIN(AskWindowTest)
#include "tst_ask_window.moc"
