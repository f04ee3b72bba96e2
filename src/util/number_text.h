// Classic number parsing and formatting: Val, numeric checks, banker's rounding and Format patterns.
#pragma once

#include <QString>
#include <QStringView>
#include <QtGlobal>

namespace qb::util {

// The classic Val. Blanks, tabs and line feeds are skipped wherever they are. Reads an optional
// sign, digits, an optional "." with digits and an optional exponent ("E" or "D", optional sign,
// digits) and stops at the first other character. "&H1F" and "&O17" read hexadecimal and octal;
// like the classic, a value up to FFFF is taken as a signed 16-bit pattern and up to FFFFFFFF as
// a signed 32-bit one ("&HFFFF" gives -1); more than 32 bits gives 0. Without a number the result
// is 0. A decimal number too large for a double gives 0 (the classic raised an overflow there),
// never inf or NaN; one too small gives 0 as well.
double Val(QStringView text);

// True for a plain decimal number: optional blanks (spaces, tabs) around it, an optional sign,
// digits with an optional "." fraction (".5" and "5." count) and an optional exponent ("E" or
// "D", optional sign, at least one digit). False for empty text, blanks only, "1:2", "abc", "1e".
bool IsNumericText(QStringView text);

// Rounds half to even ("banker's rounding"): 2.5 -> 2, 3.5 -> 4, -0.5 -> 0. Infinities and NaN
// come back unchanged.
double RoundHalfEven(double value);

// Rounds half to even into a signed 32-bit value. Returns false, leaving out untouched, when the
// value is not finite or the rounded value does not fit.
bool RoundToLong(double value, qint32 &out);

// The classic Format for numeric patterns built of "0", "#", "," and one ".":
// "0" is a digit that always prints, "#" one that prints only when needed, so "0#" means at least
// two integer digits and "#" prints nothing for a value that rounds to 0; a "," between digit
// placeholders asks for thousands separators; after the "." a "0" is a decimal that always prints
// and a "#" one that prints only when not a trailing zero. Like the classic, the "." itself always
// prints when the pattern has one ("#.##" on 3 gives "3."). Rounding is half away from zero on the
// shortest decimal form that reads back as the same double (1.005 in "0.00" gives "1.01"); large
// integers print every digit the double holds. A "-" is only written when a non-zero digit is.
// Any other pattern (including an empty one) gives the shortest decimal form: plain notation for
// magnitudes from 1E-5 up to 1E+15, otherwise "1.5E+20" style. NaN and infinities give "".
// Never locale-dependent: "." and "," always.
QString FormatNumber(double value, QStringView pattern);

} // namespace qb::util
