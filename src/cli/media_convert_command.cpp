// quillbox media convert | formats: jobs run through the engine, with their progress on the
// terminal and Ctrl+C cancelling as the engine cancels.
#include "cli/media_convert_command.h"

#include "cli/exit_status.h"
#include "cli/interrupt_watch.h"
#include "cli/job_options.h"
#include "engine/ffmpeg_dialect.h"
#include "engine/ffmpegx.h"
#include "engine/mencoder_composer.h"
#include "engine/mencoder_dialect.h"
#include "engine/status_codes.h"
#include "util/time_format.h"

#include <QDateTime>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTimer>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace qb::cli {

namespace {

const char *const kConvertUsage
    = "usage: quillbox media convert SRC... --format NAME [-o OUT | --output-dir DIR] [job options]\n"
      "                              [--core ffmpeg|mencoder|PATH] [--dry-run]\n"
      "       quillbox media formats [--core ffmpeg|mencoder|PATH]\n";

int usage(QTextStream &err, const QString &problem)
{
    err << "quillbox: " << problem << "\n" << kConvertUsage << "job options:\n" << JobOptionsUsage();
    return kUsage;
}

// Takes "--core PATH" out of arguments; the encoder on the PATH when none is named.
QString takeCore(QStringList &arguments)
{
    const qsizetype at = arguments.indexOf(u"--core"_s);
    if (at >= 0 && at + 1 < arguments.size()) {
        const QString core = arguments.at(at + 1);
        arguments.remove(at, 2);
        // A bare name is looked up on the PATH ("--core mencoder").
        if (!core.contains(u'/'))
            return QStandardPaths::findExecutable(core);
        return QFileInfo(core).absoluteFilePath();
    }
    return QStandardPaths::findExecutable(u"ffmpeg"_s);
}

QString clock(double seconds)
{
    return util::FormatMSecs(std::max(0.0, seconds) * 1000, 99);
}

// The job's progress: one line rewritten in place with a bar on a terminal, a line per tenth of
// the way otherwise.
class ProgressLine
{
public:
    ProgressLine(QTextStream &out, bool terminal)
        : m_out(out)
        , m_terminal(terminal)
    { }
    ~ProgressLine() { end(); }

    void show(int value, int max, int fps, const QString &left)
    {
        if (max <= 0)
            return;
        const double share = std::clamp(double(value) / max, 0.0, 1.0);
        const QString text = u"%1 / %2  %3 fps  left/total %4"_s.arg(clock(value), clock(max))
                                 .arg(fps)
                                 .arg(left.isEmpty() ? u"--"_s : left);
        if (m_terminal) {
            constexpr int kWidth = 30;
            const int filled = int(share * kWidth);
            m_out << "\r[" << QString(filled, u'#') << QString(kWidth - filled, u'.') << "] " << text
                  << "\x1b[K";
            m_open = true;
        } else {
            const int tenth = int(share * 10);
            if (tenth <= m_lastTenth)
                return;
            m_lastTenth = tenth;
            m_out << text << "\n";
        }
        m_out.flush();
    }
    void end()
    {
        if (m_open) {
            m_out << "\n";
            m_out.flush();
            m_open = false;
        }
        m_lastTenth = -1;
    }

private:
    QTextStream &m_out;
    bool m_terminal;
    bool m_open = false;
    int m_lastTenth = -1;
};

struct Outcome
{
    int code = kFailed;
    int signal = 0;
};

// Runs the job that engine holds to its end; a signal cancels it.
Outcome runJob(engine::FFmpegX &engine, const QString &source, QTextStream &out, QTextStream &err)
{
    Outcome outcome;
    const bool terminal = isatty(STDERR_FILENO) != 0;
    ProgressLine progress(err, terminal);
    QEventLoop loop;
    InterruptWatch interrupts;
    bool cancelling = false;
    if (interrupts.notifier()) {
        QObject::connect(interrupts.notifier(), &QSocketNotifier::activated, &loop, [&] {
            const int signal = interrupts.take();
            if (signal == 0 || cancelling)
                return;
            cancelling = true;
            outcome.signal = signal;
            if (engine.Processing())
                engine.CancelProcess();
        });
    }
    const QDateTime started = QDateTime::currentDateTime().addSecs(-1);
    QObject::connect(&engine, &engine::FFmpegX::ProgressChange, &loop,
        [&](int value, int max, int fps, const QString &left, const QString &, bool last) {
            if (!last)
                progress.show(value, max, fps, left);
        });
    QObject::connect(&engine, &engine::FFmpegX::StatusChange, &loop, [&](int code, const QString &text) {
        switch (code) {
        case engine::kComplete:
            progress.end();
            out << text << "\n";
            outcome.code = kOk;
            break;
        case engine::kError:
        case engine::kFatalToolText: {
            progress.end();
            err << "quillbox: " << source << ": " << text << "\n";
            // What the tool left of a failed output is no file anyone wants.
            const QFileInfo left(engine.FileOutput.OutputFileName);
            if (left.isFile() && left.size() < 1024 && left.lastModified() >= started)
                QFile::remove(left.absoluteFilePath());
            break;
        }
        case engine::kCanceled:
        case engine::kCancelFailed:
            progress.end();
            err << "quillbox: " << source << ": " << text << "\n";
            break;
        case engine::kInfoString:
            if (text == u"Pass 1 OK"_s)
                progress.end();
            break;
        default:
            break;
        }
    });
    engine.StartProcess();
    while (engine.IsBusy() || engine.Processing()) {
        // The job ends on the event loop; a short wait keeps an idle loop from spinning.
        QTimer::singleShot(50, &loop, &QEventLoop::quit);
        loop.exec();
    }
    progress.end();
    if (outcome.signal != 0)
        outcome.code = 128 + outcome.signal;
    return outcome;
}

} // namespace

int RunConvertCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QStringList rest = arguments;
    const QString core = takeCore(rest);
    bool dryRun = false;
    QString output;
    {
        QStringList kept;
        for (qsizetype i = 0; i < rest.size(); ++i) {
            if (rest.at(i) == u"--dry-run"_s) {
                dryRun = true;
            } else if (rest.at(i) == u"-o"_s) {
                if (i + 1 >= rest.size())
                    return usage(err, u"-o needs a file name"_s);
                output = rest.at(++i);
            } else {
                kept << rest.at(i);
            }
        }
        rest = kept;
    }
    if (core.isEmpty() || !QFileInfo(core).isFile()) {
        err << "quillbox: conversions run ffmpeg; install it or name one with --core\n";
        return kFailed;
    }

    // Options apply to one engine per source; they are checked once before any work.
    engine::FFmpegX probe;
    const JobOptions checked = ApplyJobOptions(rest, probe);
    if (!checked.problem.isEmpty())
        return usage(err, checked.problem);
    QStringList sources;
    for (const QString &argument : checked.rest) {
        if (argument.startsWith(u"--"_s))
            return usage(err, u"unknown option: "_s + argument);
        sources << argument;
    }
    if (sources.isEmpty())
        return usage(err, u"convert needs a source file"_s);
    if (!rest.contains(u"--format"_s))
        return usage(err, u"convert needs --format NAME (see quillbox media formats)"_s);
    if (!output.isEmpty() && sources.size() > 1)
        return usage(err, u"-o names one output; give --output-dir for several sources"_s);
    for (const QString &source : sources) {
        if (!QFileInfo(source).isFile()) {
            err << "quillbox: " << source << ": no such file\n";
            return kFailed;
        }
    }

    int result = kOk;
    for (const QString &source : sources) {
        engine::FFmpegX engine;
        engine.setCore(core);
        if (engine.CoreState.CoreStatus != 1 && engine.CoreState.CoreStatus != 2) {
            err << "quillbox: " << core << " is neither ffmpeg nor mencoder; name the encoder with --core\n";
            return kFailed;
        }
        ApplyJobOptions(rest, engine);
        if (!output.isEmpty()) {
            const QFileInfo target(output);
            if (!target.absoluteDir().exists()) {
                err << "quillbox: " << output << ": the folder " << target.absolutePath()
                    << " does not exist\n";
                return kFailed;
            }
            // -o names the file exactly; an existing one is replaced, as the encoder replaces it.
            engine.FileOutput.ForceOutputFileName = target.absoluteFilePath();
            engine.FileOutput.Overwrite = true;
        }
        engine.setFileName(QFileInfo(source).absoluteFilePath());
        if (dryRun) {
            const QList<int> passes = engine.Job.Twopass ? QList<int> {1, 2} : QList<int> {0};
            for (int pass : passes) {
                const QString command = engine.ComposeCommand(pass, true);
                if (command.isEmpty()) {
                    err << "quillbox: " << source << ": " << engine.Refusal() << "\n";
                    result = kFailed;
                    break;
                }
                out << command << "\n";
            }
            continue;
        }
        const Outcome outcome = runJob(engine, source, out, err);
        if (outcome.signal != 0)
            return outcome.code;
        if (outcome.code != kOk)
            result = outcome.code;
    }
    return result;
}

int RunFormatsCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QStringList rest = arguments;
    const QString core = takeCore(rest);
    if (!rest.isEmpty())
        return usage(err, u"formats takes only --core PATH"_s);
    engine::FFmpegX engine;
    if (!core.isEmpty())
        engine.setCore(core);
    const engine::CoreFamily &tool = engine.CoreState;
    const bool mencoder = tool.CoreStatus == 2;
    if (tool.CoreStatus == 1 || mencoder)
        out << "formats of " << core << " (" << tool.CoreName << ' ' << tool.CoreVersion << ")\n";
    else
        err << "quillbox: no ffmpeg found; what each format needs is not checked\n";
    const engine::ToolGeneration generation = mencoder ? engine::MEncoderGenerationOf(tool.CoreVersion)
                                                       : engine::FFmpegGenerationOf(tool.CoreVersion);
    const bool today = generation == engine::ToolGeneration::Today && tool.CoreStatus != 0;
    engine::JobSettings job;
    job.FileName = u"source.mp4"_s;
    for (const QString &name : mencoder ? engine::MEncoderFormatNames() : engine::FormatNames()) {
        job.FileOutput.ForceFormat = name;
        QString extension, missing;
        bool fromSource = false;
        if (mencoder) {
            const engine::MEncoderRow &row = engine::MEncoderRowOf(name, generation);
            extension = engine::MEncoderOutputExtension(job, generation);
            fromSource = QString::fromUtf16(row.extension) == u"{src}"_s;
            missing = today && row.lacking ? QString::fromUtf16(row.lacking) : QString();
        } else {
            const engine::FormatRow &row = engine::FormatRowOf(name, generation);
            extension = engine::FFmpegOutputExtension(job, generation);
            fromSource = QString::fromUtf16(row.extension) == u"{src}"_s;
            missing = today ? engine::MissingCapability(row, name, tool) : QString();
        }
        const QString shown = fromSource ? u"(source's)"_s
            : extension.isEmpty()        ? u"(none)"_s
                                         : u"."_s + extension;
        out << "  " << name.leftJustified(16) << ' ' << shown.leftJustified(12) << ' '
            << (missing.isEmpty() ? u"yes"_s : u"no: "_s + missing) << "\n";
    }
    return kOk;
}

} // namespace qb::cli
