#pragma once

#include <QString>

#include <utility>

namespace nubble {

// Done, or why not, in one line for the user. A plain value; any thread.
class [[nodiscard]] Outcome {
public:
    [[nodiscard]] static Outcome done() { return Outcome({}); }
    [[nodiscard]] static Outcome failed(QString why) { return Outcome(std::move(why)); } // not empty

    [[nodiscard]] bool isDone() const { return m_why.isEmpty(); }
    [[nodiscard]] const QString &why() const { return m_why; } // empty when done

    bool operator==(const Outcome &) const = default;

private:
    explicit Outcome(QString why) : m_why(std::move(why)) { }

    QString m_why;
};

} // namespace nubble
