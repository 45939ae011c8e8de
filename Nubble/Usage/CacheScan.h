#pragma once

#include <QByteArray>
#include <QList>

namespace nubble {

// The files in a cache folder that hold answers to usage requests made at `domain`: absolute paths, newest
// first. Looks into the 600 newest files that can be entries, however many there are. Empty when the folder
// cannot be listed. Blocks; any thread.
[[nodiscard]] QList<QByteArray> findUsageEntries(const QByteArray &folder, const QByteArray &domain);

} // namespace nubble
