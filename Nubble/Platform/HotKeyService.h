#pragma once

#include <QKeyCombination>
#include <QObject>

namespace nubble {

// Key combinations that work wherever the keyboard is. A combination that another program owns is left to it,
// and tried again when the keyboard's layout changes. Held for as long as the service exists. Main thread
// only.
class HotKeyService : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Asks for the combination under an id that has not been used; says whether it is ours.
    virtual bool grab(quint32, QKeyCombination) { return false; }
    [[nodiscard]] virtual bool isGrabbed(quint32) const { return false; }

Q_SIGNALS:
    void pressed(quint32 id); // once, however long the key is held
};

} // namespace nubble
