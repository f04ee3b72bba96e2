// Clock texts: milliseconds to "h:mm:ss"-style texts in the classic styles, and such texts back to time.
#pragma once

#include <QString>

namespace qb::util {

// Formats a duration given in milliseconds. MSecs is a work variable: afterwards it holds the
// milliseconds left over after the hours, minutes and seconds were taken off (before rounding).
// Negative values and NaN count as 0; values above 2^53 ms (about 285,000 years, and infinity)
// are taken as 2^53 so that every step stays exact. Each step rounds half to even before its
// integer division. Fields pad with zeros and never cut (100 hours print "100").
// TimeStyle: 1 "h:mm:ss.cc", 2 "mm:ss.cc" (total minutes), 3 "mm:ss.mmm", 4 "mm:ss",
// 5 "hh:mm:ss:cc", 98 "hh:mm:ss.mmm", 99 "hh:mm:ss", any other "hh:mm:ss,mmm".
// Hundredths (cc) are cut from the milliseconds, not rounded.
QString MSecsToTime(double &MSecs, int TimeStyle);

// MSecsToTime on a copy, for callers that keep their value.
QString FormatMSecs(double msecs, int timeStyle);

// Reads a clock text as milliseconds. Every blank in TimeString first becomes "0" (the caller
// sees that). The first shape that fits the whole text decides ("#" is one digit):
// "##:##:##,###" / "#:##:##,###", "#:##:##.##", "##:##.##", "##:##.###", "##:##",
// "##:##:##:##" (last field hundredths), "##:##:##"; then a plain decimal number of seconds;
// otherwise the text splits at separator into a clock part ("h:m:s", missing fields 0) and a
// millisecond field. A field that is no number or does not fit 32 bits counts as 0. The clock
// total is computed in checked 32-bit arithmetic: an overflow gives 0. A plain number of seconds
// is rounded half to even to whole milliseconds, which must fit 32 bits as well.
double TimeToMSecs(QString &TimeString, const QString &separator);

// Reads a clock text as seconds with the same shapes and blank replacement as TimeToMSecs.
// The whole seconds come from 32-bit checked arithmetic (overflow gives 0). With IncludeDecimal
// the fraction is added: milliseconds / 1000 or hundredths / 100 as the shape says; after a
// split at separator the right field counts hundredths when separator is "." and milliseconds
// otherwise. A plain decimal number is returned as Val reads it, whatever IncludeDecimal says.
double TimeToSec(QString &TimeString, bool IncludeDecimal, const QString &separator);

// "hh:mm:ss" (each at least two digits) from milliseconds, split as MSecsToTime does; with MSecUse
// followed by MSecString and the rest in three digits: FormatTime(3723004, true, ".") gives
// "01:02:03.004".
QString FormatTime(double milliseconds, bool MSecUse, const QString &MSecString);

} // namespace qb::util
