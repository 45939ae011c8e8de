#include <QSignalSpy>
#include <QTest>

#include "Sessions/SessionMonitor.h"
#include "sessions/SessionFixtures.h"
#include "support/FakeProcessTable.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;

namespace nubble {

class SessionDetailsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void followsTheMonitorAndNotifiesOnlyOfChanges();
    void publishesWhatItIsWaitedFor();
    void forgetsSessionsThatAreGone();
    void goesAwayWhileItIsReading();

private:
    TemporaryHome m_home;
    ManualClock m_clock;
};

void SessionDetailsTest::followsTheMonitorAndNotifiesOnlyOfChanges()
{
    FakeProcessTable processes;
    processes.alive = {7};
    m_home.write(u"sessions/7.json"_s, recordJson(7, u"a"_s, u"busy"_s));
    const QString transcript = m_home.write(u"projects/-tmp-my-app/a.jsonl"_s, titleLine("first"));
    SessionMonitor monitor(m_home.path(u"sessions"_s), m_home.path(u"projects"_s), processes, m_clock);
    QSignalSpy changed(&monitor.details(), &SessionDetails::byIdChanged);
    QTRY_COMPARE(monitor.details().byId().value(u"a"_s).title, u"first"_s);
    monitor.refresh();
    monitor.details().waitForDone();
    QCOMPARE(changed.count(), 1);
    append(transcript, titleLine("second"));
    QTRY_COMPARE(monitor.details().byId().value(u"a"_s).title, u"second"_s);
    QCOMPARE(changed.count(), 2);
}

void SessionDetailsTest::publishesWhatItIsWaitedFor()
{
    m_home.write(u"projects/-tmp-my-app/a.jsonl"_s, titleLine("t"));
    SessionDetails details(m_home.path(u"projects"_s), m_clock);
    for (int i = 0; i < 100; ++i)
        details.update({sessionOf(u"a"_s), sessionOf(u"b"_s)}, i % 2 == 0);
    details.waitForDone();
    QCOMPARE(details.byId(), (QHash<QString, SessionDetail>{{u"a"_s, {u"t"_s, std::nullopt}}}));
}

void SessionDetailsTest::forgetsSessionsThatAreGone()
{
    m_home.write(u"projects/-tmp-my-app/a.jsonl"_s, titleLine("t"));
    SessionDetails details(m_home.path(u"projects"_s), m_clock);
    details.update({sessionOf(u"a"_s)}, false);
    details.waitForDone();
    QCOMPARE(details.byId().size(), 1);
    details.update({}, false);
    details.waitForDone();
    QCOMPARE(details.byId().size(), 0);
}

void SessionDetailsTest::goesAwayWhileItIsReading()
{
    QList<ClaudeSession> sessions;
    for (int i = 0; i < 200; ++i) {
        sessions.append(sessionOf(QString::number(i)));
        m_home.write(u"projects/-tmp-my-app/%1.jsonl"_s.arg(i), typedLine("x").repeated(5000));
    }
    for (int round = 0; round < 10; ++round) {
        SessionDetails details(m_home.path(u"projects"_s), m_clock);
        details.update(sessions, false);
        details.update(sessions, true);
    }
    QCoreApplication::processEvents();
}

} // namespace nubble

QTEST_GUILESS_MAIN(nubble::SessionDetailsTest)
#include "tst_session_details.moc"
