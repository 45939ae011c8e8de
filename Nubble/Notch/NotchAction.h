#pragma once

#include <QObject>
#include <QString>

#include <functional>

namespace nubble {

// One of the buttons in the panel's body, as the panel knows it: what it looks like now, and what it does.
// Main thread only.
class NotchAction : public QObject {
    Q_OBJECT

public:
    struct Look {
        QString symbol;           // see Symbols
        QString helpText;         // tool tip, and name for screen readers
        bool isRecording = false; // nobody is to be recorded without seeing it: red, and pulses
        int badge = 0;            // how much waits there
        QString caption = {};     // a word about it

        bool operator==(const Look &) const = default;
    };

    NotchAction(Look look, std::function<void()> run, QObject *parent = nullptr)
        : QObject(parent), m_look(std::move(look)), m_run(std::move(run))
    {
    }

    [[nodiscard]] const Look &look() const { return m_look; }
    void setLook(const Look &look);
    void run() { m_run(); }

Q_SIGNALS:
    void lookChanged(); // never to an equal one

private:
    Look m_look;
    std::function<void()> m_run;
};

} // namespace nubble
