// The directive file, the notice and the maker's command line.
#include "workbench/directive_text.h"

#include "engine/command_line.h"
#include "util/directive_token.h"
#include "util/number_text.h"
#include "util/text_file.h"
#include "workbench/app_context.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace qb::workbench {

namespace {

const QString kCrLf = u"\r\n"_s;

} // namespace

QStringList CompressionLines(const QString &CompressionType, const QString &CompressionMemory)
{
    const double type = util::Val(CompressionType);
    if (type == 1)
        return {u".Set CompressionType=MSZIP"_s};
    if (type == 2)
        return {u".Set CompressionType=LZX"_s,
            u".Set CompressionMemory="_s + QString::number(util::Val(CompressionMemory) + 15)};
    return {u".Set Compress=OFF"_s};
}

QString DirectiveText(const QString &cabinetPath, const QString &noticePath, const QStringList &compression,
    const QList<DirectiveEntry> &entries)
{
    QStringList lines {u".Option EXPLICIT"_s,
        u".Set CabinetNameTemplate="_s + util::QuoteDirectiveToken(cabinetPath),
        u".Set DiskDirectoryTemplate=CDROM"_s};
    lines += compression;
    lines += {u".Set MaxCabinetSize=0"_s, u".Set MaxDiskSize=0"_s, u".Set UniqueFiles=OFF"_s,
        u".Set FolderFileCountThreshold=0"_s, u".Set Cabinet=on"_s, u".Set DiskDirectory1="_s,
        util::QuoteDirectiveToken(noticePath) + u' ' + util::QuoteDirectiveToken(NoticeNameInCabinet())};
    QString text;
    text.reserve((lines.size() + entries.size()) * 96);
    for (const QString &line : std::as_const(lines))
        text += line + kCrLf + kCrLf;
    for (const DirectiveEntry &entry : entries)
        text += util::QuoteDirectiveToken(entry.source) + u' '
            + util::QuoteDirectiveToken(entry.nameInCabinet) + kCrLf + kCrLf;
    return text;
}

QString NoticeText()
{
    return kCrLf + u"本压缩包使用 "_s + gAppTitle + u" 制作"_s + kCrLf + kCrLf
        + u"这是制作本压缩包的程序放入的说明文件，可以放心删除。"_s + kCrLf + gAppTitle
        + u" 是 Linux 上建立、查看和释放 CAB 压缩包的工具。"_s;
}

QString NoticeNameInCabinet()
{
    return gAppTitle + u".txt"_s;
}

QString HiddenNoticeName()
{
    return gAppTitle + u" 压缩制作"_s + u".txt"_s;
}

QString MakeCabCommandLine(const QString &makeCabPath, const QString &directivePath)
{
    // A quote or backslash in the path needs the command line's own escapes to come back whole.
    const bool plain = !directivePath.contains(u'"') && !directivePath.contains(u'\\');
    return u'"' + makeCabPath + u"\" /f "_s
        + (plain ? u'"' + directivePath + u'"' : engine::QuoteArgument(directivePath));
}

bool WriteTextFile(const QString &text, const QString &path, bool append)
{
    if (!append && QFile::exists(path))
        QFile::remove(path);
    return util::WriteText(text, path, true); // which ends the text with CR LF
}

} // namespace qb::workbench
