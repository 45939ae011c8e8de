#pragma once

#include <QDBusAbstractAdaptor>
#include <QString>

class QDBusMessage;

namespace nubble {

class AppDelegate;
struct AddonRequest;
struct CommandLine;

// How other processes of the user reach the running instance, over the session bus. What an add-on refuses
// comes back as an error with the reason as its text.
class Control : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.brevandel.nubble.Control")

public:
    // The bus name of the instance: each home folder given by hand has one of its own.
    [[nodiscard]] static QString serviceName(const CommandLine &line);

    explicit Control(QObject *exported);

    void serve(AppDelegate &delegate); // before the event loop runs

public Q_SLOTS:
    void Show();
    void Hide();
    void Toggle();
    void OpenSessions();
    void Ask(const QString &question, const QDBusMessage &message); // an empty question is none
    void Search(const QDBusMessage &message);
    void StartNotes(const QDBusMessage &message);
    void StopNotes(const QDBusMessage &message);
    QString Status(); // JSON
    void Restart();   // the name is free when this answers
    void Quit();

private:
    void perform(const AddonRequest &request, const QDBusMessage &message);

    AppDelegate *m_delegate = nullptr;
};

} // namespace nubble
