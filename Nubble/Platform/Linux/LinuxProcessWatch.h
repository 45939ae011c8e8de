#pragma once

#include <memory>
#include <unordered_map>

#include "Platform/ProcessWatch.h"

class QSocketNotifier;

namespace nubble {

// By a process descriptor each, at most 64 of them.
class LinuxProcessWatch : public ProcessWatch {
    Q_OBJECT

public:
    LinuxProcessWatch();
    ~LinuxProcessWatch() override;

    [[nodiscard]] bool watch(const QSet<pid_t> &processes) override;
    [[nodiscard]] bool hasEnded(pid_t process) const override;

private:
    class Watched;

    std::unordered_map<pid_t, std::unique_ptr<Watched>> m_watched;
};

} // namespace nubble
