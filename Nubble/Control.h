#pragma once

#include <QDBusAbstractAdaptor>
#include <QString>

namespace nubble {

class AppDelegate;

// How other processes of the user reach the running instance, over the session bus.
class Control : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.brevandel.nubble.Control")

public:
    explicit Control(QObject *exported);

    void serve(AppDelegate &delegate); // before the event loop runs

public Q_SLOTS:
    void Show();
    void OpenSessions();
    QString Status(); // JSON

private:
    AppDelegate *m_delegate = nullptr;
};

} // namespace nubble
