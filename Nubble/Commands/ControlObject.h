#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusContext>
#include <QString>

#include "Commands/StatusNews.h"

namespace nubble {

class AppCommands;
class Outcome;
struct AddonRequest;

// What the running instance offers on the bus: other processes of the user ask it for the commands.
class ControlObject : public QObject, public QDBusContext {
    Q_OBJECT

public:
    ControlObject();

    void serve(AppCommands &commands); // before the event loop runs

private:
    class ControlAdaptor *m_adaptor;
};

// Its interface. What cannot be done comes back as an error with the reason as its text.
class ControlAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.brevandel.nubble.Control")

public:
    explicit ControlAdaptor(ControlObject *object);

    void serve(AppCommands &commands);

public Q_SLOTS:
    void Show();
    void Hide();
    void Toggle();
    void OpenSessions();
    void Next();                       // answers when it is forward
    void Ask(const QString &question); // an empty one is none
    void Search();
    void StartNotes();
    void StopNotes();
    void NotificationsOn();
    void NotificationsOff();
    QString Status(); // JSON
    // As "table", with lines of so many columns, or "json"; or as "line" or "json-line", whose caller is told
    // of changes by the signal from then on.
    QString StatusText(const QString &format, int columns);
    void Restart(); // the name is free when this answers
    void Quit();

Q_SIGNALS:
    void StatusChanged(); // no more often than four times a second

private:
    void perform(const AddonRequest &request);
    void answer(const Outcome &outcome);

    ControlObject &m_object;
    AppCommands *m_commands = nullptr;
    StatusNews m_news;
};

} // namespace nubble
