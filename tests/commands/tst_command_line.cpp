#include <QTest>

#include "Commands/CommandLine.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

QString shown(const std::variant<CommandLine, UsageError> &parsed)
{
    if (const auto *error = std::get_if<UsageError>(&parsed))
        return u"error: "_s + QString::fromStdString(error->message);
    const auto &line = std::get<CommandLine>(parsed);
    const QStringList verbs{
        u"run"_s,
        u"start"_s,
        u"show"_s,
        u"hide"_s,
        u"toggle"_s,
        u"sessions"_s,
        u"next"_s,
        u"ask"_s,
        u"search"_s,
        u"notes start"_s,
        u"notes stop"_s,
        u"status"_s,
        u"notifications on"_s,
        u"notifications off"_s,
        u"autostart on"_s,
        u"autostart off"_s,
        u"restart"_s,
        u"quit"_s,
        u"help"_s,
        u"version"_s};
    return verbs.at(static_cast<int>(line.verb)) + (line.follow ? u" follow"_s : QString())
        + (line.json ? u" json"_s : QString())
        + (line.question.empty() ? QString() : u" ["_s + QString::fromStdString(line.question) + u']')
        + (line.home ? u" in "_s + QString::fromStdString(*line.home) : QString());
}

} // namespace

class TestCommandLine : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itIsUnderstoodOrRefusedInOneLine()
    {
        const TemporaryHome home;
        home.write(u"sub/file"_s, "");
        QVERIFY(QFile::link(home.path(u"sub"_s), home.path(u"link"_s)));
        QVERIFY(QDir::setCurrent(home.path({})));
        // HOME stands for an absolute path; arguments are parted by a bar.
        const std::pair<QString, QString> cases[]{
            {u""_s, u"run"_s},
            {u"notes|start"_s, u"notes start"_s},
            {u"status|--json"_s, u"status json"_s},
            {u"--follow|status|-json"_s, u"status follow json"_s},
            {u"--bogus|-h"_s, u"help"_s},
            {u"next"_s, u"next"_s},
            {u"notifications|off"_s, u"notifications off"_s},
            {u"autostart|on"_s, u"autostart on"_s},
            {u"ask"_s, u"ask"_s},
            {u"ask||"_s, u"ask"_s},
            {u"ask|what is|this?"_s, u"ask [what is this?]"_s},
            {u"ask|hide"_s, u"ask [hide]"_s},
            {u"ask|--|--json|--|-h"_s, u"ask [--json -- -h]"_s},
            {u"--|show"_s, u"show"_s},
            {u"--home|HOME/./sub/../sub"_s, u"run in HOME/sub"_s},
            {u"--home|link"_s, u"run in HOME/sub"_s},
            {u"status|--home|sub|--json"_s, u"status json in HOME/sub"_s},
            {u"ask|--home=sub|why"_s, u"ask [why] in HOME/sub"_s},
            {u"--home"_s, u"error: Missing value after '--home'. See nubble --help."_s},
            {u"--home|--json|status"_s, u"error: --home needs an existing folder. See nubble --help."_s},
            {u"--home|sub/file"_s, u"error: --home needs an existing folder. See nubble --help."_s},
            {u"--json"_s, u"error: --json belongs to the command \"status\". See nubble --help."_s},
            {u"hide|--follow"_s, u"error: --follow belongs to the command \"status\". See nubble --help."_s},
            {u"status|--json=1"_s, u"error: Unexpected value after '--json'. See nubble --help."_s},
            {u"ask|-v"_s, u"error: Unknown option 'v'. See nubble --help."_s},
            {u"-session|1"_s, u"error: Unknown option 'session'. See nubble --help."_s},
            {u"Status"_s, u"error: There is no command \"Status\". See nubble --help."_s},
            {u"status|sessions"_s, u"error: There is no command \"status sessions\". See nubble --help."_s},
            {u"notes"_s, u"error: \"notes\" needs \"start\" or \"stop\". See nubble --help."_s},
            {u"notifications"_s, u"error: \"notifications\" needs \"on\" or \"off\". See nubble --help."_s},
            {u"--home|sub|"_s, u"error: There is no command \"\". See nubble --help."_s},
        };
        for (auto [arguments, meaning] : cases) {
            for (QString *text : {&arguments, &meaning})
                text->replace(u"HOME"_s, QDir::currentPath());
            std::vector<std::string> words;
            for (const QString &word : arguments.isEmpty() ? QStringList() : arguments.split(u'|'))
                words.push_back(word.toStdString());
            QCOMPARE(arguments + u": "_s + shown(parseCommandLine(words)), arguments + u": "_s + meaning);
        }
    }
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_command_line.moc"
