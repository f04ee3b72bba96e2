// Sub-commands of the quillbox command.
#include "cli/cli.h"
#include "cli/exit_status.h"

#include "cli/cab_command.h"
#include "cli/image_command.h"
#include "cli/media_command.h"
#include "cli/subtitle_command.h"

#include "host/find_file.h"
#include "util/file_names.h"
#include "util/number_text.h"
#include "util/size_format.h"
#include "util/text_file.h"
#include "util/time_format.h"

#include <QFileInfo>

#include <functional>
#include <map>

namespace qb::cli {

namespace {

const char *const kUsageText
    = "usage: quillbox COMMAND [ARGUMENTS]\n"
      "  find FOLDER [WILDCARD] [--attributes N] [--flat]\n"
      "                        list the files below FOLDER (WILDCARD \"*.*\"; N 8 files, 16 folders, 24 "
      "both)\n"
      "  time MILLISECONDS [STYLE]\n"
      "                        print a time text (STYLE 0 \"00:00:00,000\", 1, 2, 3, 4, 5, 98, 99)\n"
      "  msecs TIME [SEPARATOR]  read a time text back into milliseconds (SEPARATOR \",\")\n"
      "  size BYTES|FILE        print a size as \"1.00KB\"\n"
      "  text-format FILE       print the text format of a file: 0 ANSI, 1 UTF-8, 2 UTF-16 LE,\n"
      "                         3 UTF-16 BE, 4 UTF-32 LE, 5 UTF-32 BE\n"
      "  cab list|extract|test|xml CABINET [-d DIR] [NAME...]\n"
      "                        list, unpack (into DIR, default the current folder), test or\n"
      "                        describe as XML the files of a cabinet (all, or the NAMEs)\n"
      "  cab create CABINET PATH... [--compression none|mszip|lzx] [--memory 15..21] [--level 1..9]\n"
      "                        pack files and folders (a folder's files relative to it) as the\n"
      "                        desktop program does; default LZX with a 2 MiB window\n"
      "  media tools [PATH...]  name each tool (default: ffmpeg, mencoder, x264, mkvmerge on the PATH),\n"
      "                        its version and, for the encoder, what it can write\n"
      "  media probe FILE... [--json] [--core PATH]\n"
      "                        the streams of media files and a one-line summary\n"
      "  media convert SRC... --format NAME [-o OUT|--output-dir DIR] [job options] [--dry-run]\n"
      "                        convert media with ffmpeg (quillbox media convert for its options)\n"
      "  media formats [--core PATH]\n"
      "                        the output formats and whether this ffmpeg can make each\n"
      "  media overlay OUT.ass [--title T1 [T2]] [--banner T] [--logo T] [--size WxH] [--from S --to S]\n"
      "                        the timed title, banner and logo a job burns in (.ssa: the plain form)\n"
      "  media sheet VIDEO OUT.jpg [--grid CxR] [--size 300max|WxH]\n"
      "                        a contact sheet of a video's frames with their times\n"
      "  media avs SRC... [job options] [-o OUT.avs]\n"
      "                        the frame-server script of a job (quillbox media avs for its options)\n"
      "  image convert SRC... DST [--size 800max|50%|WxH] [--quality N] [--format F] [--rotate N]\n"
      "                        [--border W] [--set PROPERTY=VALUE]  convert pictures; several stitch\n"
      "  image info FILE...     format, size, depth and resolution of pictures\n"
      "  subtitle convert SRC... DST [--offset S] [--window START END] [--split] [--merge]\n"
      "                        [--encoding N] [--simplified|--traditional]\n"
      "                        convert subtitles and lyrics; DST's extension names the format\n"
      "  subtitle formats       the formats, their extensions and what is read and written\n"
      "  help                   this text\n";

struct Context
{
    QStringList args;
    QTextStream &out;
    QTextStream &err;
};

int usage(Context &c, const QString &problem)
{
    if (!problem.isEmpty())
        c.err << "quillbox: " << problem << "\n";
    c.err << kUsageText;
    return kUsage;
}

int find(Context &c)
{
    QString folder;
    QString wildcard = QStringLiteral("*.*");
    int attributes = host::kAttrPlainFile;
    bool flat = false;
    QStringList positional;
    for (qsizetype i = 0; i < c.args.size(); ++i) {
        const QString &a = c.args[i];
        if (a == QLatin1String("--flat")) {
            flat = true;
        } else if (a == QLatin1String("--attributes")) {
            bool ok = false;
            attributes = c.args.value(++i).toInt(&ok);
            if (!ok)
                return usage(c, QStringLiteral("--attributes needs a number"));
        } else {
            positional << a;
        }
    }
    if (positional.isEmpty() || positional.size() > 2)
        return usage(c, QStringLiteral("find needs a folder"));
    folder = positional[0];
    if (positional.size() == 2)
        wildcard = positional[1];
    host::clsFindFile finder;
    if (!finder.FindFiles(folder, wildcard, attributes, !flat)) {
        c.err << "quillbox: cannot read the folder " << folder << "\n";
        return kFailed;
    }
    for (const QString &path : finder.results())
        c.out << path << "\n";
    c.out << qint64(finder.Count()) << " found, " << util::FormatByteSize(finder.Size()) << "\n";
    return kOk;
}

int time(Context &c)
{
    if (c.args.isEmpty() || c.args.size() > 2 || !util::IsNumericText(c.args[0]))
        return usage(c, QStringLiteral("time needs a number of milliseconds"));
    double msecs = util::Val(c.args[0]);
    const int style = c.args.size() > 1 ? c.args[1].toInt() : 0;
    c.out << util::MSecsToTime(msecs, style) << "\n";
    return kOk;
}

int msecs(Context &c)
{
    if (c.args.isEmpty() || c.args.size() > 2)
        return usage(c, QStringLiteral("msecs needs a time text"));
    QString text = c.args[0];
    c.out << qint64(util::TimeToMSecs(text, c.args.value(1, QStringLiteral(",")))) << "\n";
    return kOk;
}

int size(Context &c)
{
    if (c.args.size() != 1)
        return usage(c, QStringLiteral("size needs a number of bytes or a file"));
    const QString &a = c.args[0];
    if (util::IsNumericText(a)) {
        c.out << util::FormatByteSize(util::Val(a)) << "\n";
        return kOk;
    }
    if (!QFileInfo(a).isFile()) {
        c.err << "quillbox: no such file: " << a << "\n";
        return kFailed;
    }
    c.out << util::FormatByteSize(double(util::GetFileLen(a))) << "\n";
    return kOk;
}

int textFormat(Context &c)
{
    if (c.args.size() != 1)
        return usage(c, QStringLiteral("text-format needs a file"));
    const int format = util::UEFCheckTextFileFormat(c.args[0]);
    if (format < 0) {
        c.err << "quillbox: cannot open " << c.args[0] << "\n";
        return kFailed;
    }
    c.out << format << "\n";
    return kOk;
}

} // namespace

int RunQuillbox(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    static const std::map<QString, std::function<int(Context &)>> commands {
        {QStringLiteral("find"), find},
        {QStringLiteral("time"), time},
        {QStringLiteral("msecs"), msecs},
        {QStringLiteral("size"), size},
        {QStringLiteral("text-format"), textFormat},
        {QStringLiteral("cab"), [](Context &c) { return RunCabCommand(c.args, c.out, c.err); }},
        {QStringLiteral("media"), [](Context &c) { return RunMediaCommand(c.args, c.out, c.err); }},
        {QStringLiteral("image"), [](Context &c) { return RunImageCommand(c.args, c.out, c.err); }},
        {QStringLiteral("subtitle"), [](Context &c) { return RunSubtitleCommand(c.args, c.out, c.err); }},
    };
    Context context {arguments.mid(1), out, err};
    if (arguments.isEmpty())
        return usage(context, QString());
    const QString &command = arguments.first();
    if (command == QLatin1String("help") || command == QLatin1String("--help")
        || command == QLatin1String("-h")) {
        out << kUsageText;
        return kOk;
    }
    const auto it = commands.find(command);
    if (it == commands.end())
        return usage(context, QStringLiteral("unknown command: ") + command);
    return it->second(context);
}

} // namespace qb::cli
