#include <QSignalSpy>

#include <algorithm>

#include "Sessions/ProjectsCardContent.h"
#include "notch/PanelUnderTest.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

namespace {

// Counts what is painted in all windows for as long as it lives.
class PaintCounter : public QObject {
public:
    PaintCounter() { qApp->installEventFilter(this); }

    [[nodiscard]] int paintedNamed(const QString &name) const
    {
        return static_cast<int>(std::count_if(
            m_names.begin(), m_names.end(), [&name](const QString &each) { return each.startsWith(name); }));
    }

    int painted = 0;
    int frames = 0; // timers that wake the program as an animation does

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            ++painted;
            if (const auto *widget = qobject_cast<QWidget *>(watched))
                m_names.append(widget->accessibleName());
        }
        const auto *timer = event->type() == QEvent::Timer ? qobject_cast<QTimer *>(watched) : nullptr;
        frames += timer && timer->interval() < 20;
        return false;
    }

private:
    QStringList m_names;
};

// Until everything has been painted that was asked for.
void settle(PanelUnderTest &panel)
{
    QVERIFY(QTest::qWaitForWindowExposed(&panel.view()));
    for (int quiet = 0; quiet < 3; ++quiet) {
        const PaintCounter counter;
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        if (counter.painted > 0)
            quiet = -1;
    }
}

} // namespace

class TestRepaints : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void unchangedSessionsPaintNothing()
    {
        for (const bool open : {false, true}) {
            PanelWorld world;
            for (int pid = 1; pid <= 20; ++pid)
                world.addSession(pid, u"session %1"_s.arg(pid), u"idle"_s, pid * 100s);
            PanelUnderTest panel(world);
            if (open)
                panel.clickRing();
            settle(panel);
            const PaintCounter counter;
            for (int poll = 0; poll < 5; ++poll) {
                world.addSession(3, u"session 3"_s, u"idle"_s, 5min); // rewritten as it was
                world.monitor.refresh();
                world.monitor.waitForDetails();
                settle(panel);
            }
            Q_EMIT world.mainScreen.changed();
            world.clock.advance(1s); // no minute has passed for any of them
            QTRY_COMPARE(world.monitor.sessions().size(), 20);
            settle(panel);
            // The elapsed times are looked at.
            if (auto *card = panel.view().findChild<ProjectsCardContent *>())
                QVERIFY(QSignalSpy(card->findChild<QTimer *>(), &QTimer::timeout).wait());
            settle(panel);
            QCOMPARE(counter.painted, 0);
        }
    }

    void oneSessionsChangeDoesNotPaintTheOthers()
    {
        PanelWorld world;
        world.addSession(1, u"one"_s, u"idle"_s, 1s);
        world.addSession(2, u"two"_s, u"idle"_s, 2s);
        PanelUnderTest panel(world);
        panel.clickRing();
        settle(panel);
        const PaintCounter counter;
        world.addSession(2, u"two, renamed"_s, u"idle"_s, 2s);
        world.monitor.refresh();
        settle(panel);
        QVERIFY(counter.painted > 0);
        QCOMPARE(counter.paintedNamed(u"Claude sessions"_s), 0);
        QCOMPARE(counter.paintedNamed(u"one"_s), 0);
    }

    void theRingTurnsOnlyWhileSomethingWorksAndIsSeen()
    {
        PanelWorld world;
        world.preferences.setReducedMotion(false);
        world.addSession(1, u"one"_s, u"busy"_s, 0ms);
        PanelUnderTest panel(world);
        settleWhileTurning(panel);
        expectTurning(true);

        world.preferences.setReducedMotion(true);
        settle(panel);
        expectTurning(false);
        world.preferences.setReducedMotion(false);
        expectTurning(true);

        world.placement.setVisible(false);
        QCoreApplication::processEvents();
        expectTurning(false);
        world.placement.setVisible(true);
        settleWhileTurning(panel);
        expectTurning(true);

        world.addSession(1, u"one"_s, u"idle"_s, 0ms);
        world.monitor.refresh();
        settle(panel);
        expectTurning(false);
    }

private:
    static void settleWhileTurning(PanelUnderTest &panel)
    {
        QVERIFY(QTest::qWaitForWindowExposed(&panel.view()));
    }

    // A timer that fires nearly as often as the frames do tells when several would have been painted.
    static void expectTurning(bool turning)
    {
        const PaintCounter counter;
        int ticks = 0;
        QTimer frames;
        frames.callOnTimeout([&ticks] { ++ticks; });
        frames.start(20);
        if (turning)
            QTRY_VERIFY(counter.paintedNamed(u"Claude sessions"_s) >= 5);
        QTRY_VERIFY(ticks >= 10);
        if (!turning)
            QCOMPARE(counter.painted + counter.frames, 0);
    }
};

QTEST_MAIN(TestRepaints)
#include "tst_repaints.moc"
