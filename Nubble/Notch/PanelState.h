#pragma once

#include <QObject>
#include <QString>

namespace nubble {

// What the panel shows: its body alone, or one card beside it.
struct PanelMode {
    enum class Card { None, Inbox, Usage, Sessions, Notes };

    Card card = Card::None;
    bool payload = false; // tells inbox modes apart

    static constexpr PanelMode collapsed() { return {}; }
    static constexpr PanelMode inbox(bool payload) { return {Card::Inbox, payload}; }
    static constexpr PanelMode usage() { return {Card::Usage, false}; }
    static constexpr PanelMode sessions() { return {Card::Sessions, false}; }
    static constexpr PanelMode notes() { return {Card::Notes, false}; }

    bool operator==(const PanelMode &) const = default;
};

[[nodiscard]] QString name(PanelMode mode); // "collapsed", "sessions", …

// The panel's single mode. Main thread only.
class PanelState : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    [[nodiscard]] PanelMode mode() const { return m_mode; }
    void setMode(PanelMode mode);
    void collapse() { setMode(PanelMode::collapsed()); }

Q_SIGNALS:
    void modeChanged(nubble::PanelMode mode); // never for an equal one

private:
    PanelMode m_mode;
};

} // namespace nubble
