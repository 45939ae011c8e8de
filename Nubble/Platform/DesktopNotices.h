#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

namespace nubble {

// What the desktop is to show to the user, wherever it shows such things. Each text is one line.
struct Notice {
    QString title;
    QString text{};
    QString action{}; // what a click does; empty for nothing
    QString sound{};  // the desktop's name of it; silent when empty

    bool operator==(const Notice &) const = default;
};

// Notices of the desktop. Returns at once; where the desktop shows none nothing happens. Those that are still
// up go with the service. Main thread only.
class DesktopNotices : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Under an id of the caller's; takes the place of what is up under the same.
    virtual void post(quint32, const Notice &) { }
    virtual void withdraw(quint32) { } // also of what is not up, or no longer

Q_SIGNALS:
    // By a click, with the desktop's activation token; empty without one.
    void chosen(quint32 id, const QByteArray &token);
};

} // namespace nubble
