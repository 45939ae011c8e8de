#pragma once

#include <QByteArray>
#include <QString>

namespace nubble {

// Writes at the end of the recorder's log, which is made when it is missing, for this user alone. A regular
// file only, and never one that somebody else's link leads to; every failure is silent. Any thread.
void appendToLog(const QString &path, const QByteArray &bytes);

} // namespace nubble
