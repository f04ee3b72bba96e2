// The texts a build writes: the directive file for the cabinet maker, the notice that goes first
// into every cabinet, and the command line that runs the maker.
#pragma once

#include <QString>
#include <QStringList>

namespace qb::workbench {

// One file of the package: where it is read from and its name in the cabinet.
struct DirectiveEntry
{
    QString source;
    QString nameInCabinet;
};

// The compression lines for the stored settings, each read as a number: type 1 MSZIP, 2 LZX
// (with the memory figure + 15 as window size), anything else no compression.
QStringList CompressionLines(const QString &CompressionType, const QString &CompressionMemory);

// The whole directive file: every line followed by CR LF and an empty line (CR LF again).
QString DirectiveText(const QString &cabinetPath, const QString &noticePath, const QStringList &compression,
    const QList<DirectiveEntry> &entries);

// The notice's text; its first line is CR LF + "本压缩包使用 " + the title + " 制作".
QString NoticeText();

// The notice's name inside the cabinet: the title + ".txt".
QString NoticeNameInCabinet();

// The name a cabinet row must have to be taken for this program's notice and left out of the list.
QString HiddenNoticeName();

// "\"maker\" /f \"directive\"".
QString MakeCabCommandLine(const QString &makeCabPath, const QString &directivePath);

// Writes text and a closing CR LF to path in the system's code page; without append an existing
// file is replaced. True when written.
bool WriteTextFile(const QString &text, const QString &path, bool append);

} // namespace qb::workbench
