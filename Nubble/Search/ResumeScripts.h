#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

#include "Platform/Clock.h"
#include "Platform/Home.h"
#include "Platform/Outcome.h"
#include "Shell/SerialWorker.h"

namespace nubble {

// The scripts that terminals run: written into a folder of our own, and removed a day later, by this run of
// the program or a later one. Main thread only; nothing here blocks.
class ResumeScripts : public QObject {
    Q_OBJECT

public:
    // Why it was not written, or its path.
    using Written = std::function<void(const Outcome &outcome, const QString &path)>;

    // Keeps `clock`, and removes what is old.
    explicit ResumeScripts(const Home &home, const Clock &clock, QObject *parent = nullptr);

    [[nodiscard]] static QString folder(const Home &home);

    void write(const QByteArray &text, Written written);

private:
    void sweep();
    void sweepAfter(std::chrono::milliseconds span);

    const QString m_folder;
    const Clock &m_clock;
    QTimer m_sweeping{this}; // runs while there is something to remove
    SerialWorker m_worker;
};

} // namespace nubble
