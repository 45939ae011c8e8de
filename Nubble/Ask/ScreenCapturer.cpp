#include "Ask/ScreenCapturer.h"

#include <QPointer>

#include "Platform/MainThread.h"
#include "Platform/ScreenCapture.h"
#include "Platform/Workspace.h"
#include "Shell/OneLine.h"

namespace nubble {

namespace {

// The class is the program's; the name is one of its windows' at times.
QString nameOf(const RunningApplication &application)
{
    return oneLine(application.identifier.isEmpty() ? application.name : application.identifier);
}

ScreenContext encoded(ScreenContext context, const QImage &picture)
{
    if (const std::optional<Screenshot> screenshot = encodeScreenshot(picture)) {
        context.jpeg = screenshot->jpeg;
        context.thumbnail = screenshot->thumbnail;
    }
    return context;
}

} // namespace

ScreenCapturer::ScreenCapturer(const Workspace &workspace, ScreenCapture &screen, QObject *parent)
    : QObject(parent), m_workspace(workspace), m_screen(screen)
{
}

void ScreenCapturer::capture(
    const std::optional<RunningApplication> &front, const Done &done, const std::function<void()> &grabbed)
{
    assertMainThread("Nubble/Ask/ScreenCapturer");
    ScreenContext names;
    if (front)
        names.appName = nameOf(*front);
    if (front && front->pid && m_screen.canCapture())
        if (const std::optional<QString> title = m_workspace.windowTitle(*front->pid))
            names.windowTitle = oneLine(*title);
    m_waiting.push_back({names, done, grabbed});
    if (!m_isRunning)
        startNext();
}

// The last thing that is done is a call to the outside, which may end this object.
void ScreenCapturer::startNext()
{
    m_isRunning = true;
    const Request request = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_worker.add(
        [names = request.names, picture = m_screen.canCapture() ? m_screen.grab() : QImage()](
            const std::stop_token &) { return encoded(names, picture); },
        [this, request](const ScreenContext &context) { finish(request, context); });
    if (request.grabbed)
        request.grabbed();
}

void ScreenCapturer::finish(const Request &request, const ScreenContext &context)
{
    const QPointer<ScreenCapturer> self(this);
    request.done(context);
    if (!self)
        return;
    m_isRunning = false;
    if (!m_waiting.empty())
        startNext();
}

} // namespace nubble
