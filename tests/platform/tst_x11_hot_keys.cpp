#include <QGuiApplication>
#include <QProcess>
#include <QTest>

#include "Platform/X11/X11Connection.h"
#include "Platform/X11/X11HotKeys.h"
#include "Platform/X11/XcbXkb.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

constexpr auto ctrlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
constexpr xcb_keycode_t keyLeftOfS = 38; // A on an English keyboard, Q on a French one
constexpr xcb_keycode_t keyBelowOne = 24;
constexpr xcb_keycode_t keyS = 39;
constexpr xcb_keycode_t spaceBar = 65;

void run(const QString &command)
{
    const QStringList words = command.split(u' ', Qt::SkipEmptyParts);
    if (QProcess::execute(words.first(), words.sliced(1)) != 0)
        qFatal("%s failed", qPrintable(command));
}

void userDoes(const QString &keys)
{
    run(u"xdotool "_s + keys);
}

// Has grabs of its own, on a connection of its own.
class OtherProgram {
public:
    OtherProgram() : m_root(xcb_setup_roots_iterator(xcb_get_setup(m_x11)).data->root)
    {
        std::free(xcb_xkb_use_extension_reply(m_x11, xcb_xkb_use_extension(m_x11, 1, 0), nullptr));
    }
    ~OtherProgram() { xcb_disconnect(m_x11); }
    Q_DISABLE_COPY_MOVE(OtherProgram)

    bool grab(int state, xcb_keycode_t code) const
    {
        return isDone(xcb_grab_key_checked(
            m_x11, 0, m_root, static_cast<uint16_t>(state), code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    void ungrab(int state, xcb_keycode_t code) const
    {
        (void)isDone(xcb_ungrab_key_checked(m_x11, code, m_root, static_cast<uint16_t>(state)));
    }
    [[nodiscard]] bool findsTaken(int state, xcb_keycode_t code) const
    {
        if (!grab(state, code))
            return true;
        ungrab(state, code);
        return false;
    }
    void useLayout(uint8_t number) const
    {
        (void)isDone(
            xcb_xkb_latch_lock_state_checked(m_x11, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, number, 0, 0, 0));
    }

private:
    [[nodiscard]] bool isDone(xcb_void_cookie_t request) const
    {
        return !XcbReply<xcb_generic_error_t>(xcb_request_check(m_x11, request));
    }

    xcb_connection_t *m_x11 = xcb_connect(nullptr, nullptr);
    xcb_window_t m_root;
};

// Counts what the server tells of a key.
class KeyWatch : public QAbstractNativeEventFilter {
public:
    KeyWatch() { qApp->installNativeEventFilter(this); }

    int presses = 0;

private:
    bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override
    {
        presses += static_cast<xcb_generic_event_t *>(message)->response_type == XCB_KEY_PRESS ? 1 : 0;
        return false;
    }
};

} // namespace

// The keyboard of a real X server.
class TestX11HotKeys : public QObject {
    Q_OBJECT

private:
    OtherProgram m_other;
    std::unique_ptr<X11HotKeys> m_hotKeys;
    QList<quint32> m_pressed;

    // Space, A and S, under these ids. Says which of them are ours.
    QList<bool> grabAll()
    {
        m_hotKeys = std::make_unique<X11HotKeys>(X11Connection::ofThisProgram());
        connect(m_hotKeys.get(), &HotKeyService::pressed, this, [this](quint32 id) { m_pressed += id; });
        const Qt::Modifiers modifiers = Qt::CTRL | Qt::ALT;
        m_hotKeys->grab(1, modifiers | Qt::Key_Space);
        m_hotKeys->grab(2, modifiers | Qt::Key_A);
        m_hotKeys->grab(3, modifiers | Qt::Key_S);
        return grabbed();
    }
    [[nodiscard]] QList<bool> grabbed() const
    {
        return {m_hotKeys->isGrabbed(1), m_hotKeys->isGrabbed(2), m_hotKeys->isGrabbed(3)};
    }

private Q_SLOTS:
    void init()
    {
        run(u"setxkbmap us -option"_s);
        m_pressed.clear();
        QCOMPARE(grabAll(), QList<bool>({true, true, true}));
    }
    void cleanup()
    {
        m_hotKeys.reset();
        QTRY_VERIFY(!m_other.findsTaken(ctrlAlt, spaceBar));
    }

    void aPressIsToldWhateverLocksAreOnAndNothingElseIs()
    {
        QCOMPARE(QProcess::execute(u"xmodmap"_s, {u"-e"_s, u"add mod3 = Scroll_Lock"_s}), 0);
        QTRY_VERIFY(m_other.findsTaken(ctrlAlt | XCB_MOD_MASK_3, keyS));
        for (const QString &lock : {u""_s, u"Num_Lock"_s, u"Scroll_Lock"_s, u"Caps_Lock"_s}) {
            if (!lock.isEmpty())
                userDoes(u"key "_s + lock); // one after another, they stay on
            m_pressed.clear();
            for (const QString &other :
                 {u"ctrl+a"_s, u"ctrl+alt+shift+a"_s, u"super+ctrl+alt+a"_s, u"alt+a"_s})
                userDoes(u"key "_s + other);
            userDoes(
                u"keydown ctrl keydown alt key 39 key 39 key 65 keyup alt keyup ctrl key 38 key ctrl+alt+38"_s);
            QTRY_COMPARE(m_pressed, QList<quint32>({3, 3, 1, 2}));
        }
        userDoes(u"key Caps_Lock key Scroll_Lock key Num_Lock"_s);
    }

    void aHeldKeyIsPressedOnce()
    {
        run(u"xset r rate 100 50"_s);
        for (const uint32_t withoutReleases :
             {0U, uint32_t{XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT}}) {
            xcb_connection_t *ours = X11Connection::ofThisProgram()->get();
            const auto request = xcb_xkb_per_client_flags(
                ours, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                withoutReleases, 0, 0, 0);
            std::free(xcb_xkb_per_client_flags_reply(ours, request, nullptr));
            const KeyWatch watch;
            m_pressed.clear();
            userDoes(u"keydown ctrl keydown alt keydown 65"_s);
            QTRY_VERIFY(watch.presses >= 5);
            // What else is pressed meanwhile comes here, too, and the release without a modifier.
            userDoes(u"keyup alt key 38 keyup 65 keydown alt key 39 key 65 keyup alt keyup ctrl"_s);
            QTRY_COMPARE(m_pressed, QList<quint32>({1, 3, 1}));
        }
    }

    void keysFollowTheirSymbols()
    {
        run(u"setxkbmap fr"_s);
        QTRY_VERIFY(!m_other.findsTaken(ctrlAlt, keyLeftOfS));
        userDoes(u"key ctrl+alt+24 key ctrl+alt+38 key ctrl+alt+39"_s);
        QTRY_COMPARE(m_pressed, QList<quint32>({2, 3}));

        run(u"setxkbmap us,fr,ru"_s); // one of them is in use
        QTRY_VERIFY(m_other.findsTaken(ctrlAlt, keyLeftOfS));
        for (const auto &[layout, code] :
             {std::pair<uint8_t, xcb_keycode_t>(1, keyBelowOne), {2, keyLeftOfS}}) {
            m_other.useLayout(layout);
            QTRY_VERIFY(m_other.findsTaken(ctrlAlt, code));
            QVERIFY(m_other.findsTaken(ctrlAlt, keyLeftOfS) != m_other.findsTaken(ctrlAlt, keyBelowOne));
            QVERIFY(m_other.findsTaken(ctrlAlt, spaceBar));
        }
        userDoes(u"key ctrl+alt+38"_s);
        QTRY_COMPARE(m_pressed, QList<quint32>({2, 3, 2}));
        m_other.useLayout(0);
    }

    void anotherProgramsCombinationStaysWithItUntilItLetsGo()
    {
        m_hotKeys.reset();
        QVERIFY(m_other.grab(ctrlAlt | XCB_MOD_MASK_LOCK, spaceBar)); // one of its states is enough
        QCOMPARE(grabAll(), QList<bool>({false, true, true}));
        QVERIFY(!m_other.findsTaken(ctrlAlt, spaceBar));
        userDoes(u"key ctrl+alt+65 key ctrl+alt+38"_s);
        QTRY_COMPARE(m_pressed, QList<quint32>{2});

        m_other.ungrab(ctrlAlt | XCB_MOD_MASK_LOCK, spaceBar);
        QVERIFY(m_other.grab(ctrlAlt, keyBelowOne)); // where A comes to be
        run(u"setxkbmap fr"_s);
        QTRY_COMPARE(grabbed(), QList<bool>({true, false, true}));
        m_other.ungrab(ctrlAlt, keyBelowOne);
    }
};

QTEST_MAIN(TestX11HotKeys)
#include "tst_x11_hot_keys.moc"
