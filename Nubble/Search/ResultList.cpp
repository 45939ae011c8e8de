#include "Search/ResultList.h"

#include <QAbstractListModel>
#include <QDateTime>
#include <QHelpEvent>
#include <QMouseEvent>

#include <algorithm>

#include "Search/ChatTexts.h"
#include "Widgets/ScrollFade.h"
#include "Widgets/SlimScrollBar.h"
#include "Widgets/ToolTips.h"

using namespace Qt::StringLiterals;

namespace nubble {

// What assistive technology reads; the rest is drawn from the records themselves.
class ResultList::Rows : public QAbstractListModel {
public:
    explicit Rows(ChatRow::Now now, QObject *parent) : QAbstractListModel(parent), m_now(std::move(now)) { }

    void setHits(const QList<ChatHit> &hits)
    {
        beginResetModel();
        m_hits = hits;
        endResetModel();
    }
    [[nodiscard]] const ChatHit &hit(int row) const { return m_hits.at(row); }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_hits.size());
    }
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override
    {
        switch (role) {
        case Qt::DisplayRole:
            return titleText(hit(index.row()).title);
        case Qt::AccessibleDescriptionRole:
            return QString(
                singleLine(hit(index.row()).snippet) + u". "_s + metaText(hit(index.row()), m_now()));
        default:
            return {};
        }
    }

private:
    QList<ChatHit> m_hits;
    ChatRow::Now m_now;
};

ResultList::ResultList(const ChatRow::Now &now, QWidget *parent)
    : QListView(parent), m_rows(new Rows(now, this)),
      m_row(new ChatRow([this](int row) -> const ChatHit & { return m_rows->hit(row); }, now, this))
{
    setAccessibleName(u"Chats"_s);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where the user writes
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new SlimScrollBar);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setViewportMargins(0, 0, -verticalScrollBar()->sizeHint().width(), 0); // it lies over the rows' margin
    verticalScrollBar()->setSingleStep(ChatRow::height / 2);
    viewport()->setAutoFillBackground(false);
    setMouseTracking(true);
    setModel(m_rows);
    setItemDelegate(m_row);
    ScrollFade::addTo(this);
}

ResultList::~ResultList() = default;

void ResultList::setHits(const QList<ChatHit> &hits, const TextMatcher &matcher)
{
    m_row->setMatcher(matcher);
    m_rows->setHits(hits);
}

void ResultList::select(qsizetype row)
{
    const QModelIndex index = m_rows->index(static_cast<int>(row));
    setCurrentIndex(index);
    scrollTo(index);
}

int ResultList::rowsPerPage() const
{
    return std::max(1, viewport()->height() / ChatRow::height - 1);
}

void ResultList::keyPressEvent(QKeyEvent *event)
{
    event->ignore();
}

void ResultList::mouseMoveEvent(QMouseEvent *event)
{
    setPointer(event->position().toPoint()); // and selects nothing on the way
}

void ResultList::mouseReleaseEvent(QMouseEvent *event)
{
    const QPoint at = event->position().toPoint();
    const QModelIndex index = indexAt(at);
    QListView::mouseReleaseEvent(event);
    if (!index.isValid() || index != currentIndex() || event->button() != Qt::LeftButton)
        return;
    const bool isOnButton = ChatRow::openButton(visualRect(index)).contains(at);
    if (isOnButton && !openText(targetOf(m_rows->hit(index.row()))).isEmpty())
        Q_EMIT openWanted(index.row());
    else
        Q_EMIT chosen(index.row());
}

bool ResultList::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Leave)
        setPointer({-1, -1});
    if (event->type() != QEvent::ToolTip)
        return QListView::viewportEvent(event);
    const auto *help = static_cast<const QHelpEvent *>(event);
    showToolTip(help->pos());
    return true;
}

void ResultList::setPointer(const QPoint &pointer)
{
    m_row->setPointer(pointer);
    viewport()->update();
}

void ResultList::showToolTip(const QPoint &point)
{
    const QModelIndex index = indexAt(point);
    if (!index.isValid())
        return;
    const ChatHit &hit = m_rows->hit(index.row());
    const QRect row = visualRect(index);
    const bool isOnButton = ChatRow::openButton(row).contains(point);
    const QString text = isOnButton ? openText(targetOf(hit)) + u"  Ctrl+Return"_s : titleText(hit.title);
    ToolTips::show(*viewport(), text, isOnButton ? ChatRow::openButton(row) : row);
}

} // namespace nubble
