#pragma once

#include <QString>

#include "Platform/Outcome.h"

namespace nubble {

struct Relaunch;

// The entry in the user's configuration folder by which the desktop starts this program at login. Any thread.
class Autostart {
public:
    explicit Autostart(const QString &configFolder);

    Outcome enable(const Relaunch &start) const;
    Outcome disable() const; // done as well when there is none

private:
    QString m_folder;
    QString m_file;
};

} // namespace nubble
