#pragma once

#include <QObject>

#include "Platform/Clock.h"
#include "Shell/SerialWorker.h"
#include "Usage/PlanUsageReader.h"

namespace nubble {

class Defaults;
class Home;

// The two windows of the user's Claude plan, read every ten seconds from what the desktop application has
// cached of its own usage requests. Numbers stay until newer ones are read; `problem` says why they may be
// old. Main thread only; reads happen on a worker, and the destructor ends the one under way.
class PlanUsageMonitor : public QObject {
    Q_OBJECT

public:
    // `domain` is the service that the desktop application asks; see defaultDomain.
    PlanUsageMonitor(const Home &home, const Clock &clock, const QString &domain, QObject *parent = nullptr);
    PlanUsageMonitor(PlanUsageReader reader, const Clock &clock, QObject *parent = nullptr);
    // Shows that and never anything else: for pictures of the card.
    PlanUsageMonitor(
        const PlanWindows &windows, const std::optional<QString> &problem, bool isOld,
        QObject *parent = nullptr);

    static const QString defaultDomain;
    [[nodiscard]] static QString domainIn(const Defaults &defaults); // as the user prefers

    [[nodiscard]] const PlanWindows &windows() const { return m_shown.windows; }
    [[nodiscard]] const std::optional<QString> &problem() const
    {
        return m_shown.problem;
    }                                                          // absent when fresh
    [[nodiscard]] bool isOld() const { return m_shown.isOld; } // the windows, by more than half an hour
    [[nodiscard]] bool isRefreshing() const { return m_working; }

    // Starts a read unless one is under way; `rescan` has the cache folder listed again, whether it seems to
    // have changed or not, by that read or the next.
    void refresh(bool rescan);

Q_SIGNALS:
    void changed(); // windows, their age, or problem
    void refreshingChanged();

private:
    struct Shown {
        PlanWindows windows;
        std::optional<QString> problem;
        bool isOld = false;

        bool operator==(const Shown &) const = default;
    };

    void accept(const ReadOutcome &outcome);
    Shown shownAfter(const ReadOutcome &outcome);
    bool isWithin(std::chrono::milliseconds span, const std::optional<TimePoint> &since) const;

    const Clock *const m_clock; // none for a sample
    Shown m_shown;
    TimePoint m_capturedAt;               // of the windows
    QList<QByteArray> m_entries;          // known to hold usage answers
    std::optional<TimePoint> m_scannedAt; // when the folder was last scanned
    std::optional<TimePoint> m_listedAt;  // when it was last listed whatever it seemed; none: is to be
    bool m_working = false;
    PlanUsageReader m_reader; // the worker's, while m_working
    SerialWorker m_worker;
};

} // namespace nubble
