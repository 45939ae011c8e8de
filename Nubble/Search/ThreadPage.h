#pragma once

#include <QWidget>

#include "Search/ChatRecords.h"
#include "Shell/SerialWorker.h"
#include "Thread/TextMatcher.h"

namespace nubble {

class ThreadHeader;
class ThreadView;

// A chat that is read: its messages, and the match that is shown. It is cut up beside the main thread, so it
// is there a moment after it was set.
class ThreadPage : public QWidget {
    Q_OBJECT

public:
    explicit ThreadPage(QWidget *parent = nullptr);

    void setThread(const ChatThread &thread, const TextMatcher &matcher, const QString &date);
    void clear();
    void showHit(qsizetype hit); // of the thread's
    [[nodiscard]] ThreadView &messages() { return *m_messages; }

Q_SIGNALS:
    void ready();
    void backWanted();
    void stepWanted(int by);
    void openWanted();
    void linkActivated(const QUrl &url);

private:
    ChatThread m_thread;
    qsizetype m_hit = 0;
    int m_asked = 0; // for threads; the last one alone counts
    bool m_isReady = false;
    ThreadHeader *m_header;
    ThreadView *m_messages;
    SerialWorker m_cutter;
};

} // namespace nubble
