#pragma once

#include <QByteArray>
#include <QString>

#include <sys/types.h>
#include <utility>

#include "Platform/Outcome.h"

namespace nubble {

// A folder of the program's own, for files that nobody else may read, put there or replace. Held open, so
// that whoever moves it away later changes nothing. Blocks; any thread, one at a time.
class PrivateFolder {
public:
    explicit PrivateFolder(QString path) : m_path(std::move(path)) { } // opens nothing yet
    ~PrivateFolder();
    Q_DISABLE_COPY_MOVE(PrivateFolder)

    // Opens it, if it is a folder, ours, and closed to all others.
    [[nodiscard]] Outcome open();
    // The same, and makes it where it is missing, in a parent that it makes, too, or that only we can change.
    [[nodiscard]] Outcome make();

    // A new file, once it is open; the mode is the file's whatever the umask is. Nothing is left of one that
    // cannot be written whole.
    [[nodiscard]] Outcome create(const QByteArray &name, const QByteArray &bytes, mode_t mode) const;

    [[nodiscard]] int descriptor() const { return m_descriptor; } // less than 0 while it is not open

private:
    [[nodiscard]] Outcome openBelow(int parent, const char *name);
    [[nodiscard]] Outcome failure(const QString &why) const;

    const QString m_path;
    int m_descriptor = -1;
};

} // namespace nubble
