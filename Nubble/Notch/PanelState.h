#pragma once

#include <QLatin1String>
#include <QObject>

namespace nubble {

// What the panel shows: its body alone, or one card beside it. A card is known by its name.
struct PanelMode {
    QLatin1String card;   // empty: none
    bool payload = false; // tells modes of the same card apart

    static constexpr PanelMode collapsed() { return {}; }
    static constexpr PanelMode inbox(bool payload) { return {QLatin1String("inbox"), payload}; }
    static constexpr PanelMode usage() { return {QLatin1String("usage")}; }
    static constexpr PanelMode sessions() { return {QLatin1String("sessions")}; }
    static constexpr PanelMode notes() { return {QLatin1String("notes")}; }

    [[nodiscard]] bool isCollapsed() const { return card.isEmpty(); }

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
