#pragma once

#include <QObject>
#include <QUrl>

#include <functional>
#include <optional>

#include "Platform/Clock.h"
#include "Platform/Home.h"
#include "Platform/Outcome.h"
#include "Search/ResumeScripts.h"

namespace nubble {

// The address that a link has, if it is one that may be opened: on the web, or of the desktop application.
// Pure.
[[nodiscard]] std::optional<QUrl> checkedLink(const QString &link);

// Goes on with a session in a new terminal window, or opens a link. Main thread only; nothing here blocks.
class ChatOpening : public QObject {
    Q_OBJECT

public:
    // `openUrl` hands a checked link to the desktop's handler.
    explicit ChatOpening(
        const Home &home, std::function<void(const QUrl &)> openUrl, QObject *parent = nullptr);

    void resume(const QString &command);
    void openLink(const QString &link);

Q_SIGNALS:
    // For each, never from within.
    void opened(const nubble::Outcome &outcome);

private:
    void runInTerminal(const QString &script);
    void tellSoon(const Outcome &outcome);

    const QString m_homeFolder;
    const std::function<void(const QUrl &)> m_openUrl;
    const SystemClock m_clock;
    ResumeScripts m_scripts;
};

} // namespace nubble
