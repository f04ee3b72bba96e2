// Elapsed time across midnight and the remainder estimate.
#include "engine/job_progress.h"

#include "util/time_format.h"

namespace qb::engine {

namespace {

constexpr double kDayMSecs = 86'400'000.0;

} // namespace

double ElapsedMSecs(const QString &startTime, const QString &nowTime)
{
    const QString comma = QStringLiteral(",");
    QString start = startTime;
    QString now = nowTime;
    const double startMSecs = util::TimeToMSecs(start, comma);
    const double nowMSecs = util::TimeToMSecs(now, comma);
    if (nowMSecs < startMSecs)
        return kDayMSecs - startMSecs + nowMSecs;
    return nowMSecs - startMSecs;
}

QString RemainderText(double elapsedMSecs, double value, double max)
{
    if (!(value > 0))
        return {};
    double total = elapsedMSecs / value * max;
    double remaining = total - elapsedMSecs;
    const QString remainingText = util::MSecsToTime(remaining, 99);
    return remainingText + u'/' + util::MSecsToTime(total, 99);
}

} // namespace qb::engine
