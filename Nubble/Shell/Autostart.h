#pragma once

#include <QString>

#include <optional>

namespace nubble {

struct Relaunch;

// The entry in the user's configuration folder by which the desktop starts this program at login. Any thread.
class Autostart {
public:
    explicit Autostart(const QString &configFolder);

    // Both return why it is not done, in one line.
    [[nodiscard]] std::optional<QString> enable(const Relaunch &start) const;
    [[nodiscard]] std::optional<QString> disable() const; // done as well when there is none

private:
    QString m_folder;
    QString m_file;
};

} // namespace nubble
