#pragma once

#include <QMap>
#include <QObject>
#include <QString>

namespace nubble {

// What other programs of this user broadcast to this one. Main thread only.
class DistributedNotifications : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

Q_SIGNALS:
    // `userInfo` holds what is text; it is empty when the sender has sent something else.
    void received(const QString &name, const QMap<QString, QString> &userInfo);
};

} // namespace nubble
