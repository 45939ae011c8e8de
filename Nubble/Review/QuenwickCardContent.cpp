#include "Review/QuenwickCardContent.h"

#include <QDateTime>
#include <QLabel>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>

#include "Platform/Clock.h"
#include "Platform/DesktopPreferences.h"
#include "Review/QuenwickMonitor.h"
#include "Review/QuenwickRow.h"
#include "Review/ReviewParts.h"
#include "Shell/OneLine.h"
#include "Widgets/CappedScroll.h"
#include "Widgets/CardHeader.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/RefreshButton.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr qsizetype mostRows = 100; // nobody decides on more in a notch
constexpr int aroundList = 128;     // what stands above and below it, at most

void showNote(QLabel &label, const QString &text)
{
    label.setText(CardMetrics::breakable(text));
    label.setVisible(!text.isEmpty());
}

} // namespace

QuenwickCardContent::QuenwickCardContent(
    QuenwickMonitor &quenwick, const Clock &clock, const DesktopPreferences &preferences, int maxHeight,
    QWidget *parent)
    : QWidget(parent), m_quenwick(quenwick), m_clock(clock), m_preferences(preferences),
      m_header(new CardHeader(u"Quenwick"_s, this)), m_logo(new LogoButton(m_header)),
      m_refresh(new RefreshButton(m_header)), m_count(CardMetrics::makeNote(this)),
      m_banner(new ClosedBanner(this)), m_empty(new EmptyInbox(this)), m_list(new QWidget(this)),
      m_days(new QVBoxLayout(m_list)),
      m_scroll(new CappedScroll(m_list, CardMetrics::roomWithin(this, maxHeight, aroundList), this)),
      m_footer(CardMetrics::makeNote(this))
{
    m_refresh->setHelpText(refreshHelp());
    m_header->addAccessory(m_logo);
    m_header->addAccessory(m_refresh);
    m_days->setContentsMargins({});
    m_days->setSpacing(1);
    for (QLabel *note : {m_count, m_footer})
        note->setContentsMargins(
            Units::px(this, QMargins(CardMetrics::rowPadding, 0, CardMetrics::rowPadding, 0)));
    QVBoxLayout *layout = CardMetrics::makeLayout(this);
    for (QWidget *part :
         std::initializer_list<QWidget *>{m_header, m_count, m_banner, m_empty, m_scroll, m_footer})
        layout->addWidget(part);

    connect(m_refresh, &QAbstractButton::clicked, &quenwick, &QuenwickMonitor::refreshNow);
    connect(m_logo, &QAbstractButton::clicked, &quenwick, &QuenwickMonitor::openApp);
    connect(m_banner, &QAbstractButton::clicked, &quenwick, &QuenwickMonitor::openApp);
    connect(&quenwick, &QuenwickMonitor::changed, this, &QuenwickCardContent::follow);
    auto *tick = new QTimer(this); // days pass
    tick->callOnTimeout(this, &QuenwickCardContent::follow);
    tick->start(30s);
    follow();
}

void QuenwickCardContent::follow()
{
    const ReviewState &state = m_quenwick.state();
    const QList<QuenwickItem> &items = state.inbox.items;
    const QList<DayGroup> groups =
        dayGroups(items.first(std::min(items.size(), mostRows)), localTime(m_clock.now()));
    if (groups != m_shown)
        showGroups(groups);
    updateRows();
    const bool clear = isAllClear(state);
    showNote(*m_count, clear ? QString() : QString::number(state.inbox.pending) + u' ' + countText(state));
    m_logo->setPending(state.inbox.pending);
    m_refresh->setRefreshing(state.checking, m_preferences.reducedMotion());
    m_banner->setVisible(!state.live);
    m_empty->setVisible(clear);
    m_scroll->setVisible(!m_rows.isEmpty());
    QStringList footer = footerTexts(state);
    for (QString &text : footer)
        text = oneLine(text);
    showNote(*m_footer, footer.join(u'\n'));
}

// The keyboard, and what is seen, stay where they were.
void QuenwickCardContent::showGroups(const QList<DayGroup> &groups)
{
    const qsizetype focused = focusedRow();
    const int scrolled = m_scroll->verticalScrollBar()->value();
    m_shown = groups;
    m_rows.clear();
    while (QLayoutItem *item = m_days->takeAt(0)) {
        item->widget()->hide();
        item->widget()->deleteLater(); // it may be what has been clicked
        delete item;
    }
    for (const DayGroup &group : groups)
        add(group);
    m_list->adjustSize();
    m_scroll->verticalScrollBar()->setValue(scrolled);
    if (focused >= 0)
        focusRow(std::min(focused, m_rows.size() - 1));
}

void QuenwickCardContent::add(const DayGroup &group)
{
    auto *header = new DayHeader(group.label, group.soon, m_list);
    m_days->addWidget(header);
    header->show();
    for (const QuenwickItem &item : group.items) {
        auto *row = new QuenwickRow(item, group.soon, m_list);
        m_rows.append(row);
        m_days->addWidget(row);
        row->show();
        connect(row, &QuenwickRow::actionWanted, this, [this, row](ReviewAction action) {
            m_quenwick.perform(action, QuenwickItem(row->item())); // the row may go meanwhile
        });
        connect(row, &QuenwickRow::moveWanted, this, [this](int by) {
            focusRow(std::clamp<qsizetype>(focusedRow() + by, 0, m_rows.size() - 1));
        });
    }
}

void QuenwickCardContent::updateRows()
{
    const ReviewState &state = m_quenwick.state();
    const QDateTime now = localTime(m_clock.now());
    for (QuenwickRow *row : std::as_const(m_rows)) {
        const QuenwickItem &item = row->item();
        row->setDue(NextDue::inFull(item.due, item.timeKnown, now));
        row->setLive(state.live);
        row->setBusy(state.busy.contains(item.id()), m_preferences.reducedMotion());
    }
}

void QuenwickCardContent::focusRow(qsizetype index)
{
    if (index < 0)
        return m_logo->setFocus();
    m_rows.at(index)->setFocus(Qt::TabFocusReason);
    m_scroll->ensureWidgetVisible(m_rows.at(index), 0, 4);
}

qsizetype QuenwickCardContent::focusedRow() const
{
    const QWidget *focused = focusWidget();
    for (qsizetype i = 0; i < m_rows.size(); ++i)
        if (focused && (m_rows.at(i) == focused || m_rows.at(i)->isAncestorOf(focused)))
            return i;
    return -1;
}

} // namespace nubble
