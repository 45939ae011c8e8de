#include "Preview/PreviewSample.h"

#include <QDateTime>

using namespace Qt::StringLiterals;

namespace nubble {

QString PreviewSample::fileName(int scale) const
{
    const QString name = card + u'-' + QString(state).replace(u' ', u'-');
    return name + (scale == 1 ? u".png"_s : u"@%1x.png"_s.arg(scale));
}

QDateTime previewDateTime()
{
    return {QDate(2026, 3, 12), QTime(10, 24), Qt::UTC};
}

TimePoint previewTime()
{
    return TimePoint(std::chrono::milliseconds(previewDateTime().toMSecsSinceEpoch()));
}

QList<PreviewSample> previewSamples()
{
    return sessionSamples() + usageSamples() + meetingSamples() + reviewSamples();
}

} // namespace nubble
