#include <QSignalSpy>
#include <QTest>

#include "Platform/Freedesktop/FreedesktopNotices.h"
#include "platform/NoticeServer.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

const Notice hedge{.title = u"Plant <the> hedge"_s, .text = u"Where & \"when\"?"_s, .action = u"Go"_s};

QString titleOf(const QVariantList &posted)
{
    return posted.at(3).toString();
}

} // namespace

class TestDesktopNotices : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_server = std::make_unique<NoticeServer>(u"a server"_s);
        QVERIFY(m_server->own());
        m_notices = std::make_unique<FreedesktopNotices>();
    }

    void cleanup()
    {
        m_notices.reset();
        m_server.reset();
    }

    void whatIsSentIsWhatTheServerCanShow()
    {
        struct Row {
            QStringList capabilities;
            QString sound, text;
            QStringList actions;
        };
        for (const auto &row :
             {Row{{u"actions"_s}, {}, hedge.text, {u"default"_s, u"Go"_s}},
              Row{{u"body-markup"_s}, u"bell"_s, u"Where &amp; &quot;when&quot;?"_s, {}}}) {
            cleanup();
            init();
            m_server->capabilities = row.capabilities;
            Notice notice = hedge;
            notice.sound = row.sound;
            m_notices->post(7, notice);
            QTRY_COMPARE(m_server->posted.size(), 1);
            const QVariantList &posted = m_server->posted.first();
            const auto icon = u"com.brevandel.nubble"_s;
            QCOMPARE(
                posted.first(6), (QVariantList{u"Nubble"_s, 0U, icon, hedge.title, row.text, row.actions}));
            QVariantMap hints{{u"desktop-entry"_s, icon}, {u"urgency"_s, QVariant::fromValue(uchar{1})}};
            hints.insert(
                row.sound.isEmpty() ? u"suppress-sound"_s : u"sound-name"_s,
                row.sound.isEmpty() ? QVariant(true) : row.sound);
            QCOMPARE(posted.at(6).toMap(), hints);
            QCOMPARE(posted.at(7).toInt(), -1);
        }
    }

    void oneIsReplacedAndWithdrawnAndClosedOnesAreForgotten()
    {
        post(7);
        post(8);
        m_notices->post(7, hedge);
        QTRY_COMPARE(m_server->posted.size(), 3);
        QCOMPARE(m_server->posted.last().at(1).toUInt(), 1U);
        QCOMPARE(m_server->questions, 1);
        m_server->tell(u"NotificationClosed"_s, {1U, 2U});
        untilClicked(2);        // and so the other is heard as well
        m_notices->withdraw(7); // nothing any more
        m_notices->withdraw(8);
        m_notices->withdraw(9);
        QTRY_COMPARE(m_server->closed, QList<quint32>{2});
        post(7); // as a new one
        QCOMPARE(m_server->posted.last().at(1).toUInt(), 0U);
        untilClicked(3);   // and so its number is known
        m_notices.reset(); // whose notices go with it
        QTRY_COMPARE(m_server->closed, (QList<quint32>{2, 3}));
    }

    void aClickIsTheServersAndBringsItsToken()
    {
        NoticeServer other(u"another program"_s);
        post(7);
        post(8);
        QSignalSpy chosen(m_notices.get(), &DesktopNotices::chosen);
        other.tell(u"ActionInvoked"_s, {2U, u"default"_s});
        m_server->tell(u"ActivationToken"_s, {2U, u"token"_s});
        m_server->tell(u"ActionInvoked"_s, {2U, 3});
        m_server->tell(u"ActionInvoked"_s, {2U, u"other"_s});
        m_server->tell(u"ActionInvoked"_s, {9U, u"default"_s}); // another program's, whose token it was not
        m_server->tell(u"ActivationToken"_s, {1U, u"token"_s});
        m_server->tell(u"ActionInvoked"_s, {2U, u"default"_s});
        m_server->tell(u"ActivationToken"_s, {1U, u"mine"_s});
        m_server->tell(u"ActionInvoked"_s, {1U, u"default"_s});
        QTRY_COMPARE(chosen.count(), 2);
        QCOMPARE(chosen.at(0), (QVariantList{8U, QByteArray()}));
        QCOMPARE(chosen.at(1), (QVariantList{7U, QByteArray("mine")}));
    }

    void oneThatHangsHoldsASingleCallAndGetsLaterOnlyWhatStillCounts()
    {
        m_server->holdsBack = true;
        for (const quint32 id : {1U, 2U, 3U})
            m_notices->post(id, {.title = QString::number(id)});
        QTRY_COMPARE(m_server->held.size(), 1);
        m_server->answer(); // that tells what it can
        QTRY_COMPARE(m_server->held.size(), 1);
        m_notices->withdraw(1); // on its way
        m_notices->withdraw(2);
        m_notices->post(3, {.title = u"new"_s});
        m_server->holdsBack = false;
        m_server->answer();
        QTRY_COMPARE(m_server->posted.size(), 2);
        QCOMPARE(titleOf(m_server->posted.first()), u"1"_s);
        QCOMPARE(titleOf(m_server->posted.last()), u"new"_s);
        QTRY_COMPARE(m_server->closed, QList<quint32>{1});
    }

    void answersThatAreNoneAreHarmless()
    {
        for (const QVariant &odd : {QVariant(), QVariant(u"text"_s), QVariant(0U), QVariant(QVariantMap())}) {
            m_server->odd = odd;
            const qsizetype before = m_server->questions + m_server->posted.size();
            m_notices->post(7, hedge);
            QTRY_VERIFY((m_notices->post(8, hedge), m_server->questions + m_server->posted.size() > before));
            m_notices->withdraw(7);
        }
        m_server->odd.reset();
        QTRY_VERIFY((m_notices->post(9, hedge), m_notices->withdraw(9), !m_server->closed.isEmpty()));
    }

    void aServerMayGoComeAndBeReplaced()
    {
        post(7);
        NoticeServer next(u"the next server"_s);
        QVERIFY(m_server->own(false) && next.own());
        QTRY_VERIFY((m_notices->post(7, hedge), !next.posted.isEmpty()));
        QCOMPARE(next.posted.first().at(1).toUInt(), 0U); // the other's ids are not this one's

        next.holdsBack = true; // and it goes without an answer
        m_notices->post(8, hedge);
        QTRY_VERIFY(!next.held.isEmpty());
        QVERIFY(next.own(false) && m_server->own());
        const qsizetype before = m_server->posted.size();
        QTRY_VERIFY((m_notices->post(9, hedge), m_server->posted.size() > before));
        next.answer(); // too late
        untilClicked(m_server->newest());
        QVERIFY(m_server->closed.isEmpty() && next.closed.isEmpty());
    }

private:
    void post(quint32 id)
    {
        const qsizetype before = m_server->posted.size();
        m_notices->post(id, hedge);
        QTRY_COMPARE(m_server->posted.size(), before + 1);
    }
    void untilClicked(quint32 serverId)
    {
        const QSignalSpy chosen(m_notices.get(), &DesktopNotices::chosen);
        m_server->tell(u"ActionInvoked"_s, {serverId, u"default"_s});
        QTRY_COMPARE(chosen.count(), 1);
    }

    std::unique_ptr<NoticeServer> m_server;
    std::unique_ptr<FreedesktopNotices> m_notices;
};

QTEST_GUILESS_MAIN(TestDesktopNotices)
#include "tst_desktop_notices.moc"
