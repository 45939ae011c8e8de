#include "Sessions/ProjectsCardContent.h"

#include <QLabel>
#include <QSet>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>

#include "Platform/Clock.h"
#include "Platform/Workspace.h"
#include "Sessions/ProcessActivator.h"
#include "Sessions/ProjectRow.h"
#include "Sessions/SessionDetails.h"
#include "Sessions/SessionMonitor.h"
#include "Sessions/SessionTexts.h"
#include "Widgets/CappedScroll.h"
#include "Widgets/CardHeader.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/NotchButton.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

QLabel *makeEmptyLabel()
{
    QLabel *label = CardMetrics::makeNote();
    label->setText(u"No sessions running"_s);
    label->setAlignment(Qt::AlignCenter);
    label->setFixedHeight(46);
    return label;
}

} // namespace

ProjectsCardContent::ProjectsCardContent(
    const SessionMonitor &monitor, ProcessActivator &activator, const Clock &clock, int maxHeight,
    QWidget *parent)
    : QWidget(parent), m_monitor(monitor), m_activator(activator), m_bringsForward(activator.canActivate()),
      m_clock(clock), m_header(new CardHeader(u"Claude Projects"_s)), m_empty(makeEmptyLabel()),
      m_list(new QWidget), m_rows(new QVBoxLayout(m_list))
{
    setFixedWidth(CardMetrics::width);
    m_rows->setContentsMargins(0, 0, 0, 0);
    m_rows->setSpacing(1);
    auto *close = new NotchButton(u"xmark"_s, u"Close"_s);
    connect(close, &NotchButton::clicked, this, &ProjectsCardContent::closeRequested);
    m_header->addAccessory(close);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(CardMetrics::rowMargins);
    layout->setSpacing(CardMetrics::spacing);
    layout->addWidget(m_header);
    layout->addWidget(m_empty);
    const int around = CardMetrics::rowMargins.top() + CardMetrics::rowMargins.bottom()
        + CardMetrics::headerHeight + CardMetrics::spacing;
    layout->addWidget(
        m_scroll = new CappedScroll(m_list, std::min(CardMetrics::maxHeight, maxHeight) - around));

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
    QList<RowKey> keys;
    for (const ClaudeSession &session : sessions)
        keys.append({session.sessionId, session.pid});
    removeRowsExcept(keys);
    for (int position = 0; position < sessions.size(); ++position)
        showRow(sessions.at(position), position);
    if (std::exchange(m_order, keys) != keys)
        orderFocus();
    m_header->setDetail(QString::number(sessions.size()) + u" running"_s);
    m_empty->setVisible(sessions.isEmpty());
    m_scroll->setVisible(!sessions.isEmpty());
}

// Tab goes from row to row as they stand; by itself it would go in the order in which they came.
void ProjectsCardContent::orderFocus()
{
    for (int position = 1; position < m_rows->count(); ++position)
        setTabOrder(m_rows->itemAt(position - 1)->widget(), m_rows->itemAt(position)->widget());
}

void ProjectsCardContent::removeRowsExcept(const QList<RowKey> &keys)
{
    const QSet<RowKey> kept(keys.begin(), keys.end());
    for (auto row = m_rowOf.begin(); row != m_rowOf.end();) {
        if (kept.contains(row.key())) {
            ++row;
            continue;
        }
        m_rows->removeWidget(row.value());
        row.value()->hide();
        row.value()->deleteLater(); // it may be the one whose click is being handled
        row = m_rowOf.erase(row);
    }
}

ProjectRow *ProjectsCardContent::rowOf(const RowKey &key)
{
    ProjectRow *&row = m_rowOf[key];
    if (!row) {
        row = new ProjectRow(m_list);
        row->setEnabled(m_bringsForward);
        connect(row, &ProjectRow::clicked, this, [this, row, pid = key.second] {
            const bool byKeyboard = row->hasFocus(); // which leaves with the activated window
            if (m_activator.activate(pid) == Activation::Requested && byKeyboard)
                Q_EMIT closeRequested();
        });
    }
    return row;
}

void ProjectsCardContent::showRow(const ClaudeSession &session, int position)
{
    ProjectRow *row = rowOf({session.sessionId, session.pid});
    const QLayoutItem *there = m_rows->itemAt(position);
    if (!there || there->widget() != row) {
        m_rows->removeWidget(row);
        m_rows->insertWidget(position, row);
    }
    const SessionDetail detail = m_monitor.details().byId().value(session.sessionId);
    row->setContent({
        .title = rowTitle(session, detail),
        .lastPrompt = detail.lastPrompt.value_or(QString()),
        .state = m_monitor.runState(session),
        .elapsed = elapsedText(timePointOf(session.lastActivity()), m_clock.now()),
        .symbol = rowSymbol(session),
        .folder = session.cwd,
        .isTitleIdentifier = isTitleIdentifier(session, detail),
    });
}

} // namespace nubble
