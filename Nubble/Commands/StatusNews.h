#pragma once

#include <QJsonObject>
#include <QObject>
#include <QTimer>

#include <functional>

namespace nubble {

// Notices when what the status output tells has become another, for those who follow it. How long ago
// something was is left out: that changes all the time. Does nothing until somebody follows. Main thread
// only.
class StatusNews : public QObject {
    Q_OBJECT

public:
    explicit StatusNews(QObject *parent = nullptr);

    void begin(const QJsonObject &status);                     // somebody follows, and has been told this
    void consider(const std::function<QJsonObject()> &status); // looks a quarter of a second later, once

Q_SIGNALS:
    void changed();

private:
    void look();

    bool m_isFollowed = false;
    QJsonObject m_told;
    std::function<QJsonObject()> m_status;
    QTimer m_pause;
};

} // namespace nubble
