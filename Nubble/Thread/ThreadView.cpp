#include "Thread/ThreadView.h"

#include <QGuiApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <chrono>

#include "Platform/MainThread.h"
#include "Platform/Memory.h"
#include "Thread/ThreadAccessible.h"
#include "Thread/ThreadKeys.h"
#include "Thread/ThreadMouse.h"
#include "Thread/ThreadOverlays.h"
#include "Thread/ThreadScene.h"
#include "Widgets/ContextMenu.h"
#include "Widgets/MenuEntry.h"
#include "Widgets/ScrollFade.h"
#include "Widgets/SlimScrollBar.h"
#include "Widgets/ToolTips.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto frameTime = 33ms; // what streams is read, not watched

} // namespace

ThreadView::ThreadView(QWidget *parent)
    : QAbstractScrollArea(parent), m_scene(new ThreadScene(this)), m_mouse(new ThreadMouse(*m_scene)),
      m_jump(new JumpButton(this)), m_ring(new FocusRing(this))
{
    m_mouse->setParent(this);
    installThreadAccessibility();
    setAccessibleName(u"Conversation"_s);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // the text's width does not depend on its height
    setVerticalScrollBar(new SlimScrollBar);
    setViewportMargins(0, 0, -barWidth(), 0); // it lies over the text's margin
    verticalScrollBar()->setSingleStep(20);
    viewport()->setAutoFillBackground(false);
    viewport()->setMouseTracking(true);
    ScrollFade::addTo(this);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &ThreadView::placeJump); // after the fades
    connect(m_jump, &QAbstractButton::clicked, this, &ThreadView::scrollToEnd);
    m_frame.setSingleShot(true);
    m_frame.setTimerType(Qt::PreciseTimer);
    m_frame.callOnTimeout(this, &ThreadView::takeInNow);
    connectScene();
}

ThreadView::~ThreadView() = default;

void ThreadView::connectScene()
{
    connect(m_scene, &ThreadScene::changed, this, &ThreadView::showChange);
    connect(m_scene, &ThreadScene::linkActivated, this, &ThreadView::linkActivated);
    connect(m_scene, &ThreadScene::focusChanged, this, [this] {
        m_ring->hide(); // what has it shows it
        tellFocus(*this);
    });
}

void ThreadView::clear()
{
    m_scene->clear();
}

void ThreadView::append(const ThreadMessage &message)
{
    assertMainThread("Nubble/Thread/ThreadView");
    ThreadMessage added = message;
    added.picture = RowBoxes::thumbnail(message.picture);
    m_scene->append(added);
}

void ThreadView::appendText(QStringView text)
{
    m_scene->appendText(text);
    takeInSoon();
}

void ThreadView::setText(const QString &text)
{
    m_scene->setText(text);
}

void ThreadView::finishLast()
{
    m_scene->finishLast();
    announceLast(*this);
}

void ThreadView::removeLast()
{
    m_scene->removeLast();
}

void ThreadView::setRows(ThreadRows rows)
{
    m_scene->setRows(std::move(rows));
}

void ThreadView::setMatcher(const TextMatcher &matcher)
{
    m_scene->setMatcher(matcher);
}

void ThreadView::showMessage(int message)
{
    m_scene->showMessage(message);
}

bool ThreadView::copy()
{
    return m_scene->copy();
}

void ThreadView::scrollPages(int pages)
{
    m_scene->scrollPages(pages);
}

void ThreadView::scrollToEnd()
{
    m_scene->scrollToEnd();
}

void ThreadView::setFooter(QWidget *footer)
{
    if (m_footer == footer)
        return;
    if (m_footer)
        m_footer->hide();
    m_footer = footer;
    if (footer) {
        footer->setParent(viewport());
        footer->show();
    }
    placeFooter();
}

// Its height counts, so everything may move.
void ThreadView::placeFooter()
{
    if (m_footer && m_footer->parentWidget() != viewport())
        m_footer.clear();
    const int width = std::max(0, viewport()->width() - 2 * RowBoxes::side);
    const bool followsWidth = m_footer && m_footer->hasHeightForWidth();
    const int height = !m_footer ? 0
        : followsWidth           ? m_footer->heightForWidth(width)
                                 : m_footer->sizeHint()
                             .expandedTo(m_footer->minimumSize())
                             .boundedTo(m_footer->maximumSize())
                             .height();
    m_scene->layout().setFooterHeight(height);
    if (m_footer)
        m_footer->resize(width, height);
    m_scene->arrange();
}

void ThreadView::takeInSoon()
{
    if (m_frame.isActive() || !isVisible())
        return;
    const auto since = m_sinceFrame.isValid() ? std::chrono::milliseconds(m_sinceFrame.elapsed()) : frameTime;
    m_frame.start(std::max(0ms, frameTime - since));
}

void ThreadView::takeInNow()
{
    m_sinceFrame.start();
    m_scene->takeIn();
    if (m_scene->rows().isBehind())
        m_frame.start(frameTime);
}

void ThreadView::showChange(int y)
{
    ThreadLayout &layout = m_scene->layout();
    m_isSyncing = true;
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setRange(0, layout.maximum());
    verticalScrollBar()->setValue(layout.value());
    m_isSyncing = false;
    if (m_footer)
        m_footer->move(RowBoxes::side, layout.end() + RowBoxes::footerGap);
    placeJump();
    viewport()->update(QRect(0, y, viewport()->width(), viewport()->height() - y));
}

int ThreadView::barWidth() const
{
    return verticalScrollBar()->sizeHint().width();
}

void ThreadView::placeJump()
{
    const QSize size = m_jump->size();
    m_jump->move(
        viewport()->geometry().right() - size.width() - barWidth() - 3,
        viewport()->geometry().bottom() - size.height() - 8);
    m_jump->setVisible(m_scene->isLive() && !m_scene->layout().follows());
    m_ring->raise(); // above what fades
    m_jump->raise();
}

bool ThreadView::viewportEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::LayoutRequest: // of the footer
    case QEvent::ChildRemoved:  // perhaps it
        placeFooter();
        break;
    case QEvent::Leave:
        m_scene->hover(std::nullopt);
        break;
    case QEvent::ToolTip: {
        const auto *help = static_cast<const QHelpEvent *>(event);
        constexpr QMargins nearby(4, 4, 4, 4); // farther away it goes
        ToolTips::show(
            *viewport(), m_scene->toolTipAt(help->pos()),
            QRect(help->pos(), QSize(1, 1)).marginsAdded(nearby));
        return true;
    }
    default:
        break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void ThreadView::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    painter.setClipRegion(event->region());
    m_scene->paint(painter, event->rect());
}

void ThreadView::resizeEvent(QResizeEvent *)
{
    m_scene->resize(viewport()->size());
    m_ring->setGeometry(viewport()->geometry().adjusted(0, 0, 2 - barWidth(), 0));
    placeFooter();
}

void ThreadView::showEvent(QShowEvent *event)
{
    QAbstractScrollArea::showEvent(event);
    m_scene->setShown(true);
}

void ThreadView::hideEvent(QHideEvent *event)
{
    QAbstractScrollArea::hideEvent(event);
    m_frame.stop();
    m_mouse->cancel();
    m_scene->setShown(false);
    releaseFreedMemory();
}

void ThreadView::mousePressEvent(QMouseEvent *event)
{
    m_scene->focus(std::nullopt);
    m_mouse->press(*event);
}

void ThreadView::mouseDoubleClickEvent(QMouseEvent *event)
{
    m_mouse->pressTwice(*event);
}

void ThreadView::mouseMoveEvent(QMouseEvent *event)
{
    m_mouse->move(*event);
    const auto &target = m_scene->hovered();
    viewport()->setCursor(target ? Qt::PointingHandCursor : Qt::IBeamCursor);
}

void ThreadView::mouseReleaseEvent(QMouseEvent *event)
{
    m_mouse->release(*event);
}

void ThreadView::wheelEvent(QWheelEvent *event)
{
    // Not by way of the scroll bar, which only knows how much there may be above.
    constexpr int notch = 60;
    const int pixels =
        event->pixelDelta().y() != 0 ? event->pixelDelta().y() : event->angleDelta().y() * notch / 120;
    m_scene->scrollBy(-pixels);
    event->accept(); // at either end too: the wheel is meant for this text
    m_scene->hover(event->position().toPoint());
}

void ThreadView::keyPressEvent(QKeyEvent *event)
{
    event->setAccepted(handleThreadKey(*m_scene, *event));
}

void ThreadView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    m_ring->setVisible(event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason);
    if (event->reason() == Qt::BacktabFocusReason && !m_scene->layout().shown().empty())
        m_scene->focus(ThreadTargets::from(
            m_scene->rows(), m_scene->layout(), m_scene->layout().shown().back().row, -1));
}

void ThreadView::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    m_ring->hide();
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        m_scene->focus(std::nullopt);
}

bool ThreadView::focusNextPrevChild(bool next)
{
    if (m_scene->focusNext(next ? 1 : -1))
        return true;
    return QAbstractScrollArea::focusNextPrevChild(next);
}

void ThreadView::contextMenuEvent(QContextMenuEvent *event)
{
    const bool isMouse = event->reason() == QContextMenuEvent::Mouse;
    const auto target = isMouse ? m_scene->targetAt(event->pos()) : m_scene->focused();
    const QUrl url = target ? ThreadTargets::url(m_scene->layout(), *target) : QUrl();
    QList<MenuEntry> entries{
        {.title = u"Copy"_s,
         .action = [this] { m_scene->copySelection(QClipboard::Clipboard); },
         .enabled = !m_scene->selection().isEmpty(),
         .shortcut = QKeySequence::Copy},
        {.title = u"Select All"_s,
         .action = [this] { m_scene->selectAll(); },
         .shortcut = QKeySequence::SelectAll}};
    if (!url.isEmpty())
        entries.insert(1, {.title = u"Copy Link"_s, .action = [url] {
                               QGuiApplication::clipboard()->setText(url.toString(QUrl::FullyEncoded));
                           }});
    openContextMenu(*this, event->globalPos(), entries);
}

void ThreadView::scrollContentsBy(int, int)
{
    if (!m_isSyncing)
        m_scene->scrollTo(verticalScrollBar()->value());
}

} // namespace nubble
