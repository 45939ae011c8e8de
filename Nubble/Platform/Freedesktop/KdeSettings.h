#pragma once

#include <QFileSystemWatcher>

#include "Platform/AnimationSetting.h"

namespace nubble {

// Whether KDE's settings file switches animations off; none where it does not speak of them.
[[nodiscard]] std::optional<bool> kdeAnimates(const QByteArray &kdeglobals);

// KDE's settings file, and each that is put in its place.
class KdeSettings : public AnimationSetting {
    Q_OBJECT

public:
    explicit KdeSettings(const QString &configFolder, QObject *parent = nullptr);

    [[nodiscard]] std::optional<bool> animates() const override { return m_animates; }

private:
    void read();

    const QString m_path;
    QFileSystemWatcher m_watcher;
    std::optional<bool> m_animates;
};

} // namespace nubble
