#pragma once

#include <QMap>
#include <QString>

#include <optional>

#include "Shell/Addon.h"

namespace nubble {

// What an add-on is asked to do, whether by a button, a menu, the command line or another program.
struct AddonRequest {
    enum class Action { SearchChats, AskClaude, StartNotes, StopNotes };

    Action action = Action::SearchChats;
    std::optional<QString> question = std::nullopt; // to ask Claude at once

    bool operator==(const AddonRequest &) const = default;
};

[[nodiscard]] Addon addonOf(const AddonRequest &request);

// The request that another program has broadcast under that name ("ask" or "notes") with that user info. None
// for other names.
[[nodiscard]] std::optional<AddonRequest> requestFrom(
    const QString &name, const QMap<QString, QString> &userInfo);

} // namespace nubble
