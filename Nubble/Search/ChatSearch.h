#pragma once

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

#include "Platform/Home.h"
#include "Search/ChatOpening.h"
#include "Search/ChatRecords.h"
#include "Shell/SerialWorker.h"

namespace nubble {

class ChildProcess;

// The search in every past chat, by the `yarnbin` command, which keeps the index: the query with its results,
// the thread that is open, and what is selected in either. Nothing here blocks; only the newest search is
// heard, and one that is overtaken is ended. Main thread only.
class ChatSearch : public QObject {
    Q_OBJECT

public:
    // `openUrl` hands a checked link to the desktop's handler.
    explicit ChatSearch(
        const Home &home, std::function<void(const QUrl &)> openUrl, QObject *parent = nullptr);
    ~ChatSearch() override;

    [[nodiscard]] const QString &query() const { return m_query; }
    void setQuery(const QString &query); // searches soon
    [[nodiscard]] const std::optional<QString> &category() const { return m_category; }
    void setCategory(const std::optional<QString> &category); // searches at once

    [[nodiscard]] const QList<ChatHit> &results() const { return m_results; }
    [[nodiscard]] const QList<ChatCategory> &categories() const { return m_categories; }
    [[nodiscard]] const QString &corrected() const { return m_corrected; } // empty when nothing was
    [[nodiscard]] const std::optional<QString> &problem() const { return m_problem; }
    [[nodiscard]] qsizetype selection() const { return m_selection; }        // in the results
    [[nodiscard]] const QStringList &words() const { return m_words; }       // that the results match
    [[nodiscard]] bool hasAnswered() const { return m_answered; }            // since it was asked or failed
    [[nodiscard]] bool isReading() const { return m_reading != nullptr; }    // a thread, which opens soon
    [[nodiscard]] bool isSearching() const { return m_search || m_reading; } // for results, or a thread

    [[nodiscard]] const std::optional<ChatThread> &thread() const { return m_thread; } // while one is open
    [[nodiscard]] qsizetype hit() const { return m_hit; } // the match shown, of the thread's

    void schedule(bool immediately);
    void loadCategories();
    void read(const ChatHit &hit); // opens its thread, unless the query changes meanwhile
    void openThread();             // of what is selected
    void closeThread();
    void stepHit(qsizetype by); // wraps
    void move(qsizetype by);    // keeps within the results

    // Goes on with a Claude Code session in a new terminal window, or opens the link.
    void open(const ChatHit &hit);
    void open(const ChatThread &thread);

Q_SIGNALS:
    void queryChanged();
    void categoryChanged();
    void answered(); // results, corrections, problem and selection; or an old problem is no more
    void categoriesChanged();
    void selectionChanged();
    void searchingChanged();
    void threadChanged();
    void hitChanged();
    void opened(const nubble::Outcome &outcome); // never from within; not when there is nothing to open

private:
    using Process = std::unique_ptr<ChildProcess>;
    using Answer = std::function<void(const std::optional<QByteArray> &)>; // none: the tool failed

    void forgetProblem();
    void run();
    [[nodiscard]] QString queryText() const;
    [[nodiscard]] Process exec(const QStringList &arguments, const Answer &answer);
    void accept(const std::optional<SearchResponse> &response, const QString &query);
    void setProcess(Process &which, Process process);
    void openTarget(const ChatTarget &target);

    const Home m_home;
    QString m_query;
    std::optional<QString> m_category;
    QList<ChatHit> m_results;
    QList<ChatCategory> m_categories;
    QString m_corrected;
    QStringList m_words;
    bool m_answered = false;
    std::optional<QString> m_problem;
    qsizetype m_selection = 0;
    std::optional<ChatThread> m_thread;
    qsizetype m_hit = 0;
    QTimer m_pending;
    int m_generation = 0; // of searches
    int m_reads = 0;      // of threads
    Process m_search;
    Process m_categoryList;
    Process m_reading;
    ChatOpening m_opening;
    SerialWorker m_decoder;
};

} // namespace nubble
