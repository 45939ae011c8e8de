#include <QTest>

#include "Commands/CommandLine.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

QString shown(const std::variant<CommandLine, UsageError> &parsed)
{
    if (const auto *error = std::get_if<UsageError>(&parsed))
        return u"error: "_s + error->message;
    const auto &line = std::get<CommandLine>(parsed);
    const QStringList verbs{
        u"run"_s,           u"start"_s,   u"show"_s,        u"hide"_s,       u"toggle"_s, u"sessions"_s,
        u"ask"_s,           u"search"_s,  u"notes start"_s, u"notes stop"_s, u"status"_s, u"autostart on"_s,
        u"autostart off"_s, u"restart"_s, u"quit"_s,        u"help"_s,       u"version"_s};
    return verbs.at(static_cast<int>(line.verb)) + (line.json ? u" json"_s : QString())
        + (line.question.isEmpty() ? QString() : u" ["_s + line.question + u']')
        + (line.home ? u" in "_s + *line.home : QString());
}

} // namespace

class TestCommandLine : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_home.write(u"sub/file"_s, "");
        m_before = QDir::currentPath();
        QVERIFY(QFile::link(m_home.path(u"sub"_s), m_home.path(u"link"_s)));
        QVERIFY(QDir::setCurrent(m_home.path(QString())));
    }
    void cleanupTestCase() { QDir::setCurrent(m_before); }

    // HOME stands for an absolute path; arguments are parted by a bar.
    void itIsUnderstoodOrRefusedInOneLine_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("meaning");
        const auto row = [](const char16_t *arguments, const char16_t *meaning) {
            const QString text = QString::fromUtf16(arguments);
            QTest::newRow(text.isEmpty() ? "nothing" : qPrintable(text))
                << text << QString::fromUtf16(meaning);
        };
        row(u"", u"run");
        row(u"notes|start", u"notes start");
        row(u"autostart|off", u"autostart off");
        row(u"status|--json", u"status json");
        row(u"--json|status", u"status json");
        row(u"--bogus|-h", u"help");
        row(u"--version", u"version");

        row(u"ask", u"ask");
        row(u"ask||", u"ask");
        row(u"ask|what is|this?", u"ask [what is this?]");
        row(u"ask|hide", u"ask [hide]");
        row(u"ask|--|--json|--|-h", u"ask [--json -- -h]");
        row(u"--|show", u"show");

        row(u"--home|HOME/./sub/../sub", u"run in HOME/sub");
        row(u"--home|link", u"run in HOME/sub");
        row(u"status|--home|sub|--json", u"status json in HOME/sub");
        row(u"ask|--home=sub|why", u"ask [why] in HOME/sub");
        row(u"--home", u"error: Missing value after '--home'. See nubble --help.");
        row(u"--home|--json|status", u"error: --home needs an existing folder. See nubble --help.");
        row(u"--home|sub/file", u"error: --home needs an existing folder. See nubble --help.");

        row(u"--json", u"error: --json belongs to the command \"status\". See nubble --help.");
        row(u"ask|-v", u"error: Unknown option 'v'. See nubble --help.");
        row(u"-session|1", u"error: Unknown option 'session'. See nubble --help.");
        row(u"Status", u"error: There is no command \"Status\". See nubble --help.");
        row(u"status|sessions", u"error: There is no command \"status sessions\". See nubble --help.");
        row(u"notes", u"error: \"notes\" needs \"start\" or \"stop\". See nubble --help.");
        row(u"--home|sub|", u"error: There is no command \"\". See nubble --help.");
    }

    void itIsUnderstoodOrRefusedInOneLine()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, meaning);
        const QString home = QDir::currentPath();
        arguments.replace(u"HOME"_s, home);
        meaning.replace(u"HOME"_s, home);
        QCOMPARE(
            shown(parseCommandLine(arguments.isEmpty() ? QStringList() : arguments.split(u'|'))), meaning);
    }

private:
    TemporaryHome m_home;
    QString m_before;
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_command_line.moc"
