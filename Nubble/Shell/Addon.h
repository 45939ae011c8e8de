#pragma once

#include <QList>
#include <QSet>
#include <QString>

#include <array>
#include <optional>

namespace nubble {

class Defaults;
class Home;

// An optional feature that the user switches on and off; a switch takes effect when the program starts again.
enum class Addon { Quenwick, Ask, Search, Notes };

inline constexpr std::array allAddons{Addon::Quenwick, Addon::Ask, Addon::Search, Addon::Notes};

[[nodiscard]] QString title(Addon addon);
[[nodiscard]] QString description(Addon addon); // one sentence, for tool tips
[[nodiscard]] QString offText(Addon addon);     // why it does nothing for others while it is off
[[nodiscard]] QString defaultsKey(Addon addon);

// What the add-on lacks on this machine, as one sentence; none when it can work. Looked up afresh at every
// call.
[[nodiscard]] std::optional<QString> missing(Addon addon, const Home &home, const Defaults &defaults);

[[nodiscard]] QString quenwickFolder(const Home &home); // where the companion application keeps its data
[[nodiscard]] QString recorderScript(const Home &home, const Defaults &defaults);

// The add-ons that are active in this run: read once, whatever becomes of the preferences afterwards.
class ActiveAddons {
public:
    explicit ActiveAddons(const Defaults &defaults);

    [[nodiscard]] bool contains(Addon addon) const { return m_active.contains(addon); }
    [[nodiscard]] QList<Addon> actions() const; // those with a button in the panel's body, in their order

private:
    QSet<Addon> m_active;
};

} // namespace nubble
