#pragma once

#include <QMap>

#include "Platform/DesktopNotices.h"

namespace nubble {

// A desktop whose notices a test reads.
class FakeDesktopNotices : public DesktopNotices {
public:
    void post(quint32 id, const Notice &notice) override
    {
        up.insert(id, notice);
        ++posts;
    }
    void withdraw(quint32 id) override { up.remove(id); }

    QMap<quint32, Notice> up;
    int posts = 0;
};

} // namespace nubble
