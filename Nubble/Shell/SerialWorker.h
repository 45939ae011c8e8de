#pragma once

#include <QMutex>
#include <QObject>
#include <QThreadPool>

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <stop_token>

namespace nubble {

// Blocking work, one after another on one thread of its own; what it gives is published on the thread that
// made this object, by a queued call. To be the last member of its owner: once the destructor has begun,
// which stops the work under way and waits for it, nothing is begun or published any more.
class SerialWorker {
public:
    // `niceness` is the thread's, and so that of the commands that it runs: 0 to 19, or ours if that is more.
    explicit SerialWorker(const QString &name, int niceness = 0);
    ~SerialWorker();
    Q_DISABLE_COPY_MOVE(SerialWorker)

    // Has `work(stop)` done after all that was handed in before, and then `publish(result)` called.
    template <typename Work, typename Publish> void add(Work work, Publish publish)
    {
        handIn({jobOf(std::move(work), std::move(publish)), false});
    }

    // The same, in the place of what was handed in here and has not begun, which then never happens.
    template <typename Work, typename Publish> void addLatest(Work work, Publish publish)
    {
        handIn({jobOf(std::move(work), std::move(publish)), true});
    }

    // Whether addLatest() would still replace something. If it says no, that has begun.
    [[nodiscard]] bool hasLatestWaiting() const;

    // Blocks until everything handed in so far is done and published, or `patience` is over: false.
    bool waitForDone(std::optional<std::chrono::milliseconds> patience = std::nullopt);

private:
    using Publication = std::function<void()>;
    struct Job {
        std::function<Publication(const std::stop_token &)> run;
        bool isLatest;
    };

    template <typename Work, typename Publish> static auto jobOf(Work work, Publish publish)
    {
        return [work = std::move(work),
                publish = std::move(publish)](const std::stop_token &stop) -> Publication {
            return [publish, result = work(stop)] { publish(result); };
        };
    }

    void handIn(Job job);
    void runNext();
    bool publishNext();
    void lowerPriority() const;

    const int m_niceness;
    std::stop_source m_stop;
    mutable QMutex m_mutex;                 // guards the two below
    std::deque<Job> m_jobs;                 // not begun
    std::deque<Publication> m_publications; // of what is done
    QObject m_publisher;                    // its queued calls go with it
    QThreadPool m_thread;                   // never more than one, which stays
};

} // namespace nubble
