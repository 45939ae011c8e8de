#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>

namespace nubble {

// The Linux distribution that this machine runs.
namespace Distribution {

// The command by which a person installs `package` where the os-release file holds these bytes; none for a
// distribution whose package manager is not known. Pure.
[[nodiscard]] std::optional<QString> installCommand(QByteArrayView osRelease, const QString &package);

// What the file holds, as far as that is reasonable; nothing without one. Blocks; any thread.
[[nodiscard]] QByteArray osRelease();

} // namespace Distribution

} // namespace nubble
