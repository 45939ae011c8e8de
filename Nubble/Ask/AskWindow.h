#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

#include "Ask/AskClaude.h"
#include "Ask/ScreenCapturer.h"
#include "Ask/ScreenSettling.h"
#include "Placement/WindowPlacement.h"
#include "Platform/Workspace.h"
#include "Widgets/FloatingWindow.h"

namespace nubble {

class DesktopPreferences;
class ScreenCapture;

// The window in which the user talks to Claude about the screen, and the conversation, which outlives each
// closing. The window is never in its own picture: a closed one opens after the screen has been grabbed, an
// open one is out of sight while it is. Main thread only.
class AskWindow : public QObject {
    Q_OBJECT

public:
    struct Surroundings {
        Workspace &workspace;
        ScreenCapture &capture;
        const DesktopPreferences &preferences;
        FloatingWindow::SurfaceFactory makeSurface;
        std::function<QRect(const QSize &)> place; // where a window of that size opens
        std::function<void(const QUrl &)> openLink;
    };

    AskWindow(const Home &home, Surroundings surroundings, QObject *parent = nullptr);

    // Opens a new conversation, with a picture of the screen; the question is asked once that is taken.
    void activate(const std::optional<QString> &question = {});
    void recapture();  // a new picture for the next question
    void toggle();     // what the key for the window does
    void screenshot(); // what the key for a screenshot does

    [[nodiscard]] const AskClaude &conversation() const { return m_ask; }
    [[nodiscard]] bool isOpen() const { return m_window.isOpen(); }

Q_SIGNALS:
    void closed();

private:
    [[nodiscard]] QWidget *makeView();
    void noteFront();
    void shoot();
    void grab();
    void appear();
    void accept(const ScreenContext &screen);

    Surroundings m_surroundings;
    AskClaude m_ask;
    FloatingWindow m_window;
    ScreenSettling m_settling;
    std::optional<RunningApplication> m_lastFront; // whose screen it is
    std::optional<QString> m_question;             // asked once the picture is taken
    bool m_opens = false;                          // once the screen has been grabbed
    QElapsedTimer m_sinceClosed;
    int m_shot = 0; // the last one alone counts
    ScreenCapturer m_capturer;
};

} // namespace nubble
