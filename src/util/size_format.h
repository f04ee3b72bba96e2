// Byte counts as short texts with a unit: "1023B", "1.50KB", "4.66GB".
#pragma once

#include <QString>

namespace qb::util {

// Below 1024: the number as it is and "B" (no rounding: 1023.5 gives "1023.5B", -5 gives "-5B");
// below 1048576: KB; below 1048576000 (1000 MB, not 1024): MB; above: GB. Pattern "0.00" with
// IncludeDecimal, "#" without; no blank before the unit. 1024 -> "1KB", 1048575999 -> "1000MB",
// 1048576000 -> "0.98GB" / "1GB".
// NaN and infinities give "".
QString ConvertFileSize(double size, bool IncludeDecimal);

// ConvertFileSize of a file's length; a missing file or a folder counts as 0 bytes.
QString CheckFileSize(const QString &fileName, bool IncludeDecimal);

// The workbench's size text: below 1024 the number as it is and "B", then KB, MB and GB at the
// binary limits, always with two decimals: 1024 -> "1.00KB", 5000000000 -> "4.66GB".
// NaN and infinities give "".
QString FormatByteSize(double value);

} // namespace qb::util
