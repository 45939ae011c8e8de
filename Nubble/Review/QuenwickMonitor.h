#pragma once

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

#include "Review/LoopbackRequest.h"
#include "Review/ReviewTexts.h"

class QJsonObject;
class QUrl;

namespace nubble {

class Clock;
class Home;
class ProcessTable;
struct ReviewLook;

// What waits for the user's review in Quenwick, looked up every three seconds: by Quenwick's interface on the
// loopback while it answers, else in its database. Decisions go to the interface. Main thread only; the
// database is read on a worker. Every failure is silent and looked at again at the next poll.
class QuenwickMonitor : public QObject {
    Q_OBJECT

public:
    struct Surroundings {
        const Clock &clock;
        const ProcessTable &processes;
        // Brings Quenwick forward, or starts it; the process is where it runs, as far as is known. False when
        // it is not installed as an application.
        std::function<bool(const QString &identifier, std::optional<pid_t> process)> openApplication;
        std::function<void(const QUrl &)> openUrl;
        LoopbackRequest::Limits limits{}; // of each request
    };

    // Begins to poll; whether Quenwick is installed is known at once.
    QuenwickMonitor(const Home &home, Surroundings surroundings, QObject *parent = nullptr);
    // Shows that and never anything else: for pictures of the card.
    explicit QuenwickMonitor(ReviewState sample, QObject *parent = nullptr);
    ~QuenwickMonitor() override;

    static const QString identifier; // of the application

    [[nodiscard]] const ReviewState &state() const { return m_state; }
    [[nodiscard]] bool isRefreshing() const { return m_isPolling; }

    void refresh();    // starts a poll unless one is under way
    void refreshNow(); // has Quenwick look for new messages, too

    // Where Quenwick is not live, it is brought forward instead. Does nothing while the item is busy.
    void perform(ReviewAction action, const QuenwickItem &item);
    // Puts it on the calendar without asking in Quenwick, and approves it.
    void schedule(const QuenwickItem &item);
    void openApp();

Q_SIGNALS:
    void changed(); // anything in the state

private:
    using Answered = std::function<void(const std::optional<QuenwickAnswer> &)>;
    struct Polling;

    void poll();
    template <typename Work, typename Publish> void onWorker(Work work, Publish publish);
    [[nodiscard]] QDateTime today() const;
    void accept(const ReviewLook &look);
    void acceptDatabase(const ReviewLook &look);
    void fetchLive(const LiveState &live);
    void acceptLive(const LiveState &live, const std::optional<Inbox> &inbox);
    void show(const std::optional<Inbox> &inbox, ReviewState next);
    void publish(const ReviewState &next);

    [[nodiscard]] bool isReachable() const;
    void begin(const QuenwickItem &item);
    void decide(const QuenwickItem &item, ReviewAction action, const Answered &done);
    void finish(const QuenwickItem &item, const QString &message, bool answered);
    void post(const QByteArray &path, const QJsonObject &json, const Answered &done);

    ReviewState m_state;
    std::optional<LiveState> m_live; // of the last time that it answered
    bool m_isPolling = false;
    bool m_showsDatabase = false; // the list is the one that was read last, unchanged since
    quint64 m_generation = 0;     // of polls: the results of older ones are late
    QSet<QString> m_unanswered;   // ids of items that were decided without an answer
    QPointer<LoopbackRequest> m_fetch;
    std::unique_ptr<Polling> m_polling; // none for a sample
};

} // namespace nubble
