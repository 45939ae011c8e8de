#pragma once

#include <QObject>

#include <functional>
#include <vector>

#include "Shell/HotKeyTable.h"

namespace nubble {

class HotKeyService;

// The key combinations that work everywhere on the desktop, with what each does. Their ids are 1, 2, 3 in the
// order in which they are added, also of those that belong to another program. Main thread only.
class HotKeys : public QObject {
    Q_OBJECT

public:
    struct Entry {
        QString keys;            // as this desktop writes them
        QString action;          // for scripts
        bool registered = false; // it is ours at the moment

        bool operator==(const Entry &) const = default;
    };

    explicit HotKeys(HotKeyService &service, QObject *parent = nullptr); // which outlives this

    // A press runs the action once the desktop's event has been dealt with. A combination that is there
    // already stays with the action that it has.
    void add(HotKey key, const std::function<void()> &action);
    void add(
        QKeyCombination keys, const QString &keysText, const QString &name, std::function<void()> action);

    [[nodiscard]] std::vector<Entry> entries() const; // in the order of their ids

private:
    struct Added {
        QKeyCombination keys;
        QString keysText;
        QString name;
        std::function<void()> action;
    };

    void run(quint32 id) const;

    HotKeyService &m_service;
    std::vector<Added> m_added;
};

} // namespace nubble
