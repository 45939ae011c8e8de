#pragma once

#include <QList>
#include <QObject>

#include <memory>

#include "Ask/AskMessage.h"
#include "Ask/ClaudeProtocol.h"
#include "Ask/ScreenContext.h"
#include "Platform/Home.h"
#include "Shell/Command.h"
#include "Shell/LineBuffer.h"
#include "Shell/SerialWorker.h"

namespace nubble {

class ChildProcess;

// One conversation with Claude. Keeps one `claude` for all of its turns, which ends with this object or the
// program; a conversation whose process has ended goes on in a new one. Nothing here blocks. Main thread
// only.
class AskClaude : public QObject {
    Q_OBJECT

public:
    explicit AskClaude(const Home &home, QObject *parent = nullptr);
    ~AskClaude() override;

    // Where its `claude` works, which is how its sessions are told from the user's.
    [[nodiscard]] static QString workingDirectory(const Home &home);

    [[nodiscard]] const QList<AskMessage> &messages() const { return m_messages; } // oldest first
    [[nodiscard]] bool isBusy() const { return m_busy; } // from a question to the end of its reply
    [[nodiscard]] const std::optional<QString> &problem() const { return m_problem; } // for the user
    // Whether it is in `claude`'s words, which may be some of the conversation.
    [[nodiscard]] bool isProblemQuoted() const { return m_problem && m_isProblemQuoted; }

    // What the user's screen shows; goes with the next question.
    [[nodiscard]] const std::optional<ScreenContext> &attachment() const { return m_attachment; }
    void setAttachment(std::optional<ScreenContext> attachment);
    [[nodiscard]] bool isCapturing() const { return m_capturing; }
    void setCapturing(bool capturing);

    void send(const QString &text); // nothing while busy
    void stop();                    // the reply under way stays as far as it has come
    void reset();                   // a new conversation

Q_SIGNALS:
    void turnBegun();                    // a question and an empty reply have been appended
    void replyGrew(const QString &text); // the last message, by that text
    void replyReplaced();
    void replyRemoved(); // the last message, which was one
    void wasReset();
    void busyChanged();
    void problemChanged();
    void attachmentChanged();
    void capturingChanged();

private:
    [[nodiscard]] bool ensureRunning();
    void readOutput(const QByteArray &chunk);
    void handleLines();
    void handleElsewhere(const QByteArray &line);
    void handle(const std::optional<ClaudeProtocol::Event> &event);
    void handle(std::monostate) { }
    void handle(const ClaudeProtocol::TextDelta &delta);
    void handle(const ClaudeProtocol::Reply &part);
    void handle(const ClaudeProtocol::TurnEnd &end);
    void handleEnd();
    void awaitEnd(const QString &whyItDoesNotRead);
    void endProcess();
    [[nodiscard]] AskMessage *reply();
    void removeReply();
    enum class Words { Ours, Claudes };
    void fail(const QString &message, Words words = Words::Ours);
    void setBusy(bool busy);
    void setProblem(std::optional<QString> problem);

    const Home m_home;
    QList<AskMessage> m_messages;
    bool m_busy = false;
    std::optional<QString> m_problem;
    bool m_isProblemQuoted = false;
    std::optional<ScreenContext> m_attachment;
    bool m_capturing = false;
    std::unique_ptr<ChildProcess> m_process;
    std::optional<QString> m_sessionId;
    bool m_resumes = false; // the process was told to, and has not begun to
    struct {
        ClaudeProtocol::Reply whole; // what has come of the message
        QString before;              // what stood in its place before the last part
    } m_parts;
    LineBuffer m_lines;
    std::shared_ptr<void> m_decoding; // while the worker has a long line; what follows it waits
    std::optional<CommandEnd> m_end;  // waits for that as well
    SerialWorker m_worker;
};

} // namespace nubble
