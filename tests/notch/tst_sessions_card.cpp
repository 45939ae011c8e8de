#include <QElapsedTimer>
#include <QLabel>
#include <QScrollArea>

#include "notch/PanelUnderTest.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestSessionsCard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rowsNameTheirSessionsNewestActivityFirst()
    {
        PanelWorld world;
        world.addSession(11, u"older"_s, u"idle"_s, 3'600'000);
        world.addSession(12, u"newer"_s, u"busy"_s, 60'000);
        world.addSession(13, u"needs you"_s, u"waiting"_s, 86'400'000);
        PanelUnderTest panel(world);
        panel.clickRing();
        QCOMPARE(
            panel.rowNames(),
            QStringList(
                {u"newer, working, 1m ago"_s, u"older, idle, 1h ago"_s, u"needs you, waiting, 1d ago"_s}));
        QVERIFY(header(panel, u"Claude Projects, 3 running"_s));
    }

    void withoutSessionsItSaysSo()
    {
        PanelWorld world;
        world.addSession(11, u"last"_s, u"idle"_s, 0);
        PanelUnderTest panel(world);
        panel.clickRing();
        QVERIFY(!saysNone(panel));
        world.endSession(11);
        world.monitor.refresh();
        QVERIFY(saysNone(panel));
        QVERIFY(panel.rows().isEmpty());
        QVERIFY(header(panel, u"Claude Projects, 0 running"_s));
        world.addSession(12, u"next"_s, u"idle"_s, 0);
        world.monitor.refresh();
        QVERIFY(!saysNone(panel));
        QTRY_COMPARE(panel.rows().size(), 1);
    }

    void rowsOutliveAPollAndKeepTheFocusWhenTheyChangePlaces()
    {
        PanelWorld world;
        world.addSession(11, u"a"_s, u"idle"_s, 3000);
        world.addSession(12, u"b"_s, u"idle"_s, 2000);
        world.addSession(13, u"c"_s, u"idle"_s, 1000);
        PanelUnderTest panel(world);
        panel.clickRing();
        QApplication::setActiveWindow(&panel.view());
        const QList<ProjectRow *> before = panel.rows(); // c, b, a
        before.at(2)->setFocus();
        QVERIFY(before.at(2)->hasFocus());

        world.addSession(11, u"a"_s, u"busy"_s, 0);
        world.endSession(12);
        world.addSession(14, u"d"_s, u"idle"_s, 500);
        world.monitor.refresh();
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
    }

    void aClickOrTheKeyboardBringsTheRowsOwnTerminalForward()
    {
        PanelWorld world;
        world.addSession(11, u"one"_s, u"idle"_s, 1000, QJsonObject{{u"sessionId"_s, u"same"_s}});
        world.addSession(12, u"two"_s, u"idle"_s, 2000, QJsonObject{{u"sessionId"_s, u"same"_s}});
        world.workspace.applications = {{11, u"XTerm"_s, u"xterm"_s}, {12, u"XTerm"_s, u"xterm"_s}};
        PanelUnderTest panel(world);
        panel.clickRing();
        panel.click(u"two"_s);
        QCOMPARE(world.workspace.activated, QList<pid_t>{12});
        panel.control(u"one"_s)->setFocus();
        QTest::keyClick(panel.control(u"one"_s), Qt::Key_Space);
        QCOMPARE(world.workspace.activated, (QList<pid_t>{12, 11}));
    }

    void oddTitlesAreShownInARowLikeAnyOther_data()
    {
        QTest::addColumn<QString>("title");
        QTest::newRow("right to left") << u"שלום עולם — مرحبا بالعالم"_s;
        QTest::newRow("emoji") << u"👩‍👩‍👧‍👦🏳️‍🌈"_s.repeated(100);
        QTest::newRow("line breaks") << u"a\nb\r\nc\u2028d"_s;
        QTest::newRow("markup") << u"<img src=x> &amp; <b>bold</b>"_s;
        QTest::newRow("place markers") << u"%1 %2 %3 %L1"_s;
        QTest::newRow("100 kB") << u"long title "_s.repeated(10'000);
        QTest::newRow("one word of 100 kB") << QString(100'000, u'x');
        QTest::newRow("half a character") << QString(QChar(0xd83d)) + u"x"_s;
    }

    void oddTitlesAreShownInARowLikeAnyOther()
    {
        QFETCH(const QString, title);
        PanelWorld world;
        world.addSession(11, title, u"idle"_s, 1000, QJsonObject{{u"cwd"_s, QString(u"/"_s + title)}});
        world.addSession(12, u"plain"_s, u"idle"_s, 2000);
        PanelUnderTest panel(world);
        panel.clickRing();
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!panel.view().grab().isNull());
        QVERIFY2(timer.elapsed() < 2000, "drawing takes too long");
        const QList<ProjectRow *> rows = panel.rows();
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.at(0)->size(), rows.at(1)->size());
        QVERIFY(rows.at(0)->toolTip().size() < 10'000);
        QVERIFY(!rows.at(0)->toolTip().contains(u"<img"_s));
        QVERIFY(
            panel.view().rect().contains(rows.at(0)->mapTo(&panel.view(), rows.at(0)->rect().bottomRight())));
        if (!title.front().isSurrogate())
            QVERIFY(rows.at(0)->accessibleName().startsWith(title));
    }

    void hundredsOfSessionsStayUsable()
    {
        PanelWorld world;
        for (int pid = 1; pid <= 300; ++pid)
            world.addSession(pid, u"session %1"_s.arg(pid), pid % 7 == 0 ? u"busy"_s : u"idle"_s, pid * 1000);
        PanelUnderTest panel(world);
        QElapsedTimer timer;
        timer.start();
        panel.clickRing();
        QVERIFY(!panel.view().grab().isNull());
        world.addSession(300, u"session 300"_s, u"busy"_s, 0); // from the end to the top
        world.monitor.refresh();
        QTRY_VERIFY(panel.rows().constFirst()->accessibleName().startsWith(u"session 300,"_s));
        QVERIFY2(timer.elapsed() < 5000, "the card takes too long");
        QCOMPARE(panel.rows().size(), 300);

        auto *scroll = panel.view().findChild<QScrollArea *>();
        QVERIFY(scroll->height() < 460);
        QVERIFY(panel.surface->activeRects.last().contains(
            QRectF(scroll->mapTo(&panel.view(), QPoint()), scroll->size())));
        QApplication::setActiveWindow(&panel.view());
        panel.rows().constFirst()->setFocus(Qt::TabFocusReason);
        for (int i = 1; i <= 30; ++i)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        const ProjectRow *focused = panel.rows().at(30);
        QCOMPARE(QApplication::focusWidget(), focused);
        QTRY_VERIFY(scroll->viewport()->rect().contains( // scrolled into sight
            QRect(focused->mapTo(scroll->viewport(), QPoint()), focused->size())));
    }

private:
    static bool saysNone(PanelUnderTest &panel)
    {
        for (const auto *label : panel.view().findChildren<QLabel *>())
            if (label->isVisible() && label->text() == u"No sessions running")
                return true;
        return false;
    }

    static bool header(PanelUnderTest &panel, const QString &name)
    {
        for (const auto *widget : panel.view().findChildren<QWidget *>())
            if (widget->isVisible() && widget->accessibleName() == name)
                return true;
        return false;
    }
};

QTEST_MAIN(TestSessionsCard)
#include "tst_sessions_card.moc"
