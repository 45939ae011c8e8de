#pragma once

#include <QMap>
#include <QSet>

#include "Platform/HotKeyService.h"

namespace nubble {

// Keys that a test presses; some belong to another program.
class FakeHotKeyService : public HotKeyService {
public:
    bool grab(quint32 id, QKeyCombination keys) override
    {
        asked.insert(id, keys.toCombined());
        return isGrabbed(id);
    }
    [[nodiscard]] bool isGrabbed(quint32 id) const override
    {
        return asked.contains(id) && !ofOthers.contains(asked.value(id));
    }

    QMap<quint32, int> asked; // the combinations by their ids
    QSet<int> ofOthers;
};

} // namespace nubble
