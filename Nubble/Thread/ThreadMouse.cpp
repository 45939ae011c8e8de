#include "Thread/ThreadMouse.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QStyleHints>

#include <algorithm>
#include <chrono>

#include "Thread/ThreadScene.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

bool isNear(const QPoint &one, const QPoint &other)
{
    return (one - other).manhattanLength() < QGuiApplication::styleHints()->startDragDistance();
}

} // namespace

ThreadMouse::ThreadMouse(ThreadScene &scene) : m_scene(scene)
{
    m_scrolling.setInterval(30ms);
    m_scrolling.callOnTimeout(this, &ThreadMouse::scroll);
}

void ThreadMouse::press(const QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton)
        return;
    const QPoint point = event.position().toPoint();
    m_scene.click(point);
    m_pressed = m_scene.targetAt(point);
    if (m_pressed && m_pressed->kind != ThreadTarget::Kind::Link)
        return;
    const bool isTriple = m_sinceDouble.isValid() && isNear(point, m_start)
        && m_sinceDouble.elapsed() < QGuiApplication::styleHints()->mouseDoubleClickInterval();
    m_sinceDouble.invalidate();
    if (event.modifiers() & Qt::ShiftModifier) {
        m_pressed.reset();
        m_isMarking = true;
        m_unit = QTextCursor::Document;
        m_first = {m_scene.selection().anchor, m_scene.selection().anchor};
        drawTo(point);
    } else {
        begin(point, isTriple ? QTextCursor::BlockUnderCursor : QTextCursor::Document);
    }
}

void ThreadMouse::pressTwice(const QMouseEvent &event)
{
    const QPoint point = event.position().toPoint();
    if (event.button() != Qt::LeftButton || m_scene.targetAt(point))
        return press(event);
    begin(point, QTextCursor::WordUnderCursor);
    m_sinceDouble.start();
}

void ThreadMouse::begin(const QPoint &point, QTextCursor::SelectionType unit)
{
    if (m_scene.rows().count() == 0)
        return;
    m_isMarking = true;
    m_unit = unit;
    m_start = point;
    const ThreadPosition position = m_scene.positionAt(point);
    m_first = unit == QTextCursor::Document ? ThreadSelection{position, position}
                                            : ThreadPositions::around(m_scene.layout(), position, unit);
    m_scene.select(m_first);
}

void ThreadMouse::move(const QMouseEvent &event)
{
    const QPoint point = event.position().toPoint();
    if (!(event.buttons() & Qt::LeftButton)) {
        m_scene.hover(point);
        return;
    }
    if (m_pressed && isNear(point, m_start))
        return; // a click that trembles
    m_last = point;
    if (!m_isMarking)
        return;
    m_pressed.reset();
    const bool isOutside = point.y() < 0 || point.y() > m_scene.layout().size().height();
    if (isOutside && !m_scrolling.isActive())
        m_scrolling.start();
    else if (!isOutside)
        m_scrolling.stop();
    drawTo(point);
}

void ThreadMouse::drawTo(const QPoint &point)
{
    if (m_scene.rows().count() == 0)
        return;
    const QSize size = m_scene.layout().size();
    const QPoint inside(point.x(), std::clamp(point.y(), 0, std::max(0, size.height() - 1)));
    const ThreadPosition position = m_scene.positionAt(inside);
    const ThreadSelection unit = m_unit == QTextCursor::Document
        ? ThreadSelection{position, position}
        : ThreadPositions::around(m_scene.layout(), position, m_unit);
    if (unit.first() < m_first.first())
        m_scene.select({m_first.last(), unit.first()});
    else
        m_scene.select({m_first.first(), std::max(m_first.last(), unit.last())});
}

void ThreadMouse::scroll()
{
    const int height = m_scene.layout().size().height();
    const int beyond = m_last.y() < 0 ? m_last.y() : m_last.y() - height;
    m_scene.scrollBy(std::clamp(beyond / 2, -60, 60));
    drawTo(m_last);
}

void ThreadMouse::cancel()
{
    m_scrolling.stop();
    m_isMarking = false;
    m_pressed.reset();
}

void ThreadMouse::release(const QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton)
        return;
    m_scrolling.stop();
    const QPoint point = event.position().toPoint();
    const auto pressed = std::exchange(m_pressed, std::nullopt);
    const bool isMarked = std::exchange(m_isMarking, false) && !m_scene.selection().isEmpty();
    if (pressed && m_scene.targetAt(point) == pressed && !isMarked)
        m_scene.activate(*pressed);
    else if (isMarked)
        m_scene.copySelection(QClipboard::Selection);
    m_scene.hover(point);
}

} // namespace nubble
