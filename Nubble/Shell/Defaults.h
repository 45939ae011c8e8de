#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QTimer>

#include <optional>

#include "Shell/DefaultsFile.h"

namespace nubble {

// The user's preferences: one INI file of dotted keys that people may edit by hand, so that every value is
// checked when it is read. What is set counts at once and is written soon after, several changes together:
// into the file as it is by then, and only what was set here. What is no such file is left alone, and writing
// to a folder that refuses it is silent: the values then last for this run. Main thread only.
class Defaults {
public:
    explicit Defaults(const QString &file);
    ~Defaults(); // writes what is pending
    Q_DISABLE_COPY_MOVE(Defaults)

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
    void setHeld(bool held);                             // while held, only synchronize() and the end write

private:
    using Values = QMap<QByteArray, QByteArray>; // as the file spells them

    void put(const QByteArray &key, const QByteArray &value);
    void writeSoon();

    const DefaultsFile m_file;
    Values m_values;
    Values m_pending;
    QTimer m_writing;
    bool m_held = false;
};

} // namespace nubble
