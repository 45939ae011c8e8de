#include "platform/ForeignApplication.h"

#include <QProcess>
#include <QTest>

#include <cstring>

namespace nubble {

namespace {

void run(const QString &program, const QStringList &arguments)
{
    if (QProcess::execute(program, arguments) != 0)
        qFatal("%s failed", qPrintable(program));
}

class Window : public QWidget {
public:
    explicit Window(int &presses) : m_presses(presses) { }

protected:
    void mousePressEvent(QMouseEvent *) override { ++m_presses; }

private:
    int &m_presses;
};

} // namespace

xcb_atom_t ForeignApplication::atom(const char *name) const
{
    const auto request = xcb_intern_atom(m_x11->get(), 0, static_cast<uint16_t>(std::strlen(name)), name);
    return XcbReply<xcb_intern_atom_reply_t>(xcb_intern_atom_reply(m_x11->get(), request, nullptr))->atom;
}

xcb_window_t ForeignApplication::open(const QRect &pixels, const QColor &colour, Kind kind)
{
    QWidget &widget = *m_windows.emplace_back(std::make_unique<Window>(m_presses));
    widget.setWindowFlags(kind == Unmanaged ? Qt::BypassWindowManagerHint : Qt::FramelessWindowHint);
    widget.setAttribute(Qt::WA_X11NetWmWindowTypeDock, kind == Dock);
    widget.setPalette(colour);
    const qreal scale = widget.devicePixelRatio();
    widget.setGeometry(
        QRectF(QPointF(pixels.topLeft()) / scale, QSizeF(pixels.size()) / scale).toAlignedRect());
    const auto window = static_cast<xcb_window_t>(widget.winId());
    setNumbers(window, "_NET_WM_PID", {m_pid});
    setText(window, "WM_CLASS", QByteArray("terminal\0Terminal\0", 18));
    widget.show();
    const auto isListed = [&] {
        const auto list = numbers(root(), "_NET_CLIENT_LIST");
        return kind == Unmanaged || std::find(list.begin(), list.end(), window) != list.end();
    };
    if (!QTest::qWaitForWindowExposed(&widget) || !QTest::qWaitFor(isListed))
        qFatal("a foreign window does not appear");
    return window;
}

void ForeignApplication::setNumbers(
    xcb_window_t window, const char *property, const std::vector<uint32_t> &values, const char *type)
{
    xcb_change_property(
        m_x11->get(), XCB_PROP_MODE_REPLACE, window, atom(property), atom(type), 32,
        static_cast<uint32_t>(values.size()), values.data());
    (void)focusedWindow();
}

void ForeignApplication::setText(xcb_window_t window, const char *property, const QByteArray &value)
{
    xcb_change_property(
        m_x11->get(), XCB_PROP_MODE_REPLACE, window, atom(property), XCB_ATOM_STRING, 8,
        static_cast<uint32_t>(value.size()), value.constData());
    (void)focusedWindow();
}

std::vector<uint32_t> ForeignApplication::numbers(xcb_window_t window, const char *property) const
{
    return X11Property(*m_x11, window, atom(property), 1024).numbers();
}

void ForeignApplication::focus(xcb_window_t window)
{
    run(QStringLiteral("wmctrl"), {QStringLiteral("-ia"), QString::number(window)});
    if (!QTest::qWaitFor([&] { return focusedWindow() == window; }))
        qFatal("a foreign window cannot be focused");
}

xcb_window_t ForeignApplication::focusedWindow() const
{
    return XcbReply<xcb_get_input_focus_reply_t>(
               xcb_get_input_focus_reply(m_x11->get(), xcb_get_input_focus(m_x11->get()), nullptr))
        ->focus;
}

QRect ForeignApplication::onScreen(xcb_window_t window) const
{
    const XcbReply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(m_x11->get(), xcb_get_geometry(m_x11->get(), window), nullptr));
    const XcbReply<xcb_translate_coordinates_reply_t> position(xcb_translate_coordinates_reply(
        m_x11->get(), xcb_translate_coordinates(m_x11->get(), window, root(), 0, 0), nullptr));
    return size && position ? QRect(position->dst_x, position->dst_y, size->width, size->height) : QRect();
}

void userClicks(const QPoint &pixel)
{
    const QStringList place{QString::number(pixel.x()), QString::number(pixel.y())};
    run(QStringLiteral("xdotool"),
        QStringList{QStringLiteral("mousemove")} + place
            + QStringList{QStringLiteral("click"), QStringLiteral("1")});
}

} // namespace nubble
