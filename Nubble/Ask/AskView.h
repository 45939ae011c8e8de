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
struct AskMessage;

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

protected:
    void focusInEvent(QFocusEvent *event) override;

private:
    [[nodiscard]] QWidget *makeHeader();
    void followTurns();
    void followState();
    void append(const AskMessage &message);
    void showState();
    void showAwaited();
    void send();
    void sendWhenSeen();

    AskClaude &m_ask;
    const DesktopPreferences &m_preferences;
    QWidget *m_header; // Tab goes through all in this order
    ThreadView *m_thread;
    EmptyConversation *m_empty;
    ReplyFooter *m_footer;
    ScreenChip *m_chip;
    Composer *m_composer;
    QStackedLayout *m_stack;
    bool m_sendsWhenSeen = false; // the screen
};

} // namespace nubble
