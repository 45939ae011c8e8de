#pragma once

#include <memory>
#include <sqlite3.h>

#include "support/TemporaryHome.h"

namespace nubble {

// A connection of Quenwick's own to a database. What it is told to do has to succeed.
class QuenwickConnection {
public:
    explicit QuenwickConnection(const QString &path)
    {
        sqlite3 *opened = nullptr;
        if (sqlite3_open(path.toUtf8().constData(), &opened) != SQLITE_OK)
            qFatal("cannot open %s", qPrintable(path));
        m_connection.reset(opened);
        run("PRAGMA synchronous = off");
    }
    void run(const QByteArray &sql) const
    {
        if (sqlite3_exec(m_connection.get(), sql.constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
            qFatal("%s: %s", sql.constData(), sqlite3_errmsg(m_connection.get()));
    }
    void add(const QByteArray &values) const { run("INSERT INTO review VALUES (" + values + ")"); }

    static constexpr const char *schema =
        "CREATE TABLE IF NOT EXISTS review (guid, source, sender, thread, body, due_at, "
        "time_known, status DEFAULT 'pending')";

private:
    struct Closer {
        void operator()(sqlite3 *connection) const { sqlite3_close(connection); }
    };
    std::unique_ptr<sqlite3, Closer> m_connection;
};

} // namespace nubble
