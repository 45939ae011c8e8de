#include "Sessions/ProjectsCardContent.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QScrollBar>
#include <QSet>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include "Platform/Clock.h"
#include "Sessions/ProcessActivator.h"
#include "Sessions/ProjectRow.h"
#include "Sessions/RowColumn.h"
#include "Sessions/SessionDetails.h"
#include "Sessions/SessionMonitor.h"
#include "Sessions/SessionTexts.h"
#include "Widgets/CappedScroll.h"
#include "Widgets/CardHeader.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

QLabel *makeEmptyLabel(QWidget *parent)
{
    QLabel *label = CardMetrics::makeNote(parent);
    label->setText(u"No sessions running"_s);
    label->setAlignment(Qt::AlignCenter);
    label->setFixedHeight(Units::px(parent, ProjectRow::rowHeight));
    return label;
}

} // namespace

ProjectsCardContent::ProjectsCardContent(
    const SessionMonitor &monitor, ProcessActivator &activator, const Clock &clock, int maxHeight,
    QWidget *parent)
    : QWidget(parent), m_monitor(monitor), m_activator(activator), m_bringsForward(activator.canActivate()),
      m_clock(clock), m_header(new CardHeader(u"Claude Projects"_s, this)),
      m_close(new NotchButton(u"xmark"_s, u"Close"_s, m_header)), m_empty(makeEmptyLabel(this)),
      m_rows(new RowColumn(Units::px(this, ProjectRow::rowHeight), this))
{
    connect(m_close, &NotchButton::clicked, this, &ProjectsCardContent::closeRequested);
    m_header->addAccessory(m_close);

    QVBoxLayout *layout = CardMetrics::makeLayout(this);
    layout->addWidget(m_header);
    layout->addWidget(m_empty);
    constexpr int around = CardMetrics::rowMargins.top() + CardMetrics::rowMargins.bottom()
        + CardMetrics::headerHeight + CardMetrics::spacing;
    layout->addWidget(
        m_scroll = new CappedScroll(m_rows, CardMetrics::roomWithin(this, maxHeight, around), this));

    m_rows->installEventFilter(this);
    connect(m_scroll->verticalScrollBar(), &QScrollBar::valueChanged, this, &ProjectsCardContent::updateRows);
    connect(&monitor, &SessionMonitor::sessionsChanged, this, &ProjectsCardContent::updateRows);
    connect(&monitor, &SessionMonitor::recentlyCompletedChanged, this, &ProjectsCardContent::updateRows);
    connect(&monitor.details(), &SessionDetails::byIdChanged, this, &ProjectsCardContent::updateRows);
    auto *elapsed = new QTimer(this); // only while the card is open
    connect(elapsed, &QTimer::timeout, this, &ProjectsCardContent::updateRows);
    elapsed->start(1s);
    updateRows();
}

void ProjectsCardContent::updateRows()
{
    const QList<ClaudeSession> &sessions = m_monitor.sessions();
    m_rows->setCount(static_cast<int>(sessions.size()));
    m_scroll->fit();
    const QList<int> positions = rowsAround();
    QList<SessionRun> keys;
    for (const int position : positions)
        keys.append(sessions.at(position).run());
    removeRowsExcept(keys);
    for (const int position : positions)
        showRow(sessions.at(position), position);
    if (std::exchange(m_order, keys) != keys)
        orderFocus();
    m_header->setDetail(QString::number(sessions.size()) + u" running"_s);
    m_empty->setVisible(sessions.isEmpty());
    m_scroll->setVisible(!sessions.isEmpty());
}

// Those in sight, as many around them that nobody scrolls or goes on by Tab beyond them, and those that Tab
// leads to from elsewhere: the ends, and the neighbours of the one with the focus.
QList<int> ProjectsCardContent::rowsAround() const
{
    constexpr int around = 40;
    const QList<ClaudeSession> &sessions = m_monitor.sessions();
    const int count = static_cast<int>(sessions.size());
    const int top = m_scroll->verticalScrollBar()->value();
    const int first = std::max(0, m_rows->numberAt(top) - around);
    const int last = std::min(count - 1, m_rows->numberAt(top + m_scroll->height()) + around);
    const int focus = positionOf(m_rowOf.key(qobject_cast<ProjectRow *>(m_rows->focusWidget())));
    QList<int> rows;
    for (int position = 0; position < count; ++position)
        if ((first <= position && position <= last) || std::abs(position - focus) <= 1 || position == 0
            || position == count - 1)
            rows.append(position);
    return rows;
}

int ProjectsCardContent::positionOf(const SessionRun &key) const
{
    const QList<ClaudeSession> &sessions = m_monitor.sessions();
    const auto isIt = [&key](const ClaudeSession &each) { return each.run() == key; };
    return static_cast<int>(std::ranges::find_if(sessions, isIt) - sessions.begin());
}

// What rows leave of keys, before it scrolls them.
bool ProjectsCardContent::eventFilter(QObject *watched, QEvent *event)
{
    const bool isKey = watched == m_rows && event->type() == QEvent::KeyPress;
    return (isKey && goOn(static_cast<QKeyEvent *>(event)->key())) || QWidget::eventFilter(watched, event);
}

// All that a key can lead to is there: the ends, and more than a page around what is in sight.
bool ProjectsCardContent::goOn(int key)
{
    const int last = static_cast<int>(m_monitor.sessions().size()) - 1;
    const int focus = positionOf(m_rowOf.key(qobject_cast<ProjectRow *>(focusWidget())));
    const int page = std::max(1, m_rows->numberAt(m_scroll->height()) - 1);
    const QHash<int, int> goals{
        {Qt::Key_Home, 0},
        {Qt::Key_End, last},
        {Qt::Key_PageUp, focus - page},
        {Qt::Key_PageDown, focus + page}};
    if (!goals.contains(key) || focus > last)
        return false;
    ProjectRow *row = rowOf(m_monitor.sessions().at(std::clamp(goals.value(key), 0, last)).run());
    row->setFocus(Qt::TabFocusReason);
    m_scroll->ensureWidgetVisible(row, 0, 0);
    return true;
}

// Tab goes from row to row as they stand, and then to Close; by itself it would go in the order in which
// they came.
void ProjectsCardContent::orderFocus()
{
    QWidgetList stops;
    for (const SessionRun &key : m_order)
        stops += m_rowOf.value(key)->tabStops();
    stops += m_close;
    for (qsizetype i = 1; i < stops.size(); ++i)
        setTabOrder(stops.at(i - 1), stops.at(i));
}

void ProjectsCardContent::removeRowsExcept(const QList<SessionRun> &keys)
{
    const QSet<SessionRun> kept(keys.begin(), keys.end());
    for (auto row = m_rowOf.begin(); row != m_rowOf.end();) {
        if (kept.contains(row.key())) {
            ++row;
            continue;
        }
        row.value()->hide();
        row.value()->deleteLater(); // it may be the one whose click is being handled
        row = m_rowOf.erase(row);
    }
}

ProjectRow *ProjectsCardContent::rowOf(const SessionRun &key)
{
    ProjectRow *&row = m_rowOf[key];
    if (!row) {
        row = new ProjectRow(m_rows);
        row->setEnabled(m_bringsForward);
        connect(row, &ProjectRow::clicked, this, [this, row, pid = key.second] { bringForward(*row, pid); });
    }
    return row;
}

void ProjectsCardContent::bringForward(ProjectRow &row, pid_t pid)
{
    const bool byKeyboard = row.hasFocus(); // which leaves with the activated window
    m_activator.activate(
        {pid, row.title()}, [this, row = QPointer(&row), byKeyboard](const Outcome &outcome) {
            if (!row) // and perhaps this has gone, too
                return;
            row->showReason(outcome.why(), m_activator.attachCommand());
            if (byKeyboard && outcome.isDone())
                Q_EMIT closeRequested();
        });
}

void ProjectsCardContent::showRow(const ClaudeSession &session, int position)
{
    ProjectRow *row = rowOf(session.run());
    m_rows->place(row, position);
    const SessionDetail detail = m_monitor.details().of(session);
    row->setContent({
        .title = rowTitle(session, detail),
        .lastPrompt = detail.lastPrompt.value_or(QString()),
        .state = m_monitor.runState(session),
        .elapsed = elapsedText(timePointOf(session.lastActivity()), m_clock.now()),
        .symbol = rowSymbol(session),
        .folder = session.cwd,
        .isTitleIdentifier = isTitleIdentifier(session, detail),
        .terminal = session.terminal.value_or(QString()),
    });
}

} // namespace nubble
