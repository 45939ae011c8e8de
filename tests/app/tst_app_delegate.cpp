#include <QDBusConnection>
#include <QDBusMessage>
#include <QJsonArray>
#include <QSignalSpy>
#include <QTest>

#include <filesystem>
#include <unistd.h>

#include "AppDelegate.h"
#include "support/FakeInstanceBus.h"
#include "support/TemporaryHome.h"
#include "usage/UsageCache.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

// The whole program but for its window, which is a plain one, in a home and on a session bus of its own.
struct Program {
    explicit Program(const QByteArray &preferences = {})
        : file(home.write(u".config/com.brevandel.nubble.conf"_s, "[General]\n" + preferences)),
          delegate(home.home(), bus, Relaunch{u"/bin/true"_s, {}})
    {
        for (const Addon addon : allAddons)
            commands.setHandler(addon, [this](const AddonRequest &request) {
                requests.append(request);
                return Outcome::failed(u"Tried"_s);
            });
    }

    TemporaryHome home;
    QString file;
    FakeInstanceBus bus;
    QList<AddonRequest> requests;
    AppDelegate delegate;
    AppCommands &commands = delegate.commands();
};

void broadcast(const QString &name, const QVariantMap &userInfo)
{
    auto message = QDBusMessage::createSignal(u"/"_s, u"com.brevandel.nubble"_s, name);
    message.setArguments({userInfo});
    QDBusConnection::sessionBus().send(message);
}

} // namespace

class TestAppDelegate : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void otherProgramsReachOnlyTheAddonsThatAreOn()
    {
        using Action = AddonRequest::Action;
        Program program("addon.notes=true\n");
        broadcast(u"ask"_s, {});
        broadcast(u"notes"_s, {{u"action"_s, u"stop"_s}}); // comes after the other
        QTRY_VERIFY(!program.requests.isEmpty());
        QCOMPARE(program.requests, QList<AddonRequest>{{Action::StopNotes}});
        const QSignalSpy refused(&program.commands, &AppCommands::refused);
        program.commands.request({Action::SearchChats}); // the program's own are not asked who they are
        QCOMPARE(program.requests.size(), 2);
        QCOMPARE(refused.count(), 1);
    }

    void refreshingReadsSessionsAndTheirTranscriptsAgain()
    {
        Program program;
        AppCommands &commands = program.commands;
        QCOMPARE(commands.status()[u"sessions"_s].toArray(), QJsonArray());
        program.home.write(
            u".claude/sessions/1.json"_s,
            "{\"sessionId\":\"one\",\"cwd\":\"/work\",\"pid\":" + QByteArray::number(::getpid())
                + ",\"startedAt\":0}");
        const auto write = [&program](char end) {
            const QByteArray title = "{\"type\":\"ai-title\",\"aiTitle\":\"";
            const QByteArray text = title + "A title\"}\n" + title + "Another\"}" + end;
            return program.home.write(u".claude/projects/-work/one.jsonl"_s, text).toStdString();
        };
        const auto title = [&commands] { return commands.status()[u"sessions"_s][0][u"title"_s].toString(); };
        const std::string transcript = write(' ');
        const auto date = std::filesystem::last_write_time(transcript);
        commands.refreshAll();
        QTRY_COMPARE(title(), u"A title"_s);
        write('\n');
        std::filesystem::last_write_time(transcript, date);
        commands.refreshAll(); // even of what seems not to have changed
        QTRY_COMPARE(title(), u"Another"_s);
    }

    void openingTheSessionsCardReadsThePlansUsageAndRefreshingListsTheCacheAgain()
    {
        Program program;
        const auto status = [&program](const QString &part) -> QJsonValue {
            return program.commands.status()[part];
        };
        const auto percent = [&] { return 100 * status(u"usage"_s)[u"session"_s][u"fraction"_s].toDouble(); };
        QTRY_VERIFY(status(u"usage"_s)[u"problem"_s].isString()); // the first read has found nothing
        program.home.write(u".config/Claude/Cache/Cache_Data/a_0"_s, UsageCache::usageEntry(42));
        QCOMPARE(program.commands.openCard(PanelMode::sessions()), Outcome::done());
        QTRY_COMPARE(percent(), 42); // long before its timer
        program.home.write(u".config/Claude/Cache/Cache_Data/b_0"_s, UsageCache::usageEntry(43));
        program.commands.refreshAll();
        QTRY_COMPARE(percent(), 43);
        QCOMPARE(program.commands.openCard(PanelMode::sessions()), Outcome::done()); // does not close it
        QCOMPARE(status(u"panel"_s)[u"mode"_s].toString(), u"sessions"_s);
        QCOMPARE(
            program.commands.status().keys(),
            QStringList(
                {u"activity"_s, u"hotKeys"_s, u"notifications"_s, u"panel"_s, u"sessions"_s, u"source"_s,
                 u"usage"_s}));
    }

    void theKeysOfTheAddonsThatAreOnAreTold()
    {
        Program program("addon.ask=true\nkeys.next=Ctrl+Alt+S\n");
        const QJsonValue keys = program.commands.status()[u"hotKeys"_s];
        const QJsonArray told{
            QJsonObject{{u"keys"_s, u"Ctrl+Alt+A"_s}, {u"action"_s, u"ask"_s}, {u"registered"_s, false}},
            QJsonObject{
                {u"keys"_s, u"Ctrl+Alt+S"_s}, {u"action"_s, u"screenshot"_s}, {u"registered"_s, false}},
            QJsonObject{{u"keys"_s, u"Ctrl+Alt+S"_s}, {u"action"_s, u"next"_s}, {u"registered"_s, false}}};
        QCOMPARE(keys.toArray(), told);
    }

    void aRestartGivesTheNameUpOnce()
    {
        Program program;
        program.commands.toggleAddon(Addon::Search);
        program.commands.restart();
        QCOMPARE(program.bus.releases, 1);
    }
};

QTEST_MAIN(TestAppDelegate)
#include "tst_app_delegate.moc"
