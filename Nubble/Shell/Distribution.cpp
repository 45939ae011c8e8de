#include "Shell/Distribution.h"

#include <QList>

#include <array>

#include "Platform/RegularFile.h"

using namespace Qt::StringLiterals;

namespace nubble::Distribution {

namespace {

struct Family {
    QByteArrayView id;
    QStringView install;
};

constexpr std::array<Family, 5> families{{
    {"debian", u"sudo apt install "},
    {"ubuntu", u"sudo apt install "},
    {"fedora", u"sudo dnf install "},
    {"arch", u"sudo pacman -S "},
    {"suse", u"sudo zypper install "},
}};

QByteArray unquoted(const QByteArray &value)
{
    const bool isQuoted =
        value.size() > 1 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front();
    return isQuoted ? value.sliced(1, value.size() - 2) : value;
}

// As a shell would have it that reads the file: the last assignment counts.
QByteArray valueAfter(QByteArrayView assignment, QByteArrayView osRelease)
{
    QByteArray value;
    for (const QByteArray &each : osRelease.toByteArray().split('\n'))
        if (const QByteArray line = each.trimmed(); line.startsWith(assignment))
            value = unquoted(line.sliced(assignment.size()));
    return value;
}

} // namespace

std::optional<QString> installCommand(QByteArrayView osRelease, const QString &package)
{
    const QByteArray ids = // nearest first
        valueAfter("ID=", osRelease) + ' ' + valueAfter("ID_LIKE=", osRelease);
    for (const QByteArray &id : ids.split(' '))
        for (const Family &each : families)
            if (each.id == id)
                return each.install + package;
    return std::nullopt;
}

QByteArray osRelease()
{
    constexpr qint64 reasonable = 65'536;
    for (const QString &path : {u"/etc/os-release"_s, u"/usr/lib/os-release"_s})
        if (const auto file = RegularFile::open(path))
            return file->read(0, reasonable).value_or(QByteArray());
    return {};
}

} // namespace nubble::Distribution
