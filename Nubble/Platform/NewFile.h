#pragma once

#include <QByteArray>

#include <sys/types.h>

namespace nubble {

// Both write into the open folder `folder`; the mode is the file's whatever the umask is. They return 0, or
// the error's number. Block; any thread.

// A file that was not there. Nothing is left of one that cannot be written whole.
[[nodiscard]] int createFile(int folder, const QByteArray &name, const QByteArray &bytes, mode_t mode);

// A file written beside, on the disk, and then renamed: whoever reads sees the one or the other. A link in
// that place is replaced, not followed.
[[nodiscard]] int replaceFile(int folder, const QByteArray &name, const QByteArray &bytes, mode_t mode);

} // namespace nubble
