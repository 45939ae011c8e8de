#include "Platform/Backend.h"

#include <QGuiApplication>
#include <QImage>
#include <QWidget>

#include "Platform/DesktopStatusHost.h"
#include "Platform/Freedesktop/FreedesktopNotices.h"
#include "Platform/Freedesktop/FreedesktopPreferences.h"
#include "Platform/Freedesktop/ScreenLock.h"
#include "Platform/Freedesktop/SessionBusNotifications.h"
#include "Platform/Freedesktop/StatusNotifierWatch.h"
#include "Platform/Home.h"
#include "Platform/Logging.h"
#include "Platform/MainThread.h"
#include "Platform/PlainFloatingSurface.h"
#include "Platform/X11/X11Connection.h"
#include "Platform/X11/X11FloatingSurface.h"
#include "Platform/X11/X11HotKeys.h"
#include "Platform/X11/X11KeyboardFocus.h"
#include "Platform/X11/X11MouseMonitor.h"
#include "Platform/X11/X11PanelSurface.h"
#include "Platform/X11/X11ScreenCapture.h"
#include "Platform/X11/X11Settings.h"
#include "Platform/X11/X11Tray.h"
#include "Platform/X11/X11Workspace.h"

namespace nubble {

namespace {

class PlainWorkspace : public Workspace {
public:
    [[nodiscard]] bool canActivate() const override { return false; }
    [[nodiscard]] QList<RunningApplication> runningApplications() const override { return {}; }
    [[nodiscard]] Activation activate(const RunningApplication &) override { return Activation::Impossible; }
    [[nodiscard]] Activation activateNearest(const WantedWindow &) override { return Activation::Impossible; }
    [[nodiscard]] bool isInFront(const WantedWindow &) const override { return false; }
    [[nodiscard]] std::optional<RunningApplication> frontApplication() const override { return {}; }
    [[nodiscard]] std::optional<QString> windowTitle(pid_t) const override { return {}; }
};

class NoScreenCapture : public ScreenCapture {
public:
    [[nodiscard]] bool canCapture() const override { return false; }
    [[nodiscard]] QImage grab() override { return {}; }
    [[nodiscard]] QImage grabPart(const QRect &) override { return {}; }
};

// As much of a panel as Qt alone gives: it takes the mouse all over.
class PlainPanelSurface : public PanelSurface {
public:
    explicit PlainPanelSurface(QWidget &window) : PanelSurface(window)
    {
        window.setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
        window.setAttribute(Qt::WA_TranslucentBackground);
        window.setAttribute(Qt::WA_ShowWithoutActivating);
        window.setAttribute(Qt::WA_AlwaysShowToolTips);
    }

    void place(const SurfacePlace &place) override { window().setGeometry(place.frame); }
    void orderFront() override
    {
        window().show();
        window().raise();
    }
    void orderOut() override { window().hide(); }
    [[nodiscard]] bool passesClicksThrough() const override { return false; }
    [[nodiscard]] bool isTranslucent() const override { return true; }
    void setOutline(const QPainterPath &) override { }
    [[nodiscard]] bool takeKeyboard() override
    {
        window().activateWindow();
        return true;
    }
    void releaseKeyboard() override { }
};

Backend makePlainBackend()
{
    Backend backend;
    backend.workspace = std::make_unique<PlainWorkspace>();
    backend.mouseMonitor = std::make_unique<MouseMonitor>();
    backend.hotKeys = std::make_unique<HotKeyService>();
    backend.screenCapture = std::make_unique<NoScreenCapture>();
    backend.makePanelSurface = [](QWidget &window) { return std::make_unique<PlainPanelSurface>(window); };
    backend.makeFloatingSurface = [](QWidget &window) {
        return std::make_unique<PlainFloatingSurface>(window);
    };
    return backend;
}

Backend makeX11Backend(const std::shared_ptr<const X11Connection> &x11)
{
    Backend backend;
    const auto keyboard = std::make_shared<X11KeyboardFocus>(x11);
    backend.workspace = std::make_unique<X11Workspace>(x11, keyboard);
    backend.mouseMonitor = std::make_unique<X11MouseMonitor>(x11);
    backend.hotKeys = std::make_unique<X11HotKeys>(x11);
    backend.screenCapture = std::make_unique<X11ScreenCapture>(x11);
    backend.makePanelSurface = [x11, keyboard](QWidget &window) {
        return std::make_unique<X11PanelSurface>(window, x11, keyboard);
    };
    backend.makeFloatingSurface = [x11](QWidget &window) {
        return std::make_unique<X11FloatingSurface>(window, x11);
    };
    return backend;
}

// Whatever the backend, a locker hides the panel.
void lockWithTheSession(Backend &backend)
{
    const auto lock = std::make_shared<ScreenLock>();
    backend.makePanelSurface = [lock, make = backend.makePanelSurface](QWidget &window) {
        std::unique_ptr<PanelSurface> surface = make(window);
        const auto follow = [lock, surface = surface.get()] {
            surface->setVeil(PanelSurface::Veil::Lock, lock->isLocked());
        };
        QObject::connect(lock.get(), &ScreenLock::changed, surface.get(), follow);
        follow();
        return surface;
    };
}

} // namespace

std::optional<QByteArray> qtPlatform()
{
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return QByteArray();
    if (X11Connection::isServerThere())
        return "xcb";
    return qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? std::nullopt : std::optional(QByteArray());
}

Backend makeBackend(const Home &home)
{
    assertMainThread("Nubble/Platform/Backend");
    const auto x11 = X11Connection::ofThisProgram(); // null on every other platform of Qt
    qCDebug(logPlatform) << "backend:" << (x11 ? "X11" : "a plain window");
    Backend backend = x11 ? makeX11Backend(x11) : makePlainBackend();
    lockWithTheSession(backend);
    backend.preferences = std::make_unique<FreedesktopPreferences>(
        home.configFolder(), x11 ? std::make_unique<X11Settings>(x11) : nullptr);
    backend.statusHost = std::make_unique<DesktopStatusHost>(
        std::make_unique<StatusNotifierWatch>(), x11 ? std::make_unique<X11Tray>(x11) : nullptr);
    backend.notifications = std::make_unique<SessionBusNotifications>();
    backend.notices = std::make_unique<FreedesktopNotices>();
    return backend;
}

} // namespace nubble
