#include "Thread/ThreadScene.h"

#include <QGuiApplication>
#include <QPainter>

#include <chrono>

#include "Thread/MatchSearch.h"
#include "Thread/RowPainter.h"

using namespace std::chrono_literals;

namespace nubble {

ThreadScene::ThreadScene(QObject *parent) : QObject(parent)
{
    m_forgetCopied.setSingleShot(true);
    m_forgetCopied.setInterval(1500ms);
    m_forgetCopied.callOnTimeout(this, [this] {
        m_copied.reset();
        Q_EMIT changed(0);
    });
}

void ThreadScene::clear()
{
    m_rows.clear();
    setLive(true);
    m_layout.scrollToEnd();
    takeIn();
}

void ThreadScene::setRows(ThreadRows rows)
{
    m_rows = std::move(rows);
    setLive(false);
    (void)m_rows.update();
    m_layout.rowsChanged(0);
    m_layout.scrollToStart();
    m_selection = {};
    m_hoveredMessage = m_current = m_clicked = -1;
    for (auto *target : {&m_hovered, &m_focused, &m_copied})
        target->reset();
    arrange();
}

void ThreadScene::append(const ThreadMessage &message)
{
    m_rows.append(message);
    setLive(true);
    if (message.kind == ThreadMessage::Kind::Question)
        m_layout.scrollToEnd();
    takeIn();
}

void ThreadScene::setLive(bool isLive)
{
    m_isLive = isLive;
    m_isPlaced = false;
    m_layout.setLive(isLive);
}

void ThreadScene::appendText(QStringView text)
{
    m_rows.appendText(text);
    if (!m_rows.message(m_rows.messageCount() - 1).isReply())
        takeIn();
}

void ThreadScene::setText(const QString &text)
{
    m_rows.setText(text);
    takeIn();
}

void ThreadScene::finishLast()
{
    m_rows.finishLast();
    takeIn();
}

void ThreadScene::removeLast()
{
    m_rows.removeLast();
    takeIn();
}

void ThreadScene::takeIn()
{
    const int last = m_layout.count() - 1;
    const int from = std::max(0, last - 1); // the one before the last may turn out to go on
    const int y = m_layout.yOf(from);
    const int value = m_layout.value();
    const int first = m_rows.update();
    m_layout.rowsChanged(first);
    holdState();
    if (!m_isShown)
        return;
    m_layout.arrange();
    const bool isInPlace =
        first >= last && from < m_layout.count() && value == m_layout.value() && m_layout.yOf(from) == y;
    Q_EMIT changed(isInPlace ? y : 0);
}

void ThreadScene::setShown(bool shown)
{
    m_isShown = shown;
    if (shown)
        takeIn();
    else
        m_layout.forget();
    placeCurrent();
}

void ThreadScene::resize(QSize size)
{
    m_layout.resize(size);
    placeCurrent();
}

void ThreadScene::setMatcher(const TextMatcher &matcher)
{
    m_layout.setMatcher(matcher);
    placeCurrent();
    Q_EMIT changed(0);
}

void ThreadScene::showMessage(int message)
{
    if (message < 0 || message >= m_rows.messageCount())
        return;
    m_current = message;
    m_clicked = -1; // what is copied is what was chosen last
    m_isPlaced = true;
    placeCurrent();
}

void ThreadScene::placeCurrent()
{
    if (!m_isPlaced || !m_isShown || m_layout.size().isEmpty() || m_rows.count() == 0)
        return;
    const int first = std::min(m_rows.message(m_current).firstRow, m_rows.count() - 1);
    const auto match = firstMatch(m_rows, m_layout, m_current);
    const ThreadPosition position = match.value_or(ThreadPosition{first, 0});
    const QRect line = ThreadPositions::caret(m_layout, position);
    m_layout.scrollTo(position.row, line.center().y(), m_layout.size().height() / 2);
    arrange();
}

void ThreadScene::click(const QPoint &point)
{
    const int row = m_layout.rowAt(point.y());
    if (!m_isLive && row >= 0)
        m_clicked = m_rows.messageOf(row);
}

bool ThreadScene::copy()
{
    const int message = m_clicked >= 0 ? m_clicked : m_current;
    if (m_selection.isEmpty() && message < 0)
        return false;
    if (m_selection.isEmpty())
        QGuiApplication::clipboard()->setText(m_rows.message(message).content.text);
    else
        copySelection(QClipboard::Clipboard);
    return true;
}

// What was said about rows that are gone.
void ThreadScene::holdState()
{
    const int count = m_rows.count();
    for (auto *target : {&m_hovered, &m_focused, &m_copied})
        if (*target && (*target)->row >= count)
            target->reset();
    for (int *message : {&m_current, &m_clicked})
        if (*message >= m_rows.messageCount())
            *message = -1;
    m_isPlaced = m_isPlaced && m_current >= 0;
    if (count == 0)
        m_selection = {};
    else if (m_selection.last().row >= count)
        m_selection = {
            ThreadPositions::held(m_rows, m_layout, m_selection.anchor),
            ThreadPositions::held(m_rows, m_layout, m_selection.cursor)};
}

void ThreadScene::arrange()
{
    if (!m_isShown)
        return;
    m_layout.arrange();
    Q_EMIT changed(0);
}

void ThreadScene::scrollPages(int pages)
{
    constexpr int kept = 40; // pixels that are seen on both
    scrollBy(pages * std::max(kept, m_layout.size().height() - kept));
}

void ThreadScene::reveal(int row, const QRect &rect)
{
    m_isPlaced = false;
    m_layout.reveal(row, rect);
    arrange();
}

void ThreadScene::scrollBy(int pixels)
{
    m_isPlaced = false;
    m_layout.scrollBy(pixels);
    arrange();
}

void ThreadScene::scrollTo(int value)
{
    m_isPlaced = false;
    m_layout.scrollTo(value);
    arrange();
}

void ThreadScene::scrollToEnd()
{
    m_isPlaced = false;
    m_layout.scrollToEnd();
    arrange();
}

void ThreadScene::select(const ThreadSelection &selection)
{
    m_selection = selection;
    holdState();
    Q_EMIT changed(0);
}

void ThreadScene::selectAll()
{
    select({{}, ThreadPositions::end(m_rows, m_layout)});
}

void ThreadScene::copySelection(QClipboard::Mode mode)
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (m_selection.isEmpty() || (mode == QClipboard::Selection && !clipboard->supportsSelection()))
        return;
    clipboard->setText(ThreadPositions::text(m_rows, m_layout, m_selection), mode);
}

ThreadPosition ThreadScene::positionAt(const QPoint &point)
{
    return ThreadPositions::at(m_rows, m_layout, point);
}

std::optional<ThreadTarget> ThreadScene::targetAt(const QPoint &point)
{
    return ThreadTargets::at(m_rows, m_layout, point);
}

// Where a link leads, or what is cut short.
QString ThreadScene::toolTipAt(const QPoint &point)
{
    if (const auto target = targetAt(point))
        return shownLink(ThreadTargets::url(m_layout, *target));
    const int row = m_layout.rowAt(point.y());
    if (row < 0 || !m_layout.row(row).box.caption.translated(0, m_layout.yOf(row)).contains(point))
        return {};
    return m_rows.messageAt(row).content.caption.left(600);
}

void ThreadScene::hover(const std::optional<QPoint> &point)
{
    const auto target = point ? targetAt(*point) : std::nullopt;
    const int row = point ? m_layout.rowAt(point->y()) : -1;
    const int message = row < 0 ? -1 : m_rows.messageOf(row);
    if (target == m_hovered && message == m_hoveredMessage)
        return;
    m_hovered = target;
    m_hoveredMessage = message;
    Q_EMIT changed(0);
}

void ThreadScene::focus(const std::optional<ThreadTarget> &target)
{
    if (m_focused == target)
        return;
    m_focused = target;
    if (target) {
        QRect all;
        for (const QRect &each : ThreadTargets::rects(m_layout, *target))
            all |= each;
        reveal(target->row, all);
    } else {
        arrange();
    }
    Q_EMIT focusChanged();
}

bool ThreadScene::focusNext(int step)
{
    const auto &shown = m_layout.shown();
    if (shown.empty())
        return false;
    const auto next = m_focused ? ThreadTargets::next(m_rows, m_layout, *m_focused, step)
        : step > 0              ? ThreadTargets::from(m_rows, m_layout, shown.front().row, 1)
                                : std::nullopt;
    if (next)
        focus(next);
    return next.has_value();
}

void ThreadScene::activate(const ThreadTarget &target)
{
    if (target.kind == ThreadTarget::Kind::Link) {
        const QUrl url = ThreadTargets::url(m_layout, target);
        if (url.isValid())
            Q_EMIT linkActivated(url);
        return;
    }
    if (target.kind == ThreadTarget::Kind::CopyReply)
        QGuiApplication::clipboard()->setText(m_rows.messageAt(target.row).content.text);
    else
        QGuiApplication::clipboard()->setText(m_rows.codeAt(target.row));
    m_copied = target;
    m_forgetCopied.start();
    Q_EMIT changed(0);
}

void ThreadScene::paint(QPainter &painter, const QRect &area)
{
    for (const ThreadLayout::Shown &shown : m_layout.shown()) {
        const int index = shown.row;
        const int y = shown.y;
        const ThreadLayout::Row &row = m_layout.row(index);
        if (y + row.box.height < area.top() || y > area.bottom())
            continue;
        paintRow(painter, {0, y}, m_rows, index, row, lookOf(index, row));
    }
}

RowLook ThreadScene::lookOf(int index, const ThreadLayout::Row &row) const
{
    RowLook look;
    look.selected = m_selection.inRow(index, row.document->lastPosition());
    look.hovered = m_hovered;
    look.focused = m_focused;
    look.copied = m_copied;
    const int message = m_rows.messageOf(index);
    look.isCurrent = message == m_current;
    const auto isOfThis = [&](const auto &target) {
        return target && target->kind == ThreadTarget::Kind::CopyReply && target->row == index;
    };
    look.showsCopyReply = m_rows.message(message).isFinished
        && (message == m_hoveredMessage || message + 1 == m_rows.messageCount() || isOfThis(m_focused)
            || isOfThis(m_copied));
    return look;
}

} // namespace nubble
