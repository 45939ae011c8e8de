#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <atomic>

#include "Sessions/NextSession.h"
#include "Sessions/NoticePreferences.h"
#include "Sessions/SessionNotices.h"
#include "support/FakeDesktopNotices.h"
#include "support/PanelWorld.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

namespace {

// Sessions, the desktop, and what it shows of them.
struct Calls : PanelWorld {
    explicit Calls(const QByteArray &stored = {}) : PanelWorld(stored)
    {
        for (const pid_t pid : {11, 12})
            workspace.applications.append({.pid = pid, .identifier = {}, .name = {}});
    }

    // What they do from now on.
    void set(const QList<std::pair<pid_t, QString>> &states)
    {
        for (const auto &[pid, status] : states)
            addSession(
                pid, u"Hedge %1"_s.arg(pid), status, 0ms, {{u"waitingFor"_s, u"a\n\u202epermission"_s}});
        readSessions();
    }

    // After they have worked for so long.
    void setAfter(std::chrono::milliseconds length, const QList<std::pair<pid_t, QString>> &states)
    {
        set({{11, u"busy"_s}, {12, u"busy"_s}});
        clock.advance(length);
        set(states);
    }

    [[nodiscard]] QStringList shown() const
    {
        QStringList texts;
        for (const Notice &each : desktop.up)
            texts.append(each.title + u" | "_s + each.text);
        texts.sort();
        return texts;
    }

    [[nodiscard]] quint32 idOf(const QString &title) const
    {
        for (auto each = desktop.up.cbegin(); each != desktop.up.cend(); ++each)
            if (each->title == title)
                return each.key();
        return 0;
    }

    FakeDesktopNotices desktop;
    SessionNotices notices{monitor, activator, desktop, defaults};
};

const auto busy = u"busy"_s, waiting = u"waiting"_s, idle = u"idle"_s;

} // namespace

class TestSessionNotices : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oneThatWaitsOrIsDoneIsShownASecondLaterUntilItGoesOn()
    {
        Calls calls;
        calls.set({{13, waiting}}); // since before
        calls.setAfter(31s, {{11, waiting}});
        QTest::qWait(100);
        QElapsedTimer time;
        time.start();
        calls.setAfter(31s, {{11, waiting}, {12, idle}});
        const QStringList both{u"Hedge 11 | Waits for you: a permission"_s, u"Hedge 12 | Done"_s};
        QTRY_VERIFY(!calls.desktop.up.isEmpty());
        QVERIFY(time.elapsed() >= 1000);
        QTRY_COMPARE(calls.shown(), both);
        QCOMPARE(calls.desktop.up.first().action, u"Bring forward"_s);
        QCOMPARE(calls.desktop.up.first().sound, QString());

        const quint32 id = calls.idOf(u"Hedge 12"_s);
        calls.set({{12, waiting}}); // is shown in the place of the other
        QTRY_COMPARE(calls.shown().value(1), u"Hedge 12 | Waits for you: a permission"_s);
        QCOMPARE(calls.idOf(u"Hedge 12"_s), id);
        calls.set({{11, busy}});
        QCOMPARE(calls.shown().size(), 1);
        NoticePreferences::setOn(calls.defaults, false);
        calls.notices.follow();
        QVERIFY(calls.desktop.up.isEmpty());
        NoticePreferences::setOn(calls.defaults, true);
        calls.set({{12, busy}});
        calls.set({{12, waiting}});
        QTRY_COMPARE(calls.shown().size(), 1);
        calls.endSession(12);
        calls.readSessions();
        QVERIFY(calls.desktop.up.isEmpty());
        QCOMPARE(calls.desktop.posts, 4);
    }

    void onlyWhatIsWantedIsShownAndNothingOfASessionThatIsInFrontOrGoesOnAtOnce()
    {
        struct Row {
            QByteArray preferences;
            std::chrono::milliseconds length;
            QStringList sounds; // of what is shown
        };
        const Row rows[]{
            {"", 30s, {{}}},
            {"notifications.doneAfter=-1\nnotifications.waiting=no\nnotifications.sound=1\n", 31s, {{}, {}}},
            {"notifications.doneAfter=1e9\nnotifications.sound=true\n",
             31s,
             {u"message-new-instant"_s, u"complete"_s}},
            {"notifications.doneAfter=9.5\nnotifications.waiting=false\n", 10s, {{}}},
            {"notifications.waiting=false\n", 30s, {}},
            {"notifications.done=false\n", 31s, {{}}}};
        std::vector<std::unique_ptr<Calls>> worlds;
        for (const Row &row : rows) {
            worlds.push_back(std::make_unique<Calls>(row.preferences));
            worlds.back()->setAfter(row.length, {{11, waiting}, {12, idle}});
        }
        Calls silent;
        silent.workspace.front = silent.workspace.applications.first();
        silent.setAfter(31s, {{11, waiting}, {12, idle}, {13, waiting}});
        silent.set({{12, busy}});
        silent.set({{13, busy}});
        Calls last;
        last.setAfter(31s, {{11, waiting}});
        QTRY_COMPARE(last.desktop.posts, 1);
        for (size_t i = 0; i < worlds.size(); ++i) {
            worlds[i]->activator.waitForDone();
            QStringList sounds;
            for (const Notice &each : worlds[i]->desktop.up)
                sounds.append(each.sound);
            QCOMPARE(sounds, rows[i].sounds);
        }
        silent.activator.waitForDone();
        QCOMPARE(silent.desktop.posts, 0);
    }

    void aClickBringsForwardWithTheTokenOrSaysWhyNotAndWhatCameForwardIsGone()
    {
        Calls calls;
        calls.setAfter(31s, {{11, waiting}, {12, waiting}});
        QTRY_COMPARE(calls.desktop.up.size(), 2);
        const quint32 first = calls.idOf(u"Hedge 11"_s);
        const quint32 second = calls.idOf(u"Hedge 12"_s);
        calls.workspace.allowed = false;
        Q_EMIT calls.desktop.chosen(first, {});
        QTRY_VERIFY(calls.desktop.up.value(first).action.isEmpty());
        QVERIFY(calls.shown().first().contains(u"This desktop"_s));
        calls.workspace.allowed = true;
        Q_EMIT calls.desktop.chosen(99, {}); // nobody's
        Q_EMIT calls.desktop.chosen(first, "token");
        QTRY_COMPARE(calls.desktop.up.keys(), QList<quint32>{second});
        QCOMPARE(calls.workspace.wanted.token, QByteArray("token"));
        calls.activator.activate({.pid = 12}, [](const Outcome &) {}); // as by its row
        QTRY_VERIFY(calls.desktop.up.isEmpty());
        QCOMPARE(calls.workspace.activated, (QList<pid_t>{11, 12}));
    }

    void manyAtOnceAreOneNoticeThatOpensTheList()
    {
        Calls calls;
        QList<std::pair<pid_t, QString>> states;
        for (pid_t pid = 101; pid <= 200; ++pid)
            states.append({pid, waiting});
        calls.setAfter(31s, {});
        states.append({12, idle});
        calls.set(states);
        QTRY_COMPARE(calls.shown(), QStringList(u"100 sessions wait for you, 1 session has finished | "_s));
        calls.set({{11, waiting}}); // by itself
        QTRY_COMPARE(calls.desktop.up.size(), 2);
        QCOMPARE(calls.desktop.posts, 2);
        for (auto &state : states)
            state.second = state.first < 199 ? busy : waiting;
        calls.set(states);
        QCOMPARE(calls.desktop.up.size(), 2); // two wait on
        const QSignalSpy list(&calls.notices, &SessionNotices::listRequested);
        Q_EMIT calls.desktop.chosen(calls.desktop.up.firstKey(), {});
        QCOMPARE(list.count(), 1);
        QCOMPARE(calls.shown(), QStringList(u"Hedge 11 | Waits for you: a permission"_s));
    }

    void theNextIsTheOneThatHasWaitedLongestThenTheLastThatFinishedAndIsUnseen()
    {
        PanelWorld world;
        for (const pid_t pid : {1, 2, 3, 5}) // 4 has no window
            world.workspace.applications.append({.pid = pid, .identifier = {}, .name = {}});
        NextSession next(world.monitor, world.activator, world.clock);
        const auto set = [&world](pid_t pid, const QString &state) {
            world.clock.advance(1s);
            world.addSession(pid, {}, state, 0ms);
            world.readSessions();
        };
        const auto came = [&]() -> QString {
            QString why = u"?"_s;
            world.workspace.activated.clear();
            next.bringForward([&why](const Outcome &outcome) { why = outcome.why(); });
            const bool isTold = QTest::qWaitFor([&why] { return why != u"?"_s; });
            if (!isTold || world.workspace.activated.isEmpty())
                return why;
            world.workspace.front = {.pid = world.workspace.activated.last(), .identifier = {}, .name = {}};
            return QString::number(world.workspace.activated.last());
        };
        QCOMPARE(came(), u"no session needs you"_s);
        for (const pid_t pid : {1, 2, 3, 4, 5, 6})
            set(pid, busy);
        set(4, waiting);
        world.processes.known.insert(6, {});
        set(6, waiting);
        QCOMPARE(came(), u"Its process has ended"_s); // of the first
        set(3, waiting);
        set(1, waiting);
        set(5, idle);
        set(2, idle);
        QStringList order;
        for (int i = 0; i < 3; ++i)
            order.append(came());
        QCOMPARE(order, QStringList({u"3"_s, u"1"_s, u"3"_s})); // they wait on
        for (const pid_t pid : {4, 6, 3, 1})
            set(pid, busy);
        world.workspace.allowed = false;
        QVERIFY(came().contains(u"This desktop"_s));
        world.workspace.allowed = true;
        order.clear();
        for (int i = 0; i < 3; ++i)
            order.append(came());
        QCOMPARE(order, QStringList({u"2"_s, u"5"_s, u"no session needs you"_s}));
        set(5, busy);
        set(5, idle);
        QCOMPARE(came(), u"no session needs you"_s); // it is in front
        world.workspace.front.reset();
        set(5, busy);
        QCOMPARE(came(), u"no session needs you"_s);
        set(5, idle);
        QCOMPARE(came(), u"5"_s);

        for (const pid_t pid : {4, 6, 3, 2})
            set(pid, waiting);
        std::atomic<int> asked = 0;
        const auto slowly = [&asked](pid_t) -> std::optional<pid_t> {
            QThread::msleep(1100);
            ++asked;
            return std::nullopt;
        };
        ProcessActivator activator(world.workspace, {world.processes, slowly, {}});
        NextSession late(world.monitor, activator, world.clock);
        bool isTold = false;
        late.bringForward([&isTold](const Outcome &) { isTold = true; });
        QTRY_VERIFY(isTold);
        QVERIFY(asked <= 2); // of the first, and no more
    }
};

QTEST_MAIN(TestSessionNotices)
#include "tst_session_notices.moc"
