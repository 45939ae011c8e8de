#include "Platform/X11/X11PanelSurface.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <xcb/shape.h>

#include "Platform/MainThread.h"
#include "Platform/X11/X11Connection.h"
#include "Platform/X11/X11Geometry.h"
#include "Platform/X11/X11KeyboardFocus.h"

namespace nubble {

X11PanelSurface::X11PanelSurface(
    QWidget &window, std::shared_ptr<const X11Connection> x11, std::shared_ptr<X11KeyboardFocus> keyboard)
    : PanelSurface(window), m_x11(std::move(x11)), m_compositor(m_x11, X11Atom::CompositingManager),
      m_bars(m_x11), m_keyboard(std::move(keyboard)), m_visibility(m_x11)
{
    // All flags once and for ever: changing one later makes another native window.
    window.setWindowFlags(
        Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::BypassWindowManagerHint
        | Qt::WindowDoesNotAcceptFocus);
    window.setAttribute(Qt::WA_TranslucentBackground);
    window.setAttribute(Qt::WA_ShowWithoutActivating);
    window.setAttribute(Qt::WA_AlwaysShowToolTips);
    window.installEventFilter(this);
    connect(&m_bars, &X11ShellBars::changed, this, &PanelSurface::barsChanged);
    connect(&m_compositor, &X11SelectionWatch::changed, this, [this] {
        applyOutline();
        m_x11->flush();
        Q_EMIT translucencyChanged();
    });
    const auto followVisibility = [this] {
        setVeil(Veil::Blank, m_visibility.isScreenBlank());
        setVeil(Veil::Windows, m_visibility.isCovered());
    };
    connect(&m_visibility, &X11Visibility::changed, this, followVisibility);
    followVisibility();
}

// QWidget::winId() stays at the old window when Qt makes another one; the handle knows.
uint32_t X11PanelSurface::nativeWindow() const
{
    const QWindow *handle = window().windowHandle();
    return handle && handle->handle() ? static_cast<uint32_t>(handle->winId()) : 0;
}

void X11PanelSurface::place(const SurfacePlace &place)
{
    assertMainThread("Nubble/Platform/X11/X11PanelSurface");
    m_frame = place.frame;
    window().setGeometry(place.frame);
    applyAll();
}

void X11PanelSurface::orderFront()
{
    window().show();
    window().raise();
    m_x11->flush();
}

void X11PanelSurface::orderOut()
{
    releaseKeyboard();
    window().hide();
    m_x11->flush();
}

// Compositors go by the whole window when it lies over one that is not the X server's.
bool X11PanelSurface::passesClicksThrough() const
{
    return m_x11->offers(xcb_shape_id) && !m_x11->isXwayland();
}

void X11PanelSurface::setOutline(const QPainterPath &outline)
{
    if (m_outline == outline)
        return;
    m_outline = outline;
    applyOutline();
    m_x11->flush();
}

bool X11PanelSurface::takeKeyboard()
{
    const auto native = nativeWindow();
    return native && m_keyboard->lend(native);
}

void X11PanelSurface::releaseKeyboard()
{
    if (const auto native = nativeWindow())
        m_keyboard->takeBack(native);
}

bool X11PanelSurface::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &window()) {
        switch (event->type()) {
        case QEvent::WinIdChange:
        case QEvent::Show:
        case QEvent::Resize:
        case QEvent::ScreenChangeInternal:
            applyAll();
            break;
        default:
            break;
        }
    }
    return PanelSurface::eventFilter(watched, event);
}

void X11PanelSurface::applyAll()
{
    if (!nativeWindow())
        return;
    m_visibility.watch(nativeWindow());
    applyPosition();
    applyOutline();
    m_x11->flush();
}

// Qt rounds position and size each for itself, which at a broken scale leaves a gap at the right or bottom
// edge.
void X11PanelSurface::applyPosition()
{
    const QScreen *screen = QGuiApplication::screenAt(m_frame.center());
    if (m_frame.isEmpty() || !screen)
        return;
    const QRect deviceScreen = X11Geometry::deviceScreenAt(*m_x11, screen->geometry().topLeft());
    const QPoint position =
        X11Geometry::devicePosition(m_frame, screen->geometry(), deviceScreen, window().devicePixelRatioF());
    const std::array<uint32_t, 2> values{
        static_cast<uint32_t>(position.x()), static_cast<uint32_t>(position.y())};
    m_x11->ignoreErrors(xcb_configure_window_checked(
        m_x11->get(), nativeWindow(), XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values.data()));
}

void X11PanelSurface::applyOutline()
{
    const auto native = nativeWindow();
    if (!native || !m_x11->offers(xcb_shape_id))
        return;
    const auto rects = X11Geometry::deviceRects(m_outline, window().size(), window().devicePixelRatioF());
    const auto cut = [&](xcb_shape_sk_t kind) {
        m_x11->ignoreErrors(xcb_shape_rectangles_checked(
            m_x11->get(), XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_YX_BANDED, native, 0, 0,
            static_cast<uint32_t>(rects.size()), rects.data()));
    };
    cut(XCB_SHAPE_SK_INPUT);
    if (isTranslucent())
        m_x11->ignoreErrors(xcb_shape_mask_checked(
            m_x11->get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, native, 0, 0, XCB_PIXMAP_NONE));
    else
        cut(XCB_SHAPE_SK_BOUNDING);
}

} // namespace nubble
