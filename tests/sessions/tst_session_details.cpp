#include <QTest>

#include "Sessions/SessionDetails.h"
#include "sessions/SessionFixtures.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class SessionDetailsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void publishesWhatItIsWaitedFor()
    {
        m_home.write(u"projects/-tmp-my-app/a.jsonl"_s, titleLine("t"));
        SessionDetails details(m_home.path(u"projects"_s), m_clock);
        for (int i = 0; i < 100; ++i)
            details.update({sessionOf(u"a"_s), sessionOf(u"b"_s)}, i % 2 == 0);
        details.waitForDone();
        QCOMPARE(details.byId(), (QHash<QString, SessionDetail>{{u"a"_s, {u"t"_s, std::nullopt}}}));
        details.update({}, false); // the sessions are gone
        details.waitForDone();
        QCOMPARE(details.byId().size(), 0);
    }

    void goesAwayWhileItIsReading()
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

private:
    TemporaryHome m_home;
    ManualClock m_clock;
};

QTEST_GUILESS_MAIN(SessionDetailsTest)
#include "tst_session_details.moc"
