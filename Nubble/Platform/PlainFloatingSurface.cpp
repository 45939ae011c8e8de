#include "Platform/PlainFloatingSurface.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

#include <chrono>

namespace nubble {

namespace {

constexpr std::chrono::milliseconds patience{300}; // with a desktop that has been asked for the keyboard

} // namespace

PlainFloatingSurface::PlainFloatingSurface(QWidget &window) : m_window(window)
{
    // All flags once and for ever: changing one later makes another native window.
    window.setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    window.setAttribute(Qt::WA_TranslucentBackground);
    window.setAttribute(Qt::WA_QuitOnClose, false);
    window.installEventFilter(this);
    m_takingBack.setSingleShot(true);
    m_takingBack.setInterval(patience);
    connect(
        &m_takingBack, &QTimer::timeout, this, [this] { followKeyboard(QGuiApplication::focusWindow()); });
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &PlainFloatingSurface::followKeyboard);
}

void PlainFloatingSurface::place(const QRect &frame)
{
    m_window.setGeometry(frame);
}

void PlainFloatingSurface::orderFront()
{
    m_window.show();
    m_window.raise();
    m_window.activateWindow();
}

void PlainFloatingSurface::orderOut()
{
    m_grip.reset();
    m_window.hide();
    m_hadKeyboard = false; // Qt says so later, maybe when the window is shown again
}

void PlainFloatingSurface::setUnseen(bool unseen)
{
    m_window.setWindowOpacity(unseen ? 0 : 1);
}

void PlainFloatingSurface::startMove()
{
    QWindow *handle = m_window.windowHandle();
    if (handle && !handle->startSystemMove())
        m_grip = QCursor::pos() - m_window.pos();
}

bool PlainFloatingSurface::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &m_window && m_grip) {
        if (event->type() == QEvent::MouseMove) {
            const auto *move = static_cast<QMouseEvent *>(event);
            m_window.move(move->globalPosition().toPoint() - *m_grip);
            return true;
        }
        if (event->type() == QEvent::MouseButtonRelease)
            m_grip.reset();
    }
    return FloatingSurface::eventFilter(watched, event);
}

// Its menus and dialogs are transient for it.
bool PlainFloatingSurface::isOwn(const QWindow *focused) const
{
    const QWindow *handle = m_window.windowHandle();
    while (focused && focused != handle)
        focused = focused->transientParent();
    return handle && focused == handle;
}

bool PlainFloatingSurface::hasKeyboard() const
{
    return m_hadKeyboard && isOwn(QGuiApplication::focusWindow());
}

void PlainFloatingSurface::noteKeyboard()
{
    if (QWindow *focused = QGuiApplication::focusWindow(); isOwn(focused))
        followKeyboard(focused);
}

void PlainFloatingSurface::followKeyboard(QWindow *focused)
{
    const bool has = m_window.isVisible() && isOwn(focused);
    if (has && focused->type() == Qt::Dialog)
        connect(
            focused, &QWindow::visibleChanged, this, &PlainFloatingSurface::takeKeyboardBack,
            static_cast<Qt::ConnectionType>(
                Qt::QueuedConnection | Qt::UniqueConnection)); // it is hidden then
    if (m_hadKeyboard == has || (!has && m_takingBack.isActive()))
        return;
    m_hadKeyboard = has;
    if (has)
        Q_EMIT keyboardTaken();
    else
        Q_EMIT keyboardLost();
}

// From a dialog that has been closed: Qt does not say so, and the desktop may choose another window, at least
// at first.
void PlainFloatingSurface::takeKeyboardBack(bool dialogVisible)
{
    if (dialogVisible || !m_window.isVisible())
        return;
    m_takingBack.start();
    orderFront();
}

} // namespace nubble
