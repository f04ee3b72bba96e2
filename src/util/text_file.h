// Text files with a byte order mark ("UEF" family), plain ANSI text files, and the Big5 guess.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <QtGlobal>

namespace qb::util {

// Text format codes used by the UEF functions.
enum TextFormat : int {
    TextFormatDetect = -1,
    TextFormatAnsi = 0, // no byte order mark
    TextFormatUtf8 = 1, // EF BB BF
    TextFormatUtf16Le = 2, // FF FE
    TextFormatUtf16Be = 3, // FE FF
    TextFormatUtf32Le = 4, // FF FE 00 00
    TextFormatUtf32Be = 5, // 00 00 FE FF
};

// Recognises a byte order mark in the first four bytes of a file, read as a little-endian value
// (missing bytes are 0). UTF-32 marks win over UTF-16 ones. Without a mark, format is left as it
// came in and length is 0.
void UEFCheckBOM(quint32 dwFirst, int &format, int &length);

// The byte order mark of formats 1..5, as a little-endian value and its length in bytes; other
// formats give 0 and 0.
void UEFMakeBOM(int format, quint32 &dwFirst, int &length);

// The format a file's byte order mark announces (0 without one); -1 when it cannot be opened.
int UEFCheckTextFileFormat(const QString &fileName);

// Decodes a whole file's bytes. defFmt -1 detects the format and reports it; a given format that
// differs from the file's mark reads the whole file, mark included, as that format. UTF-32 files
// give an empty string. defFmt outside -1..5 gives an empty string.
QString UEFDecodeText(QByteArrayView fileBytes, int &defFmt, int ansiCodePage = 0);

// Loads a text file through UEFDecodeText. Empty when defFmt is out of range, when the file cannot
// be read, or when it holds 4 GiB or more.
QString UEFLoadTextFile(const QString &fileName, int &defFmt, int ansiCodePage = 0);

// Writes or appends text. defFmt -1 is only allowed when appending: a new or empty file then takes
// defaultFormat, an existing one keeps the format its mark announces. A byte order mark is only
// written when not appending. UTF-32 is not written (false). defFmt reports the format used.
bool UEFSaveTextFile(const QString &fileName, const QString &sText, bool isAppend, int &defFmt,
    int defaultFormat, int ansiCodePage = 0);

// Reads an ANSI text file line by line (CR LF, CR or LF) and joins the lines with CR LF, without a
// trailing one. Empty when the file does not exist or cannot be read.
QString ReadText(const QString &fileName, int ansiCodePage = 0);

// Writes the text as ANSI followed by CR LF, replacing the file unless isAppend.
bool WriteText(const QString &sText, const QString &fileName, bool isAppend, int ansiCodePage = 0);

// Guesses whether text is Big5 misread as GBK: true when some character encodes in code page 936
// to two bytes with the second in 0x40..0x7E, which GB2312 characters never do.
bool CheckBIG5(const QString &sInput);

} // namespace qb::util
