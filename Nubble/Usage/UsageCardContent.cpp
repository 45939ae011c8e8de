#include "Usage/UsageCardContent.h"

#include <QDateTime>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>

#include "Platform/Clock.h"
#include "Platform/DesktopPreferences.h"
#include "Usage/LimitRow.h"
#include "Usage/PlanUsageMonitor.h"
#include "Usage/UsageTexts.h"
#include "Widgets/CardHeader.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/Palette.h"
#include "Widgets/RefreshButton.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

void showWindow(LimitRow &row, const std::optional<PlanWindow> &window, const QDateTime &now, bool animated)
{
    row.setWindow(
        window ? std::optional(percentOf(window->fraction)) : std::nullopt,
        window ? resetText(window->resetsAt, now) : QString(), animated);
}

} // namespace

UsageCardContent::UsageCardContent(
    PlanUsageMonitor &planUsage, const Clock &clock, const DesktopPreferences &preferences, QWidget *parent)
    : QWidget(parent), m_planUsage(planUsage), m_clock(clock), m_preferences(preferences),
      m_refresh(new RefreshButton(this)), m_session(new LimitRow(u"Current session"_s, this)),
      m_weekly(new LimitRow(u"All models"_s, this)), m_problem(CardMetrics::makeNote(this))
{
    auto *header = new CardHeader(u"Claude Usage"_s, this);
    header->addAccessory(m_refresh);

    QVBoxLayout *layout = CardMetrics::makeLayout(this);
    layout->addWidget(header);
    auto *body = new QVBoxLayout;
    body->setContentsMargins(Units::px(this, CardMetrics::textMargins));
    body->setSpacing(Units::px(this, CardMetrics::spacing + 2));
    layout->addLayout(body);
    for (QWidget *part : std::initializer_list<QWidget *>{m_session, m_weekly, m_problem})
        body->addWidget(part);

    connect(m_refresh, &RefreshButton::clicked, &planUsage, [&planUsage] { planUsage.refresh(true); });
    connect(&planUsage, &PlanUsageMonitor::changed, this, &UsageCardContent::updateWindows);
    connect(&planUsage, &PlanUsageMonitor::refreshingChanged, this, &UsageCardContent::updateRefreshing);
    auto *countdown = new QTimer(this); // of the reset texts, only while the card is open
    connect(countdown, &QTimer::timeout, this, &UsageCardContent::updateWindows);
    countdown->start(1s);
    updateWindows();
    updateRefreshing();
}

void UsageCardContent::updateWindows()
{
    const QDateTime now = localTime(m_clock.now());
    const bool animated = !m_preferences.reducedMotion();
    showWindow(*m_session, m_planUsage.windows().session, now, animated);
    showWindow(*m_weekly, m_planUsage.windows().weekly, now, animated);
    m_problem->setText(m_planUsage.problem().value_or(QString()));
    m_problem->setVisible(m_planUsage.problem().has_value());
}

void UsageCardContent::updateRefreshing()
{
    m_refresh->setRefreshing(m_planUsage.isRefreshing(), m_preferences.reducedMotion());
}

} // namespace nubble
