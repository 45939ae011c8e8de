#pragma once

#include <QWidget>

#include "Search/ChatRecords.h"

namespace nubble {

class NotchButton;

// The line above a chat that is read: the way back, what it is, which match is shown, and what opens it.
class ThreadHeader : public QWidget {
    Q_OBJECT

public:
    explicit ThreadHeader(QWidget *parent = nullptr);

    void setThread(const ChatThread &thread, const QString &date);
    void setMatch(const QString &match); // "3 of 7"; empty when there is none

Q_SIGNALS:
    void backWanted();
    void stepWanted(int by);
    void openWanted();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_title;
    QString m_date;
    QString m_match;
    NotchButton *m_back;
    NotchButton *m_previous;
    NotchButton *m_next;
    NotchButton *m_open;
};

} // namespace nubble
