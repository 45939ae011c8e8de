#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusContext>
#include <QString>

namespace nubble {

class AppCommands;
class Outcome;
struct AddonRequest;
struct CommandLine;

// What the running instance offers on the bus: other processes of the user ask it for the commands.
class ControlObject : public QObject, public QDBusContext {
    Q_OBJECT

public:
    // The bus name of the instance: each home folder given by hand has one of its own.
    [[nodiscard]] static QString serviceName(const CommandLine &line);

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
    explicit ControlAdaptor(ControlObject *object) : QDBusAbstractAdaptor(object), m_object(*object) { }

    void serve(AppCommands &commands) { m_commands = &commands; }

public Q_SLOTS:
    void Show();
    void Hide();
    void Toggle();
    void OpenSessions();
    void Ask(const QString &question); // an empty one is none
    void Search();
    void StartNotes();
    void StopNotes();
    QString Status(); // JSON
    void Restart();   // the name is free when this answers
    void Quit();

private:
    void perform(const AddonRequest &request);
    void answer(const Outcome &outcome);

    ControlObject &m_object;
    AppCommands *m_commands = nullptr;
};

} // namespace nubble
