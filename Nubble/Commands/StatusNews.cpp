#include "Commands/StatusNews.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

QJsonObject withoutAges(QJsonObject status)
{
    QJsonArray sessions;
    for (const QJsonValue each : status["sessions"_L1].toArray()) {
        QJsonObject session = each.toObject();
        session.remove("elapsed"_L1);
        sessions.append(session);
    }
    status["sessions"_L1] = sessions;
    return status;
}

} // namespace

StatusNews::StatusNews(QObject *parent) : QObject(parent)
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(std::chrono::milliseconds(250));
    connect(&m_pause, &QTimer::timeout, this, &StatusNews::look);
}

void StatusNews::begin(const QJsonObject &status)
{
    if (std::exchange(m_isFollowed, true))
        return; // what the others have been told is what counts
    m_told = withoutAges(status);
}

void StatusNews::consider(const std::function<QJsonObject()> &status)
{
    if (!m_isFollowed || m_pause.isActive())
        return;
    m_status = status;
    m_pause.start();
}

void StatusNews::look()
{
    const QJsonObject status = withoutAges(m_status());
    if (status == m_told)
        return;
    m_told = status;
    Q_EMIT changed();
}

} // namespace nubble
