#pragma once

#include <QWidget>

class QLabel;

namespace nubble {

// What stands in a conversation that has not begun: what Claude can do, and some first questions.
class EmptyConversation : public QWidget {
    Q_OBJECT

public:
    explicit EmptyConversation(QWidget *parent = nullptr);

    void setInvitation(const QString &invitation);

Q_SIGNALS:
    void suggested(const QString &question);

private:
    QLabel *m_invitation;
};

} // namespace nubble
