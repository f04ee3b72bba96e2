// Elapsed and remaining time of a job, from its start and the clock, as the progress step reports.
#pragma once

#include <QString>

namespace qb::engine {

// Milliseconds from startTime to nowTime, both "HH:MM:SS". A now earlier than the start means
// midnight has passed: the day's remainder after the start is added to now.
double ElapsedMSecs(const QString &startTime, const QString &nowTime);

// "remaining/total" as "hh:mm:ss/hh:mm:ss", estimating the total from how long it took to reach
// position value of max. "" when value is not above 0, since nothing can be estimated yet.
QString RemainderText(double elapsedMSecs, double value, double max);

} // namespace qb::engine
