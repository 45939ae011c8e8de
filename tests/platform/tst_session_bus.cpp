#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>

#include "Platform/Freedesktop/FreedesktopPreferences.h"
#include "Platform/Freedesktop/SessionBus.h"
#include "Platform/Freedesktop/SessionBusNotifications.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

namespace {

class Portal : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit Portal(QObject *exported) : QDBusAbstractAdaptor(exported) { }

    bool animations = false;

public Q_SLOTS:
    QDBusVariant Read(const QString &group, const QString &key)
    {
        const bool known = group == u"org.gnome.desktop.interface" && key == u"enable-animations";
        const QVariant value = known ? QVariant(animations) : QVariant(u"unknown"_s);
        return QDBusVariant(QVariant::fromValue(QDBusVariant(value))); // wrapped twice, as the real one does
    }
};

} // namespace

class TestSessionBus : public QObject {
    Q_OBJECT

private:
    QDBusConnection m_other =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"another process"_s);

private Q_SLOTS:
    void aCallTellsWhyItIsNotAnswered()
    {
        const SessionBus bus(u"com.brevandel.nubble.test"_s);
        QCOMPARE(bus.call(u"Repeat"_s, {}, 1s).kind, BusAnswer::Kind::NotOwned);

        QVERIFY(m_other.registerService(u"com.brevandel.nubble.test"_s));
        const BusAnswer refused = bus.call(u"Repeat"_s, {}, 1s);
        QCOMPARE(refused.kind, BusAnswer::Kind::Error);
        QVERIFY(refused.error.contains(u"/com/brevandel/nubble"_s)); // which it does not have

        QObject busy; // this thread serves it, and is waiting
        const auto path = u"/com/brevandel/nubble"_s;
        QVERIFY(m_other.registerObject(path, &busy, QDBusConnection::ExportAllInvokables));
        QCOMPARE(bus.call(u"Repeat"_s, {}, 50ms).kind, BusAnswer::Kind::Silence);
        m_other.unregisterObject(path);
        QVERIFY(m_other.unregisterService(u"com.brevandel.nubble.test"_s));
    }

    void reducedMotionComesFromThePortalAndFollowsIt()
    {
        QObject exported;
        auto *portal = new Portal(&exported);
        const auto path = u"/org/freedesktop/portal/desktop"_s;
        QVERIFY(m_other.registerObject(path, &exported, QDBusConnection::ExportAdaptors));
        QVERIFY(m_other.registerService(u"org.freedesktop.portal.Desktop"_s));

        const TemporaryHome home;
        FreedesktopPreferences preferences(home.home());
        const QSignalSpy changes(&preferences, &DesktopPreferences::reducedMotionChanged);
        QVERIFY(!preferences.reducedMotion()); // until the answer comes
        QTRY_VERIFY(preferences.reducedMotion());

        portal->animations = true;
        const auto tell = [&](const QString &key, const QVariant &value) {
            auto signal =
                QDBusMessage::createSignal(path, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
            signal.setArguments(
                {u"org.gnome.desktop.interface"_s, key, QVariant::fromValue(QDBusVariant(value))});
            QVERIFY(m_other.send(signal));
        };
        tell(u"enable-animations"_s, u"nonsense"_s);
        tell(u"cursor-blink"_s, true);
        tell(u"enable-animations"_s, true);
        QTRY_VERIFY(!preferences.reducedMotion());
        tell(u"enable-animations"_s, false);
        QTRY_VERIFY(preferences.reducedMotion());
        QCOMPARE(changes.count(), 3);
        QVERIFY(m_other.unregisterService(u"org.freedesktop.portal.Desktop"_s));
        m_other.unregisterObject(path);
    }

    void withoutAPortalReducedMotionComesFromKde()
    {
        const TemporaryHome home;
        home.write(
            u".config/kdeglobals"_s,
            "[General]\nAnimationDurationFactor=1\n\n [KDE]\r\n AnimationDurationFactor = 0.0 \r\n");
        const FreedesktopPreferences preferences(home.home());
        QTRY_VERIFY(preferences.reducedMotion());
        for (const auto *file :
             {"[KDE]\nAnimationDurationFactor=0.5\n", "[KDE]\n[Other]\nAnimationDurationFactor=0\n",
              "[KDE]\nAnimationDurationFactor=\n"})
            QVERIFY2(!kdeAnimationsAreOff(file), file);
    }

    void theTextsOfANotificationArriveWhateverElseIsInIt()
    {
        using Texts = QMap<QString, QString>;
        qDBusRegisterMetaType<Texts>();
        SessionBusNotifications notifications;
        const QSignalSpy spy(&notifications, &DistributedNotifications::received);
        const auto question = u"question"_s;
        const Texts texts{{question, u"Wer weiß? 🙂"_s}}, none;
        using Row = std::tuple<QString, QVariantList, Texts>;
        int received = 0;
        for (const auto &[name, arguments, expected] :
             {Row(u"ask"_s, {QVariantMap{{question, texts[question]}, {u"n"_s, 3}}}, texts), // a{sv}
              Row(u"ask"_s, {QVariant::fromValue(texts)}, texts),                            // a{ss}
              Row(u"ask"_s, {QVariantMap{{question, QVariantMap{{u"a"_s, 1}}}}}, none),
              Row(u"ask"_s, {texts[question]}, none),
              Row(u"ask"_s, {QVariantMap{{question, u"one"_s}}, 2}, none),
              Row(u"other"_s, {}, none), // which is nobody's
              Row(u"notes"_s, {}, none)}) {
            auto signal = QDBusMessage::createSignal(u"/any/path"_s, u"com.brevandel.nubble"_s, name);
            signal.setArguments(arguments);
            QVERIFY(m_other.send(signal));
            if (name == u"other"_s)
                continue;
            ++received;
            QTRY_COMPARE(spy.count(), received);
            QCOMPARE(spy.last().at(0).toString(), name);
            QCOMPARE(spy.last().at(1).value<Texts>(), expected);
        }
    }
};

QTEST_GUILESS_MAIN(TestSessionBus)
#include "tst_session_bus.moc"
