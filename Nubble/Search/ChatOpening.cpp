#include "Search/ChatOpening.h"

#include <algorithm>
#include <utility>

#include "Platform/MainThread.h"
#include "Search/ResumeText.h"
#include "Shell/Terminal.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr qsizetype longestLink = 8192; // characters; its handler is given it as an argument

Outcome cannotResume(const QString &why)
{
    return Outcome::failed(u"The session can't be resumed: %1."_s.arg(why));
}

} // namespace

std::optional<QUrl> checkedLink(const QString &link)
{
    const QUrl url = link.size() <= longestLink ? QUrl(link, QUrl::StrictMode) : QUrl();
    const QString scheme = url.isValid() ? url.scheme() : QString();
    const bool isOnTheWeb = (scheme == u"https" || scheme == u"http") && !url.host().isEmpty();
    return isOnTheWeb || scheme == u"claude" ? std::optional(url) : std::nullopt;
}

ChatOpening::ChatOpening(const Home &home, std::function<void(const QUrl &)> openUrl, QObject *parent)
    : QObject(parent), m_homeFolder(home.path()), m_openUrl(std::move(openUrl)), m_scripts(home, m_clock)
{
}

void ChatOpening::resume(const QString &command)
{
    assertMainThread("Nubble/Search/ChatOpening");
    const auto script = resumeScript(command, resumeShell(u"/bin/zsh"_s, loginShell()));
    if (!script) {
        tellSoon(cannotResume(u"its command isn't one that a shell can run"_s));
        return;
    }
    m_scripts.write(*script, [this](const Outcome &outcome, const QString &path) {
        if (outcome.isDone())
            runInTerminal(path);
        else
            Q_EMIT opened(cannotResume(outcome.why()));
    });
}

void ChatOpening::runInTerminal(const QString &script)
{
    auto *terminal = new Terminal(script, m_homeFolder, this);
    connect(terminal, &Terminal::opened, this, [this, terminal](bool isOpen) {
        terminal->deleteLater();
        Q_EMIT opened(isOpen ? Outcome::done() : Outcome::failed(u"No terminal found to resume in."_s));
    });
    terminal->open();
}

void ChatOpening::openLink(const QString &link)
{
    assertMainThread("Nubble/Search/ChatOpening");
    const std::optional<QUrl> url = checkedLink(link);
    if (url)
        m_openUrl(*url);
    tellSoon(url ? Outcome::done() : Outcome::failed(u"This link can't be opened."_s));
}

void ChatOpening::tellSoon(const Outcome &outcome)
{
    QMetaObject::invokeMethod(
        this, [this, outcome] { Q_EMIT opened(outcome); }, Qt::QueuedConnection);
}

} // namespace nubble
