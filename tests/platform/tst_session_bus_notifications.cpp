#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QSignalSpy>
#include <QTest>

#include "Platform/Freedesktop/SessionBusNotifications.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

using Texts = QMap<QString, QString>;

} // namespace

class TestSessionBusNotifications : public QObject {
    Q_OBJECT

private:
    QDBusConnection m_other =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"another program"_s);

    void send(const QString &name, const QVariantList &arguments)
    {
        auto signal = QDBusMessage::createSignal(u"/any/path"_s, u"com.brevandel.nubble"_s, name);
        signal.setArguments(arguments);
        QVERIFY(m_other.send(signal));
    }

private Q_SLOTS:
    void initTestCase() { qDBusRegisterMetaType<Texts>(); }

    void theTextsOfANotificationArriveWhateverElseIsInIt()
    {
        SessionBusNotifications notifications;
        QSignalSpy spy(&notifications, &DistributedNotifications::received);
        const auto receive = [&](const QString &name, const QVariantList &arguments) {
            send(name, arguments);
            [&] { QTRY_COMPARE(spy.count(), 1); }();
            const QList<QVariant> last = spy.takeFirst();
            return last.at(0).toString() == name ? last.at(1).value<Texts>() : Texts{{u"name"_s, u"wrong"_s}};
        };
        const auto question = u"question"_s;
        const Texts texts{{question, u"Wer weiß? 🙂"_s}};
        QCOMPARE(receive(u"ask"_s, {QVariantMap{{question, texts[question]}, {u"n"_s, 3}}}), texts); // a{sv}
        QCOMPARE(receive(u"ask"_s, {QVariant::fromValue(texts)}), texts);                            // a{ss}
        QCOMPARE(receive(u"notes"_s, {QVariantMap{{u"action"_s, 7}}}), Texts());
        QCOMPARE(receive(u"ask"_s, {QVariantMap{{question, QVariantMap{{u"a"_s, 1}}}}}), Texts());
        QCOMPARE(receive(u"ask"_s, {QVariantMap{{question, QStringList{u"a"_s}}}}), Texts());
        QCOMPARE(receive(u"ask"_s, {}), Texts());
        QCOMPARE(receive(u"ask"_s, {texts[question]}), Texts());
        QCOMPARE(receive(u"ask"_s, {QVariantMap{{question, u"one"_s}}, 2}), Texts());
        send(u"other"_s, {});
        QCOMPARE(receive(u"notes"_s, {}), Texts()); // and nothing before it
    }
};

QTEST_GUILESS_MAIN(TestSessionBusNotifications)
#include "tst_session_bus_notifications.moc"
