#include <QClipboard>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>

#include <ctime>

#include "Shell/OneLine.h"
#include "Widgets/CardHeader.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/Palette.h"
#include "Widgets/SlimScrollBar.h"
#include "notch/PanelUnderTest.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

class TestSessionsCard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rowsOutliveAPollAndKeepTheFocusWhenTheyChangePlaces()
    {
        PanelWorld world;
        world.addSession(11, u"a"_s, u"idle"_s, 3s);
        world.addSession(12, u"b"_s, u"idle"_s, 2s);
        world.addSession(13, u"c"_s, u"idle"_s, 1s);
        PanelUnderTest panel(world);
        panel.clickRing();
        QApplication::setActiveWindow(&panel.view());
        const QList<ProjectRow *> before = panel.rows(); // c, b, a
        before.at(2)->setFocus();

        world.addSession(11, u"a"_s, u"busy"_s, 0ms);
        world.endSession(12);
        world.addSession(14, u"d"_s, u"idle"_s, 500ms);
        world.readSessions();
        QTRY_COMPARE(
            panel.rowNames(),
            QStringList({u"a, working, just now"_s, u"d, idle, just now"_s, u"c, idle, just now"_s}));
        QCOMPARE(panel.rows().at(0), before.at(2));
        QCOMPARE(panel.rows().at(2), before.at(0));
        QVERIFY(before.at(2)->hasFocus());

        for (const int next : {1, 2}) { // Tab follows what is seen
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), panel.rows().at(next));
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget()->accessibleName(), u"Close"_s);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), panel.ring());
    }

    void aRowSaysForAWhileWhyItsSessionDidNotComeForward()
    {
        PanelWorld world;
        world.addSession(11, u"one"_s, u"idle"_s, 1s);
        world.addSession(12, u"two"_s, u"idle"_s, 2s);
        PanelUnderTest panel(world);
        panel.clickRing();
        panel.click(u"one"_s);
        ProjectRow *row = panel.rows().constFirst();
        QTRY_VERIFY(row->accessibleDescription().startsWith(u"Its process has ended"_s));
        row->showReason(u"Runs in tmux, detached"_s, u"tmux attach"_s);
        QApplication::setActiveWindow(&panel.view());
        row->setFocus();
        QTest::keyClick(row, Qt::Key_Tab);
        auto *time = row->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(time->interval(), 5000);
        QSignalSpy ended(time, &QTimer::timeout);
        time->start(1);
        QTRY_VERIFY(ended.count() >= 2);
        QVERIFY(row->toolTip().endsWith(u"detached"_s)); // not before it has been copied
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"tmux attach"_s);
        QVERIFY(row->hasFocus());
        QVERIFY(row->toolTip().endsWith(u"Copied the command"_s));
        time->start(1);
        QTRY_VERIFY(row->toolTip().endsWith(u"/home/ada/project"_s));
    }

    void anIdLosesItsMiddleAndAReasonHasTheWholeSecondLine()
    {
        ProjectRow row;
        row.resize(226, ProjectRow::rowHeight);
        const auto drawn = [&row](const QString &end, const QString &elapsed) {
            ProjectRowContent content;
            content.title = u"garden-"_s.repeated(20) + end;
            content.isTitleIdentifier = true;
            content.symbol = u"xmark"_s;
            content.elapsed = elapsed;
            row.setContent(content);
            return pictureOf(row, 1);
        };
        QVERIFY(drawn(u"north"_s, u"1m ago"_s) != drawn(u"south"_s, u"1m ago"_s));
        QVERIFY(drawn(u"north"_s, u"1m ago"_s) != drawn(u"north"_s, u"2m ago"_s));
        row.showReason(u"Its process has ended"_s);
        QVERIFY(drawn(u"north"_s, u"1m ago"_s) == drawn(u"north"_s, u"2m ago"_s));
    }

    void aClickOrTheKeyboardBringsTheRowsOwnTerminalForwardWherePossible()
    {
        PanelWorld world;
        world.addSession(11, u"one"_s, u"idle"_s, 1s, {{u"sessionId"_s, u"same"_s}});
        world.addSession(12, u"two"_s, u"idle"_s, 2s, {{u"sessionId"_s, u"same"_s}});
        world.workspace.applications = {{11, u"XTerm"_s, u"xterm"_s}, {12, u"XTerm"_s, u"xterm"_s}};
        PanelUnderTest panel(world);
        panel.clickRing();
        panel.click(u"process 12 · two"_s);
        QTRY_COMPARE(world.workspace.activated, QList<pid_t>{12});
        QCOMPARE(world.state.mode(), PanelMode::sessions());
        for (const auto key : {Qt::Key_Space, Qt::Key_Return}) {
            QVERIFY(panel.window.openForKeyboard(PanelMode::sessions()));
            QAbstractButton *one = panel.control(u"process 11 · one"_s);
            one->setFocus();
            QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, {}, {}, true);
            QCoreApplication::sendEvent(one, &held);
            QTRY_VERIFY(one->hasFocus() && !one->isDown());
            world.workspace.activated.clear();
            QTest::keyClick(one, key);
            QTRY_COMPARE(world.workspace.activated, QList<pid_t>{11});
            QCOMPARE(world.state.mode(), PanelMode::collapsed()); // the keyboard has left it
        }
        panel.clickRing();
        for (const bool possible : {true, false}) { // no row promises what nobody does
            world.workspace.allowed = possible;
            panel.clickRing();
            panel.clickRing();
            const ProjectRow *row = panel.rows().constFirst();
            QCOMPARE(row->isEnabled(), possible);
            QCOMPARE(row->toolTip().contains(u"Bring this session forward"_s), possible);
            QCOMPARE(row->accessibleDescription().contains(u"Bring this session forward"_s), possible);
            QVERIFY(row->toolTip().contains(u"one"_s));
        }
    }

    void aRowTakesColourAndWordFromItsStateSymbolFromWhereItRunsAndTextsFromTheTranscript()
    {
        const QList<QColor> accents{Palette::badge, Palette::bronze, Palette::ample};
        PanelWorld world;
        world.addSession(13, u"finishes"_s, u"busy"_s, 3s);
        world.readSessions();
        world.addSession(11, u"waits"_s, u"waiting"_s, 1s);
        world.addSession(12, u"works"_s, u"busy"_s, 2s);
        world.addSession(13, u"finishes"_s, u"idle"_s, 3s);
        world.addSession(
            14, u"?"_s, u"idle"_s, 4s,
            {{u"entrypoint"_s, u"claude-desktop"_s}, {u"nameSource"_s, u"derived"_s}});
        world.home.write(
            u".claude/projects/-home-ada-project/session-14.jsonl"_s,
            R"({"type":"ai-title","aiTitle":"rests","sessionId":"session-14"}
{"type":"last-prompt","lastPrompt":"Why?","sessionId":"session-14"}
)");
        PanelUnderTest panel(world);
        QApplication::setActiveWindow(&panel.view());
        panel.ring()->clearFocus();
        panel.clickRing();
        QVERIFY(!panel.ring()->hasFocus());
        QTRY_COMPARE(
            panel.rowNames(),
            QStringList(
                {u"waits, waiting, just now"_s, u"works, working, just now"_s, u"finishes, done, just now"_s,
                 u"rests, idle, just now"_s}));
        QCOMPARE(panel.rows().at(3)->accessibleDescription().section(u'.', 0, 0), u"Why?"_s);
        QCOMPARE(panel.view().findChild<CardHeader *>()->accessibleName(), u"Claude Projects, 4 running"_s);
        const QList<ProjectRow *> rows = panel.rows();
        const auto symbolOf = [&](int row) {
            return pictureOf(*rows.at(row), 1).copy(CardMetrics::rowPadding, 0, 16, rows.at(row)->height());
        };
        for (int row = 0; row < 4; ++row) {
            const QImage picture = pictureOf(*rows.at(row), 4); // strokes wider than a pixel
            for (qsizetype accent = 0; accent < accents.size(); ++accent)
                QCOMPARE(holds(picture, accents.at(accent)), accent == row);
            if (row > 0) // the first is tinted
                QCOMPARE(symbolOf(row) == symbolOf(1), row != 3);
            QVERIFY(!holds(picture, Palette::focus));
        }
        QTest::mouseClick(rows.at(1), Qt::LeftButton);
        QVERIFY(!rows.at(1)->hasFocus());
        rows.at(1)->setFocus();
        QVERIFY(holds(pictureOf(*rows.at(1), 4), Palette::focus));
    }

    void hundredsOfSessionsStayUsableAndOddTitlesAreShownLikeAnyOther()
    {
        const QStringList titles{
            u"שלום עולם — مرحبا بالعالم"_s,    u"👩‍👩‍👧‍👦🏳️‍🌈"_s.repeated(100),
            u"a\nb\r\nc\u2028d %1 %L1"_s,      u"<img src=x> &amp; <b>bold</b>"_s,
            u"long title "_s.repeated(10'000), QString(100'000, u'x'),
            QString(QChar(0xd83d)) + u"x"_s};
        PanelWorld world;
        for (int pid = 1; pid <= 300; ++pid) {
            const QString name = titles.value(pid - 1, u"session %1"_s.arg(pid));
            world.addSession(pid, name, u"idle"_s, pid * 1s, {{u"cwd"_s, QString(u"/"_s + name)}});
        }
        PanelUnderTest panel(world);
        const std::clock_t before = std::clock(); // the process's own time, whatever else the machine does
        panel.clickRing();
        (void)panel.view().grab();
        const QList<ProjectRow *> rows = panel.rows();
        for (int i = 0; i < titles.size(); ++i) {
            QCOMPARE(rows.at(i)->size(), rows.last()->size());
            QVERIFY(rows.at(i)->toolTip().size() < 10'000);
            if (titles.at(i).isValidUtf16())
                QVERIFY(rows.at(i)->accessibleName().startsWith(oneLine(titles.at(i)) + u','));
        }
        world.addSession(300, u"session 300"_s, u"busy"_s, 0ms); // from the end to the top
        world.readSessions();
        QTRY_VERIFY(panel.rows().constFirst()->accessibleName().startsWith(u"session 300,"_s));
        QVERIFY2(std::clock() - before < 5 * CLOCKS_PER_SEC, "the card takes too long");
        QVERIFY(panel.rows().size() < 60); // made where they are looked at

        auto *scroll = panel.view().findChild<QScrollArea *>();
        QVERIFY(scroll->height() < 460);
        QTRY_VERIFY(
            panel.surface->outline.contains(QRectF(scroll->mapTo(&panel.view(), QPoint()), scroll->size())));
        QApplication::setActiveWindow(&panel.view());
        QVERIFY(panel.window.openForKeyboard(PanelMode::sessions()));
        QCOMPARE(QApplication::focusWidget(), panel.rows().constFirst());
        for (const auto &[key, name] :
             {std::pair(Qt::Key_End, u"session 299,"_s),
              {Qt::Key_PageUp, u"session 292,"_s},
              {Qt::Key_PageDown, u"session 299,"_s},
              {Qt::Key_Home, u"session 300,"_s}}) {
            QTest::keyClick(QApplication::focusWidget(), key);
            const QWidget *row = QApplication::focusWidget();
            QVERIFY2(row->accessibleName().startsWith(name), qPrintable(row->accessibleName()));
            QVERIFY(scroll->viewport()->rect().contains(
                QRect(row->mapTo(scroll->viewport(), QPoint()), row->size())));
        }
        for (int i = 1; i <= 30; ++i)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        const ProjectRow *focused = panel.rows().at(30);
        QCOMPARE(QApplication::focusWidget(), focused);
        QTRY_VERIFY(scroll->viewport()->rect().contains( // scrolled into sight
            QRect(focused->mapTo(scroll->viewport(), QPoint()), focused->size())));
        auto *bar = scroll->parent()->findChild<SlimScrollBar *>(QString(), Qt::FindDirectChildrenOnly);
        QVERIFY(bar->isVisible() && !scroll->verticalScrollBar()->isVisible());
        const QRect margin =
            scroll->geometry().adjusted(scroll->width(), 0, CardMetrics::rowMargins.right(), 0);
        QVERIFY(margin.contains(bar->geometry()) && bar->height() == scroll->height());
        QCOMPARE(focused->width(), scroll->width());
        bar->setValue(bar->maximum() / 2);
        QCOMPARE(scroll->verticalScrollBar()->value(), bar->value());
        scroll->verticalScrollBar()->setValue(0);
        QVERIFY(bar->value() == 0 && bar->pageStep() == scroll->height());
        for (const int value : {7000, scroll->verticalScrollBar()->maximum()}) {
            scroll->verticalScrollBar()->setValue(value);
            for (int y = 0; y < scroll->viewport()->height(); y += ProjectRow::rowHeight / 2)
                QVERIFY(rowAt(*scroll, y) || rowAt(*scroll, y + 1)); // no hole but the line between two
        }
        QVERIFY(
            rowAt(*scroll, scroll->viewport()->height() - 2)->accessibleName().startsWith(u"session 299,"));
        QVERIFY(panel.rows().size() < 110);
        QVERIFY(focused->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab); // goes on where it was
        QVERIFY(QApplication::focusWidget()->y() - focused->y() == ProjectRow::rowHeight + 1);
        for (int pid = 3; pid <= 300; ++pid)
            world.endSession(pid);
        world.readSessions();
        QTRY_COMPARE(scroll->height(), 2 * panel.rows().constFirst()->height() + 1);
        QVERIFY(!bar->isVisible());
    }

private:
    static ProjectRow *rowAt(const QScrollArea &scroll, int y)
    {
        return qobject_cast<ProjectRow *>(scroll.viewport()->childAt(20, y));
    }
    static bool holds(const QImage &picture, const QColor &color)
    {
        const auto *pixels = reinterpret_cast<const QRgb *>(picture.constBits());
        return std::count(pixels, pixels + picture.sizeInBytes() / 4, color.rgb()) > 0;
    }
};

QTEST_MAIN(TestSessionsCard)
#include "tst_sessions_card.moc"
