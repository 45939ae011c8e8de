#pragma once

#include <QUrl>
#include <QWidget>

class QStackedLayout;

namespace nubble {

class AskClaude;
class Composer;
class DesktopPreferences;
class EmptyConversation;
class ReplyFooter;
class ScreenChip;
class ThreadView;

// The conversation with Claude: what has been said, and where the user writes. Draws its model and calls what
// it can do; the rest it asks of whoever has made it.
class AskView : public QWidget {
    Q_OBJECT

public:
    // Both outlive it.
    AskView(AskClaude &ask, const DesktopPreferences &preferences, QWidget *parent = nullptr);

Q_SIGNALS:
    void newConversationWanted();
    void screenshotWanted();
    void closeWanted();
    void linkActivated(const QUrl &url);

private:
    [[nodiscard]] QWidget *makeHeader();
    void followTurns();
    void followState();
    void finishReply();
    void showState();
    void showAwaited();
    void send();
    void sendWhenSeen();

    AskClaude &m_ask;
    const DesktopPreferences &m_preferences;
    // In the order of Tab. The composer comes first: from a widget with a focus proxy, Tab jumps to that.
    ScreenChip *m_chip;
    Composer *m_composer;
    QWidget *m_header;
    EmptyConversation *m_empty;
    ThreadView *m_thread;
    ReplyFooter *m_footer;
    QStackedLayout *m_stack;
    bool m_sendsWhenSeen = false; // the screen
};

} // namespace nubble
