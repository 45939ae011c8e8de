#pragma once

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "support/TemporaryHome.h"

namespace nubble {

inline QJsonObject hitJson(const QString &title, const QJsonObject &more = {})
{
    using namespace Qt::StringLiterals;
    QJsonObject hit{
        {u"id"_s, QString(u"id-"_s + title)},
        {u"source"_s, u"chat"_s},
        {u"title"_s, title},
        {u"project"_s, u"p"_s},
        {u"category"_s, u"c"_s},
        {u"tags"_s, QJsonArray{u"t"_s}},
        {u"updated"_s, u"today"_s},
        {u"starred"_s, true},
        {u"snippet"_s, u"s"_s}};
    for (auto each = more.begin(); each != more.end(); ++each)
        each.key() == u"remove" ? hit.remove(each.value().toString()) : void(hit[each.key()] = each.value());
    return hit;
}

inline QByteArray searchJson(const QJsonArray &hits, const QJsonObject &corrected = {})
{
    using namespace Qt::StringLiterals;
    return QJsonDocument({{u"results"_s, hits}, {u"corrected"_s, corrected}}).toJson();
}

// The chat index, as a script in the home folder: keeps the arguments and the process of each call.
class YarnbinStandIn {
public:
    explicit YarnbinStandIn(TemporaryHome &home) : m_home(home) { }

    // Goes on with the script, for which the arguments are $1 and so on.
    void follow(const QByteArray &script)
    {
        QFile::remove(m_home.path(command)); // which a shell may still be reading
        m_home.writeScript(
            command,
            "#!/bin/bash\nhome=$(dirname \"$0\")/../..\nIFS='|'; echo \"$*\" >>$home/calls; echo $$ "
            ">>$home/pids\n"
                + script);
    }
    void answers(const QByteArray &json)
    {
        m_home.write(QStringLiteral("answer"), json);
        follow("cat $home/answer");
    }
    void remove() { QFile::remove(m_home.path(command)); }
    [[nodiscard]] QList<QByteArray> calls() const
    {
        QList<QByteArray> lines = m_home.read(QStringLiteral("calls")).split('\n');
        lines.removeLast();
        return lines;
    }

private:
    static inline const QString command = QStringLiteral(".local/bin/yarnbin");

    TemporaryHome &m_home;
};

} // namespace nubble
