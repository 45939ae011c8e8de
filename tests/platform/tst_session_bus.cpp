#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>

#include <future>

#include "Platform/Freedesktop/FreedesktopPreferences.h"
#include "Platform/Freedesktop/SessionBus.h"
#include "platform/PrivateDesktop.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

const auto serviceName = u"com.brevandel.nubble.test"_s;

class Control : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.brevandel.nubble.Control")

public:
    explicit Control(QObject *exported) : QDBusAbstractAdaptor(exported) { }

public Q_SLOTS:
    QString repeat(const QString &text) { return text + text; }
};

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
    void onlyOneProcessOwnsTheName()
    {
        QObject exported;
        SessionBus bus(serviceName);
        QVERIFY(bus.isConnected());
        QVERIFY(m_other.registerService(serviceName));
        QVERIFY(!bus.claim(&exported));
        QVERIFY(m_other.unregisterService(serviceName));
        QVERIFY(bus.claim(&exported));
        QVERIFY(!m_other.registerService(serviceName));
        bus.release();
        QVERIFY(m_other.registerService(serviceName));
        QVERIFY(m_other.unregisterService(serviceName));
    }

    void othersCallTheOwner()
    {
        QObject exported;
        new Control(&exported);
        SessionBus owner(serviceName);
        const auto ask = [](const QString &method) {
            // From another thread, because this one has to answer.
            auto answer = std::async(
                std::launch::async, [&] { return SessionBus(serviceName).call(method, {u"ab"_s}, 5000); });
            while (answer.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready)
                QCoreApplication::processEvents();
            return answer.get();
        };
        QCOMPARE(ask(u"repeat"_s), std::nullopt);
        QVERIFY(owner.claim(&exported));
        QCOMPARE(ask(u"repeat"_s), std::optional(QVariantList{u"abab"_s}));
        QCOMPARE(ask(u"noSuchMethod"_s), std::nullopt);
    }

    void aMachineWithoutABusHasNoOwner()
    {
        const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
        const QByteArray runtimeFolder = qgetenv("XDG_RUNTIME_DIR");
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        qputenv("XDG_RUNTIME_DIR", "/nonexistent");
        QObject exported;
        SessionBus bus(serviceName);
        QVERIFY(!bus.isConnected());
        QVERIFY(bus.claim(&exported));
        QCOMPARE(bus.call(u"repeat"_s, {}, 1000), std::nullopt);
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        qputenv("XDG_RUNTIME_DIR", runtimeFolder);
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
            "[General]\nAnimationDurationFactor=1\n\n[KDE]\nAnimationDurationFactor=0\n");
        const FreedesktopPreferences preferences(home.home());
        QTRY_VERIFY(preferences.reducedMotion());
    }

    void kdeFilesMeanWhatTheySay_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("off");
        QTest::newRow("nothing") << QByteArray() << false;
        QTest::newRow("slower") << QByteArray("[KDE]\nAnimationDurationFactor=0.5\n") << false;
        QTest::newRow("another group") << QByteArray("[KDE]\n[Other]\nAnimationDurationFactor=0\n") << false;
        QTest::newRow("no number") << QByteArray("[KDE]\nAnimationDurationFactor=\n") << false;
        QTest::newRow("spaces") << QByteArray(" [KDE]\r\n AnimationDurationFactor = 0.0 \r\n") << true;
    }
    void kdeFilesMeanWhatTheySay()
    {
        QFETCH(QByteArray, text);
        QTEST(kdeAnimationsAreOff(text), "off");
    }
};

int main(int argc, char *argv[])
{
    const PrivateSessionBus bus;
    QCoreApplication application(argc, argv);
    TestSessionBus test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_session_bus.moc"
