#include "Usage/PlanUsageMonitor.h"

#include <QTimer>

#include "Platform/Home.h"
#include "Platform/MainThread.h"
#include "Shell/Defaults.h"
#include "Shell/Tools.h"
#include "Usage/UsageTexts.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto entriesTrustedFor = 3min;
constexpr auto folderTrustedFor = 30min; // to tell of what happens in it; not all file systems do
constexpr auto freshFor = 30min;

constexpr int politeness = 10; // niceness of the worker and of what it runs

PlanUsageReader readerIn(const Home &home, const QString &domain)
{
    return PlanUsageReader(home.applicationSupport(u"Claude"_s) + u"/Cache/Cache_Data", domain, [home] {
        return Tools::find(u"zstd"_s, home);
    });
}

} // namespace

const QString PlanUsageMonitor::defaultDomain = u"claude.ai"_s;

PlanUsageMonitor::PlanUsageMonitor(
    const Home &home, const Clock &clock, const QString &domain, QObject *parent)
    : PlanUsageMonitor(readerIn(home, domain), clock, parent)
{
}

PlanUsageMonitor::PlanUsageMonitor(PlanUsageReader reader, const Clock &clock, QObject *parent)
    : QObject(parent), m_clock(&clock), m_reader(std::move(reader)),
      m_worker(u"PlanUsageMonitor"_s, politeness)
{
    refresh(false);
    auto *timer = new QTimer(this);
    timer->callOnTimeout(this, [this] { refresh(false); });
    timer->setTimerType(Qt::VeryCoarseTimer); // together with others
    timer->start(10s);
}

PlanUsageMonitor::PlanUsageMonitor(
    const PlanWindows &windows, const std::optional<QString> &problem, bool isOld, QObject *parent)
    : QObject(parent), m_clock(nullptr), m_shown{windows, problem, isOld}, m_reader({}, {}, {}),
      m_worker(u"PlanUsageMonitor"_s)
{
}

QString PlanUsageMonitor::domainIn(const Defaults &defaults)
{
    // In lower case, as it stands in the cache's addresses.
    const QString preferred = defaults.string(u"planUsage.domain"_s).value_or(QString()).trimmed().toLower();
    return preferred.isEmpty() ? defaultDomain : preferred;
}

void PlanUsageMonitor::refresh(bool rescan)
{
    assertMainThread("Nubble/Usage/PlanUsageMonitor");
    if (rescan)
        m_listedAt.reset();
    if (m_working || !m_clock)
        return;
    m_working = true;
    const bool lists = !isWithin(folderTrustedFor, m_listedAt);
    if (lists)
        m_listedAt = m_clock->now();
    const bool trusts = !lists && isWithin(entriesTrustedFor, m_scannedAt);
    m_worker.add(
        [this, lists, known = trusts ? m_entries : QList<QByteArray>()](const std::stop_token &stop) {
            if (lists)
                m_reader.forget();
            return m_reader.read(known, stop);
        },
        [this](const ReadOutcome &outcome) { accept(outcome); });
    Q_EMIT refreshingChanged();
}

bool PlanUsageMonitor::isWithin(std::chrono::milliseconds span, const std::optional<TimePoint> &since) const
{
    const auto age = m_clock->now() - since.value_or(TimePoint());
    return since && age >= 0s && age < span; // below 0, the clock was put back
}

void PlanUsageMonitor::accept(const ReadOutcome &outcome)
{
    m_working = false;
    if (outcome.entries) {
        m_entries = *outcome.entries;
        m_scannedAt = m_clock->now();
    }
    if (std::holds_alternative<ReadProblem>(outcome.result))
        m_entries.clear();
    const Shown shown = shownAfter(outcome);
    if (shown != m_shown) {
        m_shown = shown;
        Q_EMIT changed();
    }
    Q_EMIT refreshingChanged();
}

PlanUsageMonitor::Shown PlanUsageMonitor::shownAfter(const ReadOutcome &outcome)
{
    const Reading *reading = std::get_if<Reading>(&outcome.result);
    if (reading)
        m_capturedAt = reading->capturedAt;
    const auto age = m_clock->now() - m_capturedAt;
    const bool isOld = age > freshFor;
    if (!reading)
        return {
            m_shown.windows, problemText(std::get<ReadProblem>(outcome.result), outcome.installCommand),
            isOld};
    return {reading->windows, isOld ? std::optional(staleText(age)) : std::nullopt, isOld};
}

} // namespace nubble
