#pragma once

#include <QSettings>
#include <QString>

#include <optional>

namespace nubble {

// The user's preferences: one INI file of dotted keys that people may edit by hand, so that every value is
// checked when it is read. Main thread only. What is no such file is left alone, and writing to a folder that
// refuses it is silent: the values then last for this run.
class Defaults {
public:
    explicit Defaults(const QString &file);

    // The INI file of a preferences domain, such as "com.brevandel.nubble".
    [[nodiscard]] static QString fileOf(const QString &domain, const QString &configFolder);

    [[nodiscard]] bool contains(const QString &key) const;
    [[nodiscard]] std::optional<QString> string(const QString &key) const;
    [[nodiscard]] std::optional<double> number(const QString &key) const; // finite ones only
    [[nodiscard]] std::optional<bool> boolean(const QString &key) const;  // written as "true" or "false" only

    void set(const QString &key, const QString &value);
    void set(const QString &key, double value);
    void set(const QString &key, bool value);
    void set(const QString &key, const char *) = delete; // would become a Boolean
    void copy(const QString &key, const Defaults &from); // unchanged
    void synchronize();                                  // writes what is pending now

private:
    QSettings m_settings;
};

} // namespace nubble
