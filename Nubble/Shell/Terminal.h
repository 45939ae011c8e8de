#pragma once

#include <QObject>
#include <QTimer>

#include <memory>

#include "Shell/Command.h"

namespace nubble {

class ChildProcess;

// Opens one program in a new window of the terminal that the desktop names, else of the first common one that
// is in the PATH and works. The window has our environment and lives on its own: neither this object nor the
// program's end closes it. Main thread only; nothing here blocks.
class Terminal : public QObject {
    Q_OBJECT

public:
    // `program` is the absolute path of an executable file, which begins in `folder`.
    explicit Terminal(QString program, QString folder, QObject *parent = nullptr);
    ~Terminal() override;

    void open(); // once

Q_SIGNALS:
    // Once, never from within open(): when the program has begun, or its terminal has been given some seconds
    // for that. False: there is no terminal that works. To be deleted later, not from within.
    void opened(bool isOpen);

private:
    class Beginning;

    void tryNext();
    void decide(const CommandEnd &end);
    void conclude(bool isOpen);

    const QString m_program;
    const QString m_folder;
    QList<Command> m_candidates; // not tried yet
    std::unique_ptr<ChildProcess> m_process;
    std::unique_ptr<Beginning> m_beginning;
    QTimer m_patience;
    bool m_isDecided = false;
};

} // namespace nubble
