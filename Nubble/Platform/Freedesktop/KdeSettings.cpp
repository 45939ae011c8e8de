#include "Platform/Freedesktop/KdeSettings.h"

#include "Platform/RegularFile.h"

namespace nubble {

std::optional<bool> kdeAnimates(const QByteArray &kdeglobals)
{
    bool inGroup = false;
    for (const QByteArray &each : kdeglobals.split('\n')) {
        const QByteArray line = each.trimmed();
        if (line.startsWith('['))
            inGroup = line == "[KDE]";
        const qsizetype equals = line.indexOf('=');
        if (!inGroup || equals < 0 || line.left(equals).trimmed() != "AnimationDurationFactor")
            continue;
        bool isNumber = false;
        const double factor = line.mid(equals + 1).toDouble(&isNumber);
        return isNumber ? std::optional(factor > 0) : std::nullopt;
    }
    return std::nullopt;
}

KdeSettings::KdeSettings(const QString &configFolder, QObject *parent)
    : AnimationSetting(parent), m_path(configFolder + u"/kdeglobals")
{
    m_watcher.addPath(configFolder); // editors write another file and rename it
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &KdeSettings::read);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &KdeSettings::read);
    read();
}

void KdeSettings::read()
{
    constexpr qint64 enough = 256 * 1024;
    const auto file = RegularFile::open(m_path);
    const auto bytes = file ? file->read(0, enough) : std::nullopt;
    if (file && m_watcher.files().isEmpty())
        m_watcher.addPath(m_path);
    const std::optional<bool> animates = kdeAnimates(bytes.value_or(QByteArray()));
    if (m_animates == animates)
        return;
    m_animates = animates;
    Q_EMIT changed();
}

} // namespace nubble
