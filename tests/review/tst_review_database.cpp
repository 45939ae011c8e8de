#include <QTest>

#include <sys/stat.h>

#include "Review/ReviewDatabase.h"
#include "review/Quenwick.h"

using namespace nubble;
using namespace Qt::StringLiterals;

namespace {

const QDateTime today(QDate(2026, 11, 16), QTime(0, 0), Qt::UTC);

// "pending: guid…", or "none".
QByteArray printed(const std::optional<Inbox> &inbox)
{
    if (!inbox)
        return "none";
    QByteArray text = QByteArray::number(inbox->pending) + ':';
    for (const QuenwickItem &each : inbox->items)
        text += ' ' + each.guid.toUtf8();
    return text;
}

QByteArray row(const QByteArray &guid, const QByteArray &due)
{
    return '\'' + guid + "', 'mail', 'Ada', 'T', 'Hi', "
        + (due.isEmpty() ? QByteArray("NULL") : QByteArray("'" + due + "'")) + ", 1, 'pending'";
}

} // namespace

class ReviewDatabaseTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home.emplace();
        m_path = m_home->path(u"review.db"_s);
    }

    void whatIsPendingTodayAndLaterIsRead()
    {
        const QuenwickConnection quenwick = database();
        quenwick.add(row("undated", ""));
        quenwick.add(row("badly dated", "soon"));
        quenwick.add(row("yesterday", "2026-11-15T23:59:59Z"));
        quenwick.add(row("midnight", "2026-11-16T00:00:00Z"));
        quenwick.add(row("elsewhere", "2026-11-15T23:30:00-01:00"));
        quenwick.add(row("first", "2026-11-16T00:00:00Z"));
        quenwick.run(
            "INSERT INTO review VALUES ('done', 'm', 's', 't', 'b', '2026-11-17T00:00:00Z', 1, 'approved')");
        QCOMPARE(printed(read()), "5: midnight first elsewhere");
    }

    void aRowIsTakenAsItIs()
    {
        const QuenwickConnection quenwick = database();
        const QByteArray due = "', '2026-11-17T09:30:00.25+01:00', ";
        quenwick.add(
            "'a', 'sms', '+1 555 010 4477', 'T', '" + QByteArray("é").repeated(200) + due + "0, 'pending'");
        quenwick.add("NULL, NULL, NULL, 'Team', NULL, '2026-11-18T09:30:00Z', NULL, 'pending'");
        quenwick.add("7, x'ff41', NULL, NULL, 'x', '2026-11-19T09:30:00Z', 'yes', 'pending'");
        quenwick.add(
            "'d', 'm', '', 'T', '" + QByteArray(1'000'000, 'e') + "', '2026-11-20T09:30:00Z', 2, 'pending'");
        const auto items = read().value_or(Inbox()).items;
        QCOMPARE(items.size(), 4);
        QCOMPARE(
            items[0],
            (QuenwickItem{
                .guid = u"a"_s,
                .source = u"sms"_s,
                .who = u"…4477"_s,
                .title = {},
                .text = u"é"_s.repeated(160),
                .due = QDateTime(QDate(2026, 11, 17), QTime(8, 30), Qt::UTC)}));
        QCOMPARE(items[1].id() + u' ' + items[1].who + u' ' + items[1].text, u": Team "_s);
        QCOMPARE(items[2].id() + u' ' + items[2].who, u"\ufffdA:7 "_s);
        QCOMPARE(items[3].text, u"e"_s.repeated(160));
        QCOMPARE(
            (QList{items[1].timeKnown, items[2].timeKnown, items[3].timeKnown}), (QList{false, false, true}));
    }

    void theSoonestOfFiveThousandAreListed()
    {
        const QuenwickConnection quenwick = database();
        quenwick.run(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5000) "
            "INSERT INTO review SELECT 'g' || i, 'mail', 'Ada', 'T', 'Hi', "
            "strftime('%Y-%m-%dT%H:%M:%SZ', '2026-11-17', (i * 7919 % 500) || ' minutes'), 1, 'pending' "
            "FROM n");
        QByteArrayList expected{"5000:"};
        for (int minute = 0; minute < 3; ++minute)
            for (int i = 1; i <= 5000; ++i) // those of the same minute in their order
                if (i * 7919 % 500 == minute)
                    expected.append("g" + QByteArray::number(i));
        QCOMPARE(printed(read()), expected.first(26).join(' '));
    }

    void itIsFoundWhateverItsFolderIsCalled()
    {
        for (const auto &name : {u"a b"_s, u"100%"_s, u"%41"_s, u"why?mode=rw"_s, u"#1&x=é"_s}) {
            m_path = m_home->path(name + u"/review.db");
            QDir().mkpath(m_home->path(name));
            const QuenwickConnection quenwick = database();
            quenwick.add(row("a", ""));
            QCOMPARE(printed(read()), "1:");
        }
    }

    void aSchemaThatIsNotKnownGivesNothing()
    {
        QuenwickConnection(m_path).run("CREATE TABLE other (a)");
        QCOMPARE(printed(read()), "none");
        for (const char *lacking : {"guid", "sender", "due_at", "time_known", "status"}) {
            QFile::remove(m_path);
            const QuenwickConnection quenwick = database();
            quenwick.run("ALTER TABLE review DROP COLUMN " + QByteArray(lacking));
            QCOMPARE(printed(read()), "none");
        }
    }

    void aViewWithoutEndIsGivenUp()
    {
        QuenwickConnection(m_path).run(
            "CREATE VIEW review AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
            "SELECT i guid, i source, i sender, i thread, i body, NULL due_at, i time_known, 'x' || i status "
            "FROM n");
        std::stop_source stop;
        stop.request_stop();
        QCOMPARE(printed(ReviewDatabase(m_path).read(today, stop.get_token())), "none");
        QCOMPARE(printed(read()), "none");
    }

    void aWritersLogIsReadAndNothingIsLeftBehind()
    {
        auto quenwick = std::make_unique<QuenwickConnection>(database());
        quenwick->run("PRAGMA journal_mode = wal; PRAGMA wal_autocheckpoint = 0");
        quenwick->add(row("a", "2026-11-17T00:00:00Z"));
        QCOMPARE(printed(read()), "1: a");
        quenwick->run("BEGIN IMMEDIATE"); // a writer at work does not hold a reader up
        quenwick->add(row("b", "2026-11-17T00:00:00Z"));
        QCOMPARE(printed(read()), "1: a");
        quenwick->run("COMMIT");
        QCOMPARE(printed(read()), "2: a b");
        quenwick.reset();
        const QStringList files = QDir(m_home->path({})).entryList(QDir::Files);
        QCOMPARE(printed(read()), "2: a b");
        QCOMPARE(QDir(m_home->path({})).entryList(QDir::Files), files);
    }

    void aLockedDatabaseIsLeftAlone()
    {
        const QuenwickConnection quenwick = database();
        quenwick.add(row("a", ""));
        quenwick.run("BEGIN EXCLUSIVE");
        QCOMPARE(printed(read()), "none");
        quenwick.run("ROLLBACK");
        QCOMPARE(printed(read()), "1:");
    }

    void whatIsNoDatabaseGivesNothing()
    {
        QCOMPARE(printed(read()), "none");
        QVERIFY(!ReviewDatabase(m_path).isThere());
        for (const QByteArray &bytes : {QByteArray(), QByteArray("x"), QByteArray(100'000, 'x')}) {
            m_home->write(u"review.db"_s, bytes);
            QVERIFY(ReviewDatabase(m_path).isThere());
            QCOMPARE(printed(read()), "none");
        }
        QFile::remove(m_path);
        for (int i = 0; i < 200; ++i)
            database().add(row("a", "2026-11-17T00:00:00Z"));
        for (const qint64 size : {5000, 4096, 50}) { // half of one
            QFile::resize(m_path, size);
            QCOMPARE(printed(read()), "none");
        }
        QFile::remove(m_path);
        QDir().mkdir(m_path);
        QCOMPARE(printed(read()), "none");
        QDir().rmdir(m_path);
        QFile::link(m_path, m_path);
        QCOMPARE(printed(read()), "none");
        QFile::remove(m_path);
        for (const auto &suffix : {u""_s, u"-wal"_s, u"-journal"_s}) {
            QCOMPARE(::mkfifo(QFile::encodeName(m_path + suffix).constData(), 0600), 0);
            QCOMPARE(printed(read()), "none");
            QFile::remove(m_path + suffix);
            database();
        }
    }

private:
    QuenwickConnection database() const
    {
        QuenwickConnection quenwick(m_path);
        quenwick.run(QuenwickConnection::schema);
        return quenwick;
    }
    [[nodiscard]] std::optional<Inbox> read() const { return ReviewDatabase(m_path).read(today); }

    std::optional<TemporaryHome> m_home;
    QString m_path;
};

QTEST_GUILESS_MAIN(ReviewDatabaseTest)
#include "tst_review_database.moc"
