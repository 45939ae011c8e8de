#include "Ask/AskClaude.h"

#include <QDir>
#include <QProcessEnvironment>
#include <QTimer>

#include "Platform/MainThread.h"
#include "Shell/ChildProcess.h"
#include "Shell/Tools.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr qsizetype longestLine = 64 * 1024 * 1024;
constexpr qsizetype decodedAtOnce = 512 * 1024; // takes a millisecond or so
constexpr auto endFollowsWithin = 500ms;
constexpr qsizetype errorCharacters = 600; // are shown
constexpr qsizetype bytesPerCharacter = 4; // at most

QString errorText(const CommandEnd &end)
{
    return QString::fromUtf8(end.errors).right(errorCharacters).trimmed();
}

} // namespace

AskClaude::AskClaude(const Home &home, QObject *parent)
    : QObject(parent), m_home(home), m_lines(longestLine), m_worker(u"Ask"_s)
{
    assertMainThread("Nubble/Ask/AskClaude");
}

AskClaude::~AskClaude() = default;

QString AskClaude::workingDirectory(const Home &home)
{
    return home.file(u".nubble/ask"_s);
}

void AskClaude::setAttachment(std::optional<ScreenContext> attachment)
{
    if (m_attachment == attachment)
        return;
    m_attachment = std::move(attachment);
    Q_EMIT attachmentChanged();
}

void AskClaude::setCapturing(bool capturing)
{
    if (m_capturing == capturing)
        return;
    m_capturing = capturing;
    Q_EMIT capturingChanged();
}

void AskClaude::send(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || m_busy)
        return;
    setProblem({});
    const std::optional<ScreenContext> screen = m_attachment;
    setAttachment({});
    AskMessage question{.role = AskMessage::Role::User, .text = trimmed};
    if (screen) {
        question.thumbnail = screen->thumbnail;
        question.context = screen->label().isEmpty() ? std::nullopt : std::optional(screen->label());
    }
    m_messages.append(question);
    m_messages.append({.role = AskMessage::Role::Assistant, .text = {}});
    m_parts = {};
    Q_EMIT turnBegun();
    setBusy(true);
    if (ensureRunning())
        m_process->write(ClaudeProtocol::turn(trimmed, screen));
    else
        fail(u"Claude Code isn't installed — the `claude` command wasn't found."_s);
}

void AskClaude::stop()
{
    endProcess();
    setBusy(false);
}

void AskClaude::reset()
{
    stop();
    m_messages.clear();
    m_sessionId.reset();
    Q_EMIT wasReset();
    setProblem({});
    setAttachment({});
}

bool AskClaude::ensureRunning()
{
    if (m_process && m_process->isRunning())
        return true;
    endProcess();
    const std::optional<QString> claude = Tools::find(u"claude"_s, m_home);
    if (!claude)
        return false;
    const QString folder = workingDirectory(m_home);
    QDir().mkpath(folder);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PATH"_s, Tools::searchPath(m_home));
    // Else it reads whatever file follows an @ in the question or the title of a window, which is foreign.
    environment.insert(u"CLAUDE_CODE_DISABLE_ATTACHMENTS"_s, u"1"_s);
    m_process = std::make_unique<ChildProcess>(
        Command{
            .program = *claude,
            .arguments = ClaudeProtocol::arguments(m_sessionId),
            .environment = environment,
            .folder = folder},
        CommandLimits{.errors = errorCharacters * bytesPerCharacter});
    connect(m_process.get(), &ChildProcess::output, this, &AskClaude::readOutput);
    connect(m_process.get(), &ChildProcess::inputRefused, this, &AskClaude::awaitEnd);
    connect(m_process.get(), &ChildProcess::ended, this, [this](const CommandEnd &end) {
        m_end = end;
        handleLines();
    });
    m_resumes = m_sessionId.has_value();
    m_process->start();
    return true;
}

// Mostly it reads no more because it ends, and can say why.
void AskClaude::awaitEnd(const QString &whyItDoesNotRead)
{
    QTimer::singleShot(endFollowsWithin, m_process.get(), [this, whyItDoesNotRead] {
        if (m_end)
            return;
        endProcess();
        if (m_busy)
            fail(u"Couldn't reach Claude: "_s + whyItDoesNotRead);
    });
}

// Whatever it still says is not heard.
void AskClaude::endProcess()
{
    m_process.reset();
    m_lines.clear();
    m_decoding.reset();
    m_end.reset();
}

void AskClaude::readOutput(const QByteArray &chunk)
{
    m_lines.append(chunk);
    handleLines();
    if (m_lines.size() > 2 * longestLine)
        m_process->end(); // it floods us
}

void AskClaude::handleLines()
{
    while (!m_decoding) {
        const std::optional<QByteArray> line = m_lines.takeLine();
        if (!line)
            break;
        if (line->size() > decodedAtOnce)
            handleElsewhere(*line);
        else
            handle(ClaudeProtocol::decode(*line));
    }
    if (!m_decoding && m_end)
        handleEnd();
}

void AskClaude::handleElsewhere(const QByteArray &line)
{
    m_decoding = std::make_shared<char>();
    m_worker.add(
        [line](const std::stop_token &) { return ClaudeProtocol::decode(line); },
        [this, wanted = std::weak_ptr(m_decoding)](const std::optional<ClaudeProtocol::Event> &event) {
            if (wanted.expired())
                return;
            m_decoding.reset();
            handle(event);
            handleLines();
        });
}

void AskClaude::handle(const std::optional<ClaudeProtocol::Event> &event)
{
    if (!event)
        return;
    const auto *end = std::get_if<ClaudeProtocol::TurnEnd>(&event->content);
    m_resumes = m_resumes && end && end->error;
    if (event->sessionId)
        m_sessionId = event->sessionId;
    std::visit([this](const auto &content) { handle(content); }, event->content);
}

void AskClaude::handle(const ClaudeProtocol::TextDelta &delta)
{
    AskMessage *message = reply();
    if (!message || delta.text.isEmpty())
        return;
    message->text += delta.text;
    Q_EMIT replyGrew(delta.text);
}

// `claude` gives each block of a message as a part of its own.
void AskClaude::handle(const ClaudeProtocol::Reply &part)
{
    AskMessage *message = reply();
    ClaudeProtocol::Reply &whole = m_parts.whole;
    const bool goesOn = !part.messageId.isEmpty() && part.messageId == whole.messageId;
    whole = {goesOn ? whole.text + "\n\n"_L1 + part.text : part.text, part.messageId};
    if (!message || message->text == whole.text)
        return;
    m_parts.before = std::exchange(message->text, whole.text);
    Q_EMIT replyReplaced();
}

void AskClaude::handle(const ClaudeProtocol::TurnEnd &end)
{
    if (!end.error) {
        setBusy(false);
        return;
    }
    AskMessage *message = reply();
    if (message && message->text.trimmed() == end.error->trimmed()) {
        message->text = m_parts.before; // `claude` tells an error of the service as a reply, too
        Q_EMIT replyReplaced();
    }
    fail(end.error->left(errorCharacters), Words::Claudes);
}

void AskClaude::handleEnd()
{
    const CommandEnd end = *m_end;
    if (m_resumes && end.kind == CommandEnd::Kind::Exited && end.code == 1)
        m_sessionId.reset(); // it does not know the conversation
    m_process.release()->deleteLater();
    endProcess();
    if (!m_busy)
        return;
    if (end.kind == CommandEnd::Kind::NotStarted)
        fail(u"Couldn't start Claude: "_s + end.whyNotStarted);
    else if (const QString text = errorText(end); !text.isEmpty())
        fail(text, Words::Claudes);
    else
        fail(u"Claude stopped unexpectedly."_s);
}

AskMessage *AskClaude::reply()
{
    const bool isLast = !m_messages.isEmpty() && m_messages.last().role == AskMessage::Role::Assistant;
    return isLast ? &m_messages.last() : nullptr;
}

void AskClaude::removeReply()
{
    m_messages.removeLast();
    Q_EMIT replyRemoved();
}

void AskClaude::fail(const QString &message, Words words)
{
    const AskMessage *last = reply();
    if (last && last->text.isEmpty())
        removeReply();
    m_isProblemQuoted = words == Words::Claudes;
    setProblem(message);
    setBusy(false);
}

void AskClaude::setBusy(bool busy)
{
    if (m_busy == busy)
        return;
    m_busy = busy;
    Q_EMIT busyChanged();
}

void AskClaude::setProblem(std::optional<QString> problem)
{
    if (m_problem == problem)
        return;
    m_problem = std::move(problem);
    Q_EMIT problemChanged();
}

} // namespace nubble
