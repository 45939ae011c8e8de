#include "Review/ReviewDatabase.h"

#include <QFile>
#include <QStringDecoder>

#include <algorithm>
#include <chrono>
#include <memory>
#include <sqlite3.h>
#include <sys/stat.h>

#include "Platform/Logging.h"
#include "Review/ReviewParsing.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto waitForWriter = 500ms;
constexpr auto longestReading = 2s;
constexpr int stepsBetweenLooks = 10'000;         // of the database's machine
constexpr int largestValue = 16 * 1'048'576;      // bytes, as of a row
constexpr qsizetype longestName = 1024;           // bytes of a guid, a source or a sender
constexpr qsizetype longestBeginning = 16 * 1024; // bytes that may hold the characters shown
constexpr int charactersShown = 160;
constexpr qsizetype mostItems = 25;

constexpr char countQuery[] = "SELECT due_at FROM review WHERE status = 'pending'";
constexpr char itemsQuery[] = "SELECT guid, source, COALESCE(sender, thread, ''), body, due_at, time_known\n"
                              "FROM review WHERE status = 'pending' AND due_at IS NOT NULL";

// What ends a reading that takes too long: a query can be a view that never ends.
struct Patience {
    const std::stop_token &stop;
    std::chrono::steady_clock::time_point end = std::chrono::steady_clock::now() + longestReading;

    static int isOver(void *context)
    {
        const auto *patience = static_cast<const Patience *>(context);
        return patience->stop.stop_requested() || std::chrono::steady_clock::now() >= patience->end ? 1 : 0;
    }
};

struct Closer {
    void operator()(sqlite3 *connection) const { sqlite3_close(connection); }
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using Connection = std::unique_ptr<sqlite3, Closer>;
using Statement = std::unique_ptr<sqlite3_stmt, Closer>;

Connection open(const QString &path, bool immutable)
{
    const QByteArray uri = "file:" + QFile::encodeName(path).toPercentEncoding("/")
        + (immutable ? "?mode=ro&immutable=1" : "?mode=ro");
    sqlite3 *opened = nullptr;
    const int result = sqlite3_open_v2(
        uri.constData(), &opened, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
    Connection connection(opened); // to be closed in any case
    if (result != SQLITE_OK)
        return nullptr;
    sqlite3_busy_timeout(opened, static_cast<int>(waitForWriter.count()));
    sqlite3_limit(opened, SQLITE_LIMIT_LENGTH, largestValue);
    sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    return connection;
}

Statement prepare(sqlite3 &connection, const char *query)
{
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(&connection, query, -1, &statement, nullptr);
    return Statement(statement);
}

// Without the half character that a text which is cut may end with.
QString textOf(sqlite3_stmt &row, int column, qsizetype longest)
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(&row, column));
    const qsizetype size = sqlite3_column_bytes(&row, column);
    if (size <= longest)
        return QString::fromUtf8(bytes, size);
    QStringDecoder beginning(QStringDecoder::Utf8);
    return beginning(QByteArrayView(bytes, longest));
}

std::optional<QDateTime> dueOf(sqlite3_stmt &row, int column)
{
    return parseDate(textOf(row, column, longestName));
}

QuenwickItem itemOf(sqlite3_stmt &row, const QDateTime &due)
{
    return {
        .guid = textOf(row, 0, longestName),
        .source = textOf(row, 1, longestName),
        .who = shortHandle(textOf(row, 2, longestName)),
        .title = {},
        .text = firstCharacters(textOf(row, 3, longestBeginning), charactersShown),
        .due = due,
        .timeKnown = sqlite3_column_int64(&row, 5) != 0};
}

// Calls `take` with each row; none when not all of them can be read.
template <typename Take> bool forEachRow(sqlite3_stmt &statement, Take take)
{
    int result = sqlite3_step(&statement);
    for (; result == SQLITE_ROW; result = sqlite3_step(&statement))
        take(statement);
    return result == SQLITE_DONE;
}

void keepSoonest(QList<QuenwickItem> &items)
{
    std::ranges::stable_sort(items, {}, [](const QuenwickItem &each) { return *each.due; });
    items.resize(std::min(items.size(), mostItems));
}

std::optional<int> countIn(sqlite3 &connection, const QDateTime &today)
{
    const Statement statement = prepare(connection, countQuery);
    int count = 0;
    if (!statement) // SQLITE_ERROR: the schema is another one
        return sqlite3_errcode(&connection) == SQLITE_ERROR ? std::optional(count) : std::nullopt;
    const bool isWhole = forEachRow(*statement, [&](sqlite3_stmt &row) {
        const auto due = dueOf(row, 0);
        count += !due || *due >= today ? 1 : 0;
    });
    return isWhole ? std::optional(count) : std::nullopt;
}

std::optional<QList<QuenwickItem>> itemsIn(sqlite3 &connection, const QDateTime &today)
{
    const Statement statement = prepare(connection, itemsQuery);
    if (!statement)
        return std::nullopt;
    QList<QuenwickItem> items;
    const bool isWhole = forEachRow(*statement, [&](sqlite3_stmt &row) {
        if (const auto due = dueOf(row, 4); due && *due >= today)
            items.append(itemOf(row, *due));
        if (items.size() > 4 * mostItems)
            keepSoonest(items); // so that their number has a bound
    });
    keepSoonest(items);
    return isWhole ? std::optional(items) : std::nullopt;
}

} // namespace

bool ReviewDatabase::isThere() const
{
    return RegularFile::stateOf(QFile::encodeName(m_path).constData()).has_value();
}

std::optional<DatabaseStamp> ReviewDatabase::stamp(const QDateTime &today) const
{
    const QByteArray path = QFile::encodeName(m_path);
    const auto database = RegularFile::stateOf(path.constData());
    if (!database)
        return std::nullopt;
    return DatabaseStamp{*database, RegularFile::stateOf(QByteArray(path + "-wal").constData()), today};
}

// SQLite opens what it finds beside the database, too, and opening a FIFO waits for its writer.
bool ReviewDatabase::isSound() const
{
    return std::ranges::all_of(std::array{"-wal", "-shm", "-journal"}, [this](const char *suffix) {
        struct stat info { };
        const QByteArray path = QFile::encodeName(m_path).append(suffix);
        return ::stat(path.constData(), &info) != 0 || S_ISREG(info.st_mode);
    });
}

// Keeps a log when it is open, and is not: reading it as usual would make the files of the log, and leave
// them there. Whoever opens it meanwhile writes to the log first.
bool ReviewDatabase::isResting() const
{
    constexpr qint64 versions = 18; // in the file's header: of writing, of reading
    const auto file = RegularFile::open(m_path);
    return file && file->read(versions, 2) == QByteArray("\2\2")
        && !RegularFile::stateOf(QFile::encodeName(m_path).append("-wal").constData());
}

std::optional<Inbox> ReviewDatabase::read(const QDateTime &today, const std::stop_token &stop) const
{
    const Connection connection = isThere() && isSound() ? open(m_path, isResting()) : nullptr;
    if (!connection)
        return std::nullopt;
    Patience patience{stop};
    sqlite3_progress_handler(connection.get(), stepsBetweenLooks, Patience::isOver, &patience);
    // Both queries see the same state of the database.
    const bool isBegun = sqlite3_exec(connection.get(), "BEGIN", nullptr, nullptr, nullptr) == SQLITE_OK;
    const auto count = isBegun ? countIn(*connection, today) : std::nullopt;
    const auto items = count ? itemsIn(*connection, today) : std::nullopt;
    if (!items) {
        qCDebug(logReview) << "the database cannot be read:" << sqlite3_errmsg(connection.get());
        return std::nullopt;
    }
    return Inbox{.pending = *count, .items = *items};
}

} // namespace nubble
