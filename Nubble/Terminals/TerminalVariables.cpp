#include "Terminals/TerminalVariables.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr qsizetype longestValue = 512;

using Values = QHash<QByteArray, QString>;

constexpr std::array<QByteArrayView, 12> names = {
    "WINDOWID",
    "WAYLAND_DISPLAY",
    "TMUX",
    "TMUX_PANE",
    "STY",
    "WINDOW",
    "KONSOLE_DBUS_SERVICE",
    "KONSOLE_DBUS_WINDOW",
    "KONSOLE_DBUS_SESSION",
    "KITTY_LISTEN_ON",
    "KITTY_PID",
    "KITTY_WINDOW_ID"};

// Those that are printable ASCII and not too long.
Values valuesIn(const QByteArray &environment)
{
    Values values;
    for (const QByteArray &each : environment.split('\0')) {
        const qsizetype end = each.indexOf('=');
        const QByteArray name = each.first(std::max<qsizetype>(end, 0));
        const QByteArray value = each.sliced(end + 1);
        const auto isPlain = [](char c) { return c >= ' ' && c <= '~'; };
        if (std::ranges::find(names, QByteArrayView(name)) != names.end() && value.size() <= longestValue
            && std::ranges::all_of(value, isPlain))
            values.insert(name, QString::fromLatin1(value));
    }
    return values;
}

// The pattern's groups, where it fits the whole value. None: it does not.
QStringList parts(const QString &value, const QString &pattern)
{
    const QRegularExpression expression(QRegularExpression::anchoredPattern(pattern));
    return expression.match(value).capturedTexts();
}

std::optional<TerminalVariables::Tmux> tmuxIn(const Values &values)
{
    const QStringList place = parts(values.value("TMUX"), u"(/.*),([0-9]{1,9}),[0-9]+"_s);
    const QStringList pane = parts(values.value("TMUX_PANE"), u"%[0-9]{1,9}"_s);
    if (place.isEmpty() || pane.isEmpty())
        return std::nullopt;
    return TerminalVariables::Tmux{place.at(1), place.at(2).toInt(), pane.first()};
}

std::optional<TerminalVariables::Screen> screenIn(const Values &values)
{
    const QStringList session = parts(values.value("STY"), u"([0-9]{1,9})\\.[^/ ]+"_s);
    const QStringList window = parts(values.value("WINDOW"), u"[0-9]{1,5}"_s);
    if (session.isEmpty() || window.isEmpty())
        return std::nullopt;
    return TerminalVariables::Screen{session.first(), session.at(1).toInt(), window.first().toInt()};
}

std::optional<TerminalVariables::Konsole> konsoleIn(const Values &values)
{
    const QString service = values.value("KONSOLE_DBUS_SERVICE");
    const QStringList window = parts(values.value("KONSOLE_DBUS_WINDOW"), u"(/[A-Za-z0-9_]+)+"_s);
    const QStringList session = parts(values.value("KONSOLE_DBUS_SESSION"), u"/Sessions/([0-9]{1,9})"_s);
    const bool isName = !parts(service, u":[0-9]+\\.[0-9]+|org\\.kde\\.konsole(-[0-9]+)?"_s).isEmpty();
    if (!isName || window.isEmpty() || session.isEmpty())
        return std::nullopt;
    return TerminalVariables::Konsole{service, window.first(), session.at(1).toInt()};
}

std::optional<TerminalVariables::Kitty> kittyIn(const Values &values)
{
    const QStringList socket = parts(values.value("KITTY_LISTEN_ON"), u"unix:[/@].+"_s);
    const QStringList process = parts(values.value("KITTY_PID"), u"[0-9]{1,9}"_s);
    const QStringList window = parts(values.value("KITTY_WINDOW_ID"), u"[0-9]{1,9}"_s);
    if (socket.isEmpty() || process.isEmpty() || window.isEmpty())
        return std::nullopt;
    return TerminalVariables::Kitty{socket.first(), process.first().toInt(), window.first().toUInt()};
}

} // namespace

TerminalVariables terminalVariables(const QByteArray &environment)
{
    const Values values = valuesIn(environment);
    const QStringList window = parts(values.value("WINDOWID"), u"[0-9]{1,10}"_s);
    return {
        .window = window.value(0).toUInt(),
        .isWayland = !values.value("WAYLAND_DISPLAY").isEmpty(),
        .tmux = tmuxIn(values),
        .screen = screenIn(values),
        .konsole = konsoleIn(values),
        .kitty = kittyIn(values),
    };
}

} // namespace nubble
