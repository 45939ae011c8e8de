#pragma once

#include <QObject>

namespace nubble {

// What one part of the program asks of another without knowing who answers. Main thread only.
class NotificationCenter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    void postOpenChatSearch() { Q_EMIT openChatSearch(); }
    void postAskClaude() { Q_EMIT askClaude(); }

Q_SIGNALS:
    void openChatSearch();
    void askClaude();
};

} // namespace nubble
