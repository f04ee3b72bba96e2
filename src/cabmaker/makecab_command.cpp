// makecab: reads the command line and directive files, builds the cabinet, reports.
#include "cabmaker/makecab_command.h"

#include "cabmaker/build_report.h"
#include "cabmaker/cabinet_writer.h"
#include "cabmaker/directive_interpreter.h"
#include "util/directive_token.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

namespace qb::cabmaker {

namespace {

constexpr int kOk = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;

const char *const kBanner = "Quillbox makecab " QB_VERSION " - cabinet maker for directive files";

const char *const kUsageText
    = "usage: makecab [/V[n]] [/D var=value ...] [/L dir] [--] source [destination]\n"
      "       makecab [/V[n]] [/D var=value ...] [/L dir] /F directive_file [/F ...]\n"
      "  source          a file to compress into a cabinet of its own\n"
      "  destination     the cabinet's name (default: source with its last character as \"_\")\n"
      "  /F file         a directive file; several run as one\n"
      "  /D var=value    sets a variable before the directive files run\n"
      "  /L dir          the folder the cabinet and disk folders are made in\n"
      "  /V[n]           verbosity: 0 errors only, 1 progress (default), 2 details\n"
      "Options start with \"/\" or \"-\", in any case; any other argument is a path, and after\n"
      "\"--\" every argument is.\n";

struct Options
{
    QStringList directives;
    QList<QPair<QString, QString>> defines;
    QString outputFolder;
    int verbosity = 1;
    QStringList positional;
    bool help = false;
};

// The options the tool has, after "/" or "-", in upper case; anything else is a path, so that
// "/tmp/a.txt" and "-draft.txt" are names of files.
bool isOption(const QString &arg)
{
    if (arg.size() < 2 || (arg[0] != u'/' && arg[0] != u'-'))
        return false;
    const QString name = arg.mid(1).toUpper();
    return name == u"?" || name == u"H" || name == u"-HELP" || name == u"F" || name == u"D" || name == u"L"
        || name == u"V" || (name.size() == 2 && name[0] == u'V' && name[1] >= u'0' && name[1] <= u'9');
}

// Parses the command line; false with a message when it is wrong.
bool parseArguments(const QStringList &args, Options &options, QString &problem)
{
    bool optionsEnded = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &arg = args[i];
        if (!optionsEnded && arg == u"--") {
            optionsEnded = true;
            continue;
        }
        if (optionsEnded || !isOption(arg)) {
            options.positional << arg;
            continue;
        }
        const QString name = arg.mid(1).toUpper();
        auto value = [&](QString &into) {
            if (i + 1 >= args.size()) {
                problem = QStringLiteral("%1 needs a value").arg(arg);
                return false;
            }
            into = args[++i];
            return true;
        };
        if (name == u"?" || name == u"H" || name == u"-HELP") {
            options.help = true;
        } else if (name == u"F") {
            QString file;
            if (!value(file))
                return false;
            options.directives << file;
        } else if (name == u"D") {
            QString pair;
            if (!value(pair))
                return false;
            const qsizetype eq = pair.indexOf(u'=');
            if (eq <= 0) {
                problem = QStringLiteral("/D needs var=value, not '%1'").arg(pair);
                return false;
            }
            options.defines.append({pair.left(eq).trimmed(), pair.mid(eq + 1)});
        } else if (name == u"L") {
            if (!value(options.outputFolder))
                return false;
        } else {
            options.verbosity = name.size() == 1 ? 1 : name[1].digitValue();
        }
    }
    if (options.help)
        return true;
    if (options.directives.isEmpty() && options.positional.isEmpty()) {
        problem = QStringLiteral("give a source file or a directive file with /F");
        return false;
    }
    if (!options.directives.isEmpty() && !options.positional.isEmpty()) {
        problem = QStringLiteral("'%1': a source file can't be given together with /F")
                      .arg(options.positional.first());
        return false;
    }
    if (options.positional.size() > 2) {
        problem = QStringLiteral("too many names: '%1'").arg(options.positional.join(u' '));
        return false;
    }
    return true;
}

// A directive text that makes a one-file cabinet of source as destination.
QByteArray oneFileDirective(const QString &source, const QString &destination)
{
    const auto quoted = util::QuoteDirectiveToken;
    const QFileInfo target(destination);
    QString text;
    text += QStringLiteral(".Set CabinetNameTemplate=") + quoted(target.fileName()) + u'\n';
    text += QStringLiteral(".Set DiskDirectory1=") + quoted(target.path() == u"." ? QString() : target.path())
        + u'\n';
    text += QStringLiteral(".Set InfFileName=NUL\n.Set RptFileName=NUL\n");
    text += quoted(source) + u' ' + quoted(QFileInfo(source).fileName()) + u'\n';
    return text.toUtf8();
}

QString percentLine(const WriteProgress &p)
{
    const double percent = p.bytesTotal > 0 ? 100.0 * double(p.bytesDone) / double(p.bytesTotal)
                                            : 100.0 * p.fileIndex / std::max(1, p.fileCount);
    return QString::asprintf("%6.2f%% - ", percent) + p.name
        + QStringLiteral(" (%1 of %2)").arg(p.fileIndex).arg(p.fileCount);
}

} // namespace

QString CompressedFileName(const QString &sourceName)
{
    const qsizetype slash = sourceName.lastIndexOf(u'/');
    const qsizetype dot = sourceName.lastIndexOf(u'.');
    if (dot <= slash + 1 || dot == sourceName.size() - 1)
        return sourceName + (dot == sourceName.size() - 1 ? QStringLiteral("_") : QStringLiteral("._"));
    return sourceName.left(sourceName.size() - 1) + u'_';
}

int RunMakeCab(const QStringList &arguments, QTextStream &out, QTextStream &err, const QString &currentFolder)
{
    Options options;
    QString problem;
    if (!parseArguments(arguments, options, problem)) {
        err << "makecab: error: " << problem << "\n" << kUsageText;
        err.flush();
        return kUsage;
    }
    if (options.help) {
        out << kBanner << "\n" << kUsageText;
        out.flush();
        return kOk;
    }
    auto say = [&](const QString &line) {
        if (options.verbosity >= 1) {
            out << line << "\n";
            out.flush();
        }
    };
    auto error = [&](const QString &message) {
        err << "makecab: error: " << message << "\n";
        err.flush();
    };
    say(QString::fromLatin1(kBanner));

    DirectiveInterpreter interpreter;
    interpreter.setCurrentFolder(currentFolder);
    const QString outputFolder = options.outputFolder.isEmpty()
        ? currentFolder
        : QDir(currentFolder).absoluteFilePath(options.outputFolder);
    interpreter.setOutputFolder(outputFolder);
    bool ok = true;
    for (const auto &[name, value] : std::as_const(options.defines))
        ok = interpreter.define(name, value) && ok;
    if (options.directives.isEmpty()) {
        const QString source = QDir(currentFolder).absoluteFilePath(options.positional[0]);
        const QString destination = options.positional.size() > 1
            ? options.positional[1]
            : CompressedFileName(QFileInfo(source).fileName());
        ok = interpreter.run(oneFileDirective(source, destination), QStringLiteral("(command line)")) && ok;
    } else {
        for (const QString &file : std::as_const(options.directives))
            ok = interpreter.runFile(QDir(currentFolder).absoluteFilePath(file)) && ok;
    }
    ok = ok && interpreter.finish();
    for (const QString &warning : interpreter.warnings())
        err << "makecab: warning: " << warning << "\n";
    if (!ok || !interpreter.errors().isEmpty()) {
        for (const DirectiveError &e : interpreter.errors())
            error(options.directives.isEmpty() ? e.message : e.toString());
        if (interpreter.errors().isEmpty())
            error(QStringLiteral("the directive files could not be read"));
        return kFailed;
    }

    const BuildPlan plan = interpreter.plan();
    if (options.verbosity >= 2) {
        for (qsizetype f = 0; f < plan.folders.size(); ++f)
            say(QStringLiteral("folder %1: %2 files").arg(f + 1).arg(plan.folders[f].files.size()));
    }
    QElapsedTimer clock;
    clock.start();
    CabinetWriter writer(plan);
    if (options.verbosity >= 1)
        writer.setProgress([&](const WriteProgress &p) {
            // CR LF: a reader that cuts the first line of what it reads at a carriage return, as
            // the job engine does, gets exactly one progress line even when several arrive at once.
            out << percentLine(p) << "\r\n";
            out.flush();
        });
    if (!writer.write()) {
        error(writer.errorString());
        return kFailed;
    }
    const double seconds = std::max(1e-6, double(clock.nsecsElapsed()) / 1e9);
    const CabinetStats &stats = writer.stats();
    say(QString());
    say(QStringLiteral("Cabinet:        %1").arg(plan.cabinetPath));
    say(QStringLiteral("Files:          %1 in %2 folder(s)").arg(stats.files.size()).arg(stats.folders));
    say(QStringLiteral("Bytes before:   %1").arg(stats.bytesIn));
    say(QStringLiteral("Bytes after:    %1").arg(stats.bytesOut));
    say(QStringLiteral("Ratio:          %1%")
            .arg(
                stats.bytesIn > 0 ? 100.0 * double(stats.bytesOut) / double(stats.bytesIn) : 0.0, 0, 'f', 2));
    say(QStringLiteral("Time:           %1 s").arg(seconds, 0, 'f', 3));
    say(QStringLiteral("Throughput:     %1 MB/s").arg(double(stats.bytesIn) / 1e6 / seconds, 0, 'f', 2));

    for (const auto &[path, text] : {std::pair {plan.rptPath, ReportText(plan, stats, seconds)},
             std::pair {plan.infPath, InformationText(plan, stats)}}) {
        if (path.isEmpty())
            continue;
        QString why;
        if (!WriteTextFileAtomically(path, text, why))
            err << "makecab: warning: cannot write '" << path << "': " << why << "\n";
    }
    err.flush();
    return kOk;
}

} // namespace qb::cabmaker
