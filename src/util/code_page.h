// Conversions between QString and bytes in Windows code pages, UTF-8 standing in for the "ANSI" one.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace qb::util {

// Decodes bytes in a Windows code page. 0 is the system's "ANSI" code page: UTF-8 here, except that
// a buffer which is not valid UTF-8 is decoded as a whole in code page 936 (GBK). 65001 is UTF-8.
// Invalid bytes become U+FFFD and decoding goes on. An unknown code page gives an empty string.
QString DecodeCodePage(QByteArrayView bytes, int codePage = 0);

// Encodes text in a Windows code page; 0 and 65001 are UTF-8. A character the code page cannot
// hold, and a lone surrogate, become one "?". An unknown code page gives an empty array.
QByteArray EncodeCodePage(QStringView text, int codePage = 0);

// True when the bytes are well-formed UTF-8 (no overlong forms, surrogates or values past U+10FFFF).
bool IsValidUtf8(QByteArrayView bytes);

} // namespace qb::util
