#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QSignalSpy>
#include <QTest>

#include "Platform/Freedesktop/SessionBusNotifications.h"
#include "Platform/Freedesktop/StatusNotifierWatch.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

using Texts = QMap<QString, QString>;
using State = StatusNotifierWatch::State;

class Watcher : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered MEMBER hasHost)

public:
    explicit Watcher(QObject *exported) : QDBusAbstractAdaptor(exported) { }

    bool hasHost = false;

Q_SIGNALS:
    void StatusNotifierHostRegistered();
};

} // namespace

// What comes over the session bus from other programs, which may say anything at any time.
class TestBusAnnouncements : public QObject {
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

    void aStatusItemHostIsFoundWheneverItComesAndMissedWhenItGoes()
    {
        StatusNotifierWatch watch;
        QCOMPARE(watch.state(), State::Pending);
        QTRY_COMPARE(watch.state(), State::Absent);

        QObject exported;
        auto *watcher = new Watcher(&exported);
        QVERIFY(
            m_other.registerObject(u"/StatusNotifierWatcher"_s, &exported, QDBusConnection::ExportAdaptors));
        QVERIFY(m_other.registerService(u"org.kde.StatusNotifierWatcher"_s));
        QTRY_COMPARE(watch.state(), State::Pending);
        watcher->hasHost = true;
        Q_EMIT watcher->StatusNotifierHostRegistered();
        QTRY_COMPARE(watch.state(), State::Hosted);
        QVERIFY(m_other.unregisterService(u"org.kde.StatusNotifierWatcher"_s));
        QTRY_COMPARE(watch.state(), State::Absent);
    }
};

QTEST_GUILESS_MAIN(TestBusAnnouncements)
#include "tst_bus_announcements.moc"
