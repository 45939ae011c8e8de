#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/types.h>

namespace nubble {

// A small file of the user's that is read and replaced as a whole, at most 1 MB of it, without any lock. When
// its path is a link, that is followed here, once, as people keep such files elsewhere; a link that is put
// there later is left alone, neither read nor written. So is everything that is no regular file, too large,
// or not ours to read and write: whatever stands there is looked at again at each call. Blocks; one thread.
class DefaultsFile {
public:
    struct Content {
        QByteArray bytes;
        mode_t mode = 0600;
    };

    explicit DefaultsFile(const QString &path);

    [[nodiscard]] const QByteArray &name() const { return m_name; }
    [[nodiscard]] std::optional<Content> read()
        const; // empty when there is no file; none when it is left alone
    [[nodiscard]] bool replace(const Content &content) const; // makes the folder, too

private:
    QString m_folder;
    QByteArray m_name;
};

} // namespace nubble
