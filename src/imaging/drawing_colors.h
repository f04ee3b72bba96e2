// Colours as the picture properties give them: a number 0x00BBGGRR, or that number written in
// hexadecimal with or without the "&H" prefix ("&H0000FF" is red), with an alpha of 0..255.
#pragma once

#include <QColor>
#include <QString>

namespace qb::imaging {

// The number a colour text stands for, in the low 24 bits. Surrounding blanks, the "&H" prefix and
// a closing "&" are allowed; reading stops at the first character that is not a hexadecimal digit
// or after eight digits, so a text without any gives 0 (black).
qint32 ColorTextToNumber(const QString &text);

// Alpha outside 0..255 is brought inside it.
QColor DrawingColor(qint32 bgr, int alpha = 255);
QColor DrawingColor(const QString &text, int alpha = 255);

} // namespace qb::imaging
