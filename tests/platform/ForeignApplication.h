#pragma once

#include <QPainter>
#include <QProcess>
#include <QTest>
#include <QWidget>

#include <algorithm>
#include <cstring>

#include "Platform/X11/X11Connection.h"

namespace nubble {

// Points there, in pixels, and does what else xdotool is told to, such as "click 1".
inline void userPointsAt(const QPoint &pixel, const QString &then = {})
{
    const QString script = QStringLiteral("mousemove %1 %2 ").arg(pixel.x()).arg(pixel.y()) + then;
    if (QProcess::execute(QStringLiteral("xdotool"), script.split(u' ', Qt::SkipEmptyParts)) != 0)
        qFatal("xdotool failed");
}

// Has one colour and tells when it is pressed.
class PlainWindow : public QWidget {
public:
    explicit PlainWindow(const QColor &colour) : m_colour(colour) { }

    [[nodiscard]] xcb_window_t id() const { return static_cast<xcb_window_t>(windowHandle()->winId()); }

    inline static const PlainWindow *pressed = nullptr; // the last

protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), m_colour); }
    void mousePressEvent(QMouseEvent *) override { pressed = this; }

    QColor m_colour;
};

// Another application as the window manager sees it: windows that claim to belong to a process of the test's
// choice. Every request has been carried out when its call returns.
class ForeignApplication {
public:
    enum Kind { Managed, Dock, Unmanaged };

    explicit ForeignApplication(uint32_t pid = 4242) : m_pid(pid) { }

    // Shown before it returns; a managed one also has been placed in the window manager's list.
    xcb_window_t open(const QRect &pixels, const QColor &colour, Kind kind = Managed)
    {
        PlainWindow &widget = *m_windows.emplace_back(std::make_unique<PlainWindow>(colour));
        widget.setWindowFlags(kind == Unmanaged ? Qt::BypassWindowManagerHint : Qt::FramelessWindowHint);
        widget.setAttribute(Qt::WA_X11NetWmWindowTypeDock, kind == Dock);
        const qreal scale = widget.devicePixelRatio();
        widget.setGeometry(QRect(pixels.topLeft() / scale, (QSizeF(pixels.size()) / scale).toSize()));
        widget.winId();
        const xcb_window_t window = widget.id();
        setNumbers(window, "_NET_WM_PID", {m_pid});
        setText(window, "WM_CLASS", QByteArray("terminal\0Terminal\0", 18));
        widget.show();
        const auto isListed = [&] {
            return kind == Unmanaged || std::ranges::count(numbers(root(), "_NET_CLIENT_LIST"), window) > 0;
        };
        if (!QTest::qWaitForWindowExposed(&widget) || !QTest::qWaitFor(isListed))
            qFatal("a foreign window does not appear");
        return window;
    }
    void closeAll() { m_windows.clear(); }

    void setNumbers(
        xcb_window_t window, const char *property, const std::vector<uint32_t> &values,
        const char *type = "CARDINAL")
    {
        set(window, property, type, 32, values.size(), values.data());
    }
    void setText(xcb_window_t window, const char *property, const QByteArray &value)
    {
        set(window, property, "STRING", 8, static_cast<size_t>(value.size()), value.constData());
    }
    [[nodiscard]] std::vector<uint32_t> numbers(xcb_window_t window, const char *property) const
    {
        return X11Property(*m_x11, window, atom(property), 1024).numbers();
    }
    [[nodiscard]] bool hasState(xcb_window_t window, const char *state) const
    {
        return std::ranges::count(numbers(window, "_NET_WM_STATE"), atom(state)) > 0;
    }

    // By wmctrl, and what it is told to do with the window.
    static void manage(xcb_window_t window, const QString &action, const QString &how = {})
    {
        QStringList arguments{QStringLiteral("-i"), action, QString::number(window)};
        QProcess::execute(QStringLiteral("wmctrl"), arguments + how.split(u' ', Qt::SkipEmptyParts));
    }
    void focus(xcb_window_t window)
    {
        manage(window, QStringLiteral("-a"));
        if (!QTest::qWaitFor([&] { return focusedWindow() == window; }))
            qFatal("a foreign window cannot be focused");
    }
    [[nodiscard]] xcb_window_t focusedWindow() const
    {
        return XcbReply<xcb_get_input_focus_reply_t>(
                   xcb_get_input_focus_reply(m_x11->get(), xcb_get_input_focus(m_x11->get()), nullptr))
            ->focus;
    }

    void own(X11Atom selection, xcb_window_t owner) const
    {
        xcb_set_selection_owner(m_x11->get(), owner, m_x11->atom(selection), XCB_CURRENT_TIME);
        m_x11->flush();
    }

    [[nodiscard]] xcb_atom_t atom(const char *name) const
    {
        const auto request = xcb_intern_atom(m_x11->get(), 0, static_cast<uint16_t>(std::strlen(name)), name);
        return XcbReply<xcb_intern_atom_reply_t>(xcb_intern_atom_reply(m_x11->get(), request, nullptr))->atom;
    }
    [[nodiscard]] xcb_window_t root() const { return m_x11->root(); }
    [[nodiscard]] const X11Connection &x11() const { return *m_x11; }

private:
    void set(
        xcb_window_t window, const char *property, const char *type, uint8_t format, size_t size,
        const void *data)
    {
        xcb_change_property(
            m_x11->get(), XCB_PROP_MODE_REPLACE, window, atom(property), atom(type), format,
            static_cast<uint32_t>(size), data);
        (void)focusedWindow();
    }

    std::shared_ptr<const X11Connection> m_x11 = X11Connection::ofThisProgram();
    std::vector<std::unique_ptr<PlainWindow>> m_windows;
    uint32_t m_pid;
};

} // namespace nubble
