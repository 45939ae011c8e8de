#pragma once

#include <QObject>
#include <QUrl>

#include <functional>

#include "Search/ChatSearch.h"
#include "Widgets/FloatingWindow.h"

namespace nubble {

class ChatSearchView;
class Clock;
class DesktopPreferences;

// The window in which the user searches past chats, and the search, which outlives each closing: it opens
// where it was left, with the answer brought up to date. Main thread only.
class ChatSearchWindow : public QObject {
    Q_OBJECT

public:
    struct Surroundings {
        const Clock &clock;
        const DesktopPreferences &preferences;
        FloatingWindow::SurfaceFactory makeSurface;
        std::function<QRect(const QSize &)> place; // where a window of that size opens
        std::function<void(const QUrl &)> openLink;
    };

    ChatSearchWindow(const Home &home, Surroundings surroundings, QObject *parent = nullptr);

    void show();
    void toggle(); // what the key for it does

    [[nodiscard]] const ChatSearch &search() const { return m_search; }
    [[nodiscard]] bool isOpen() const { return m_window.isOpen(); }

Q_SIGNALS:
    void closed();

private:
    [[nodiscard]] QWidget *makePanel();

    Surroundings m_surroundings;
    ChatSearch m_search;
    ChatSearchView *m_view = nullptr; // once it has been opened
    FloatingWindow m_window;
};

} // namespace nubble
