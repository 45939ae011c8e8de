#pragma once

#include <QTest>

#include "Review/QuenwickMonitor.h"
#include "review/Quenwick.h"
#include "review/QuenwickServer.h"
#include "support/FakeProcessTable.h"
#include "support/ManualClock.h"

namespace nubble {

// A monitor of the review inbox, and the Quenwick that it looks at, closed at first and without a database.
class ReviewWorld {
public:
    ReviewWorld()
    {
        setTimeZone("UTC");
        processes.alive = {4242};
    }
    ~ReviewWorld() { qunsetenv("TZ"); }
    Q_DISABLE_COPY_MOVE(ReviewWorld)

    // "PENDING: guid… [busy id…] message", with what holds in front.
    static QString printed(const ReviewState &state)
    {
        QString text = state.live ? QStringLiteral("live ") : QStringLiteral("closed ");
        if (!state.installed)
            text += QStringLiteral("missing ");
        if (state.checking)
            text += QStringLiteral("checking ");
        text += QString::number(state.inbox.pending) + u':';
        for (const QuenwickItem &each : state.inbox.items)
            text += u' ' + each.guid;
        QStringList busy(state.busy.begin(), state.busy.end());
        busy.sort();
        if (!busy.isEmpty())
            text += u" [" + busy.join(u' ') + u']';
        return state.lastMessage ? text + u' ' + *state.lastMessage : text;
    }

    static QuenwickItem item(const QString &guid) { return {.guid = guid, .source = QStringLiteral("mail")}; }

    // Of items of the source "mail".
    static QByteArray inbox(int pending, const QByteArrayList &guids)
    {
        QByteArrayList items;
        for (const QByteArray &each : guids)
            items.append("{\"guid\":\"" + each + "\",\"source\":\"mail\"}");
        return "{\"pending\":" + QByteArray::number(pending) + ",\"items\":[" + items.join(',') + "]}";
    }

    [[nodiscard]] QString databasePath() const
    {
        return home.path(QStringLiteral(".config/Quenwick/review.db"));
    }
    [[nodiscard]] QByteArray port() const { return QByteArray::number(server.serverPort()); }
    QuenwickConnection database() const
    {
        QDir().mkpath(home.path(QStringLiteral(".config/Quenwick")));
        QuenwickConnection quenwick(databasePath());
        quenwick.run(QuenwickConnection::schema);
        return quenwick;
    }
    void addRow(const QByteArray &guid, const QByteArray &due) const
    {
        database().add(
            '\'' + guid + "', 'mail', '', '', '', "
            + (due.isEmpty() ? QByteArray("NULL") : QByteArray("'" + due + "'")) + ", 0, 'pending'");
    }
    QString goLive() const
    {
        return home.write(
            QStringLiteral(".config/Quenwick/live.json"), R"({"pid":4242,"port":)" + port() + '}');
    }
    void open(LoopbackRequest::Limits limits = {.time = std::chrono::seconds(30)})
    {
        monitor = std::make_unique<QuenwickMonitor>(
            home.home(),
            QuenwickMonitor::Surroundings{
                .clock = clock,
                .processes = processes,
                .openApplication =
                    [this](const QString &identifier, std::optional<pid_t> process) {
                        opened.append(
                            process ? identifier + QStringLiteral(" %1").arg(*process) : identifier);
                        return isApplication;
                    },
                .openUrl = [this](const QUrl &url) { opened.append(url.toString()); },
                .limits = limits});
    }
    void openLive(int pending, const QByteArrayList &guids)
    {
        database();
        server.answer("/api/notch", inbox(pending, guids));
        goLive();
        open();
        QTRY_VERIFY(monitor->state().live);
    }
    [[nodiscard]] QString shown() const { return printed(monitor->state()); }
    QString afterRefresh() // the whole of one poll that begins now
    {
        if (!QTest::qWaitFor([this] { return !monitor->isRefreshing(); }))
            return QStringLiteral("no end");
        monitor->refresh();
        return QTest::qWaitFor([this] { return !monitor->isRefreshing(); }) ? shown()
                                                                            : QStringLiteral("no end");
    }
    static void setTimeZone(const char *name)
    {
        qputenv("TZ", name);
        ::tzset();
    }

    TemporaryHome home;
    ManualClock clock; // 2026-09-21T14:13:20Z
    FakeProcessTable processes;
    QuenwickServer server;
    QStringList opened; // what the monitor has had opened
    bool isApplication = true;
    std::unique_ptr<QuenwickMonitor> monitor;
};

} // namespace nubble
