// quillbox cab create: the paths go through the workbench's add, the build through its directive
// file, our cabinet maker and the job engine, exactly as in the window; only the surfaces differ.
#include "cli/cab_create_command.h"
#include "cli/exit_status.h"
#include "cli/interrupt_watch.h"

#include "engine/status_codes.h"
#include "util/process_priority.h"
#include "workbench/app_context.h"
#include "workbench/directive_text.h"
#include "workbench/entry_procedure.h"
#include "workbench/general_procedures.h"
#include "workbench/workbench.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qb::cli {

namespace {

using namespace Qt::StringLiterals;

constexpr int kBarWidth = 30;

const char *const kCreateUsage = "usage: quillbox cab create CABINET PATH... [--compression none|mszip|lzx]"
                                 " [--memory 15..21] [--level 1..9]\n";

QString consoleText(const QString &text)
{
    return QString(text).replace(u"\r\n"_s, u"\n"_s).trimmed();
}

// Messages go to the error stream; questions are answered No, choosers are cancelled.
class ConsoleDialogs : public workbench::UserDialogs
{
public:
    explicit ConsoleDialogs(QTextStream &err)
        : m_err(err)
    { }
    int MsgBox(const QString &Prompt, int Buttons) override
    {
        if (Buttons == workbench::kYesNo)
            return workbench::kAnswerNo;
        m_err << "quillbox: " << consoleText(Prompt) << "\n";
        m_err.flush();
        ++messages;
        return workbench::kAnswerOk;
    }
    workbench::ChosenFiles GetOpenFiles(const QString &, const QString &, bool) override { return {}; }
    QString GetSaveFile(const QString &, const QString &) override { return {}; }
    QString SelectFolder(const QString &) override { return {}; }
    void OpenWithSystem(const QString &) override { }

    int messages = 0;

private:
    QTextStream &m_err;
};

// The status strip as terminal output: one line rewritten in place with a bar, or a line per
// change when the output is a file or a pipe.
class ConsoleStrip : public workbench::StripSurface
{
public:
    ConsoleStrip(QTextStream &out, bool terminal)
        : m_out(out)
        , m_terminal(terminal)
    { }
    ~ConsoleStrip() override { endLine(); }
    QString Caption() const override { return m_caption; }
    void setCaption(const QString &text) override
    {
        m_caption = text;
        if (m_refresh)
            show();
    }
    double value() const override { return m_value; }
    void setvalue(double position) override { m_value = position; }
    double Max() const override { return m_max; }
    void setMax(double end) override { m_max = end; }
    bool Refresh() const override { return m_refresh; }
    void setRefresh(bool on) override
    {
        m_refresh = on;
        if (on)
            show();
    }
    void endLine()
    {
        if (m_terminal && m_open) {
            m_out << "\n";
            m_out.flush();
            m_open = false;
        }
    }

private:
    void show()
    {
        const QString text = m_caption.trimmed();
        if (text.isEmpty() || text == m_shown)
            return;
        m_shown = text;
        if (!m_terminal) {
            m_out << text << "\n";
        } else {
            QString bar;
            if (m_max > 0 && m_value > 0) {
                const int filled = int(std::min(1.0, m_value / m_max) * kBarWidth);
                bar = u'[' + QString(filled, u'#') + QString(kBarWidth - filled, u'.') + u"] "_s;
            }
            m_out << "\r" << bar << text << "\x1b[K";
            m_open = true;
        }
        m_out.flush();
    }

    QTextStream &m_out;
    bool m_terminal;
    QString m_caption;
    QString m_shown;
    double m_value = 0;
    double m_max = 100;
    bool m_refresh = true;
    bool m_open = false;
};

class NoMenus : public workbench::MenuSurface
{
public:
    void setMenuEnabled(workbench::Menu, bool) override { }
    bool menuEnabled(workbench::Menu) const override { return true; }
};

struct CreateOptions
{
    QString cabinet;
    QStringList paths;
    QString compression = u"lzx"_s;
    int memory = 21;
    int level = 0; // the maker's own default
    bool memoryGiven = false;
    bool levelGiven = false;
};

// "" when the arguments make a request, else what is wrong with them.
QString parseOptions(const QStringList &arguments, CreateOptions &options)
{
    bool optionsEnded = false;
    QStringList positional;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &a = arguments[i];
        if (optionsEnded || !a.startsWith(u"--"_s)) {
            positional.append(a);
            continue;
        }
        if (a == u"--"_s) {
            optionsEnded = true;
            continue;
        }
        if (a != u"--compression"_s && a != u"--memory"_s && a != u"--level"_s)
            return u"unknown option: "_s + a;
        if (i + 1 >= arguments.size())
            return a + u" needs a value"_s;
        const QString value = arguments[++i];
        bool ok = false;
        if (a == u"--compression"_s) {
            options.compression = value.toLower();
            if (options.compression != u"none"_s && options.compression != u"mszip"_s
                && options.compression != u"lzx"_s)
                return u"--compression is none, mszip or lzx, not "_s + value;
        } else if (a == u"--memory"_s) {
            options.memory = value.toInt(&ok);
            if (!ok || options.memory < 15 || options.memory > 21)
                return u"--memory is a window size from 15 to 21, not "_s + value;
            options.memoryGiven = true;
        } else if (a == u"--level"_s) {
            options.level = value.toInt(&ok);
            if (!ok || options.level < 1 || options.level > 9)
                return u"--level is from 1 (fast) to 9 (best), not "_s + value;
            options.levelGiven = true;
        }
    }
    if (options.compression != u"lzx"_s && (options.memoryGiven || options.levelGiven))
        return u"--memory and --level go with --compression lzx"_s;
    if (positional.size() < 2)
        return u"cab create needs a cabinet and at least one file or folder"_s;
    options.cabinet = positional.takeFirst();
    options.paths = positional;
    return {};
}

QStringList compressionLines(const CreateOptions &options)
{
    if (options.compression == u"none"_s)
        return workbench::CompressionLines(u"0"_s, {});
    if (options.compression == u"mszip"_s)
        return workbench::CompressionLines(u"1"_s, {});
    QStringList lines = workbench::CompressionLines(u"2"_s, QString::number(options.memory - 15));
    if (options.levelGiven)
        lines.append(u".Set LZXLevel="_s + QString::number(options.level));
    return lines;
}

// What a file is now, to tell a cabinet this build wrote from one that was there before.
struct FileIdentity
{
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    timespec modified {};
    bool operator==(const FileIdentity &o) const
    {
        return exists == o.exists && device == o.device && inode == o.inode
            && modified.tv_sec == o.modified.tv_sec && modified.tv_nsec == o.modified.tv_nsec;
    }
};

FileIdentity identityOf(const QString &path)
{
    struct stat st;
    if (::stat(QFile::encodeName(path).constData(), &st) != 0 || !S_ISREG(st.st_mode))
        return {};
    return {true, st.st_dev, st.st_ino, st.st_mtim};
}

} // namespace

int RunCabCreate(const QStringList &arguments, QTextStream &out, QTextStream &err, bool terminal)
{
    CreateOptions options;
    if (const QString problem = parseOptions(arguments, options); !problem.isEmpty()) {
        err << "quillbox: " << problem << "\n" << kCreateUsage;
        return kUsage;
    }
    const QDir here = QDir::current();
    const QString cabinet = here.absoluteFilePath(options.cabinet);
    if (QFileInfo(cabinet).isDir()) {
        err << "quillbox: " << options.cabinet << " is a folder; give the cabinet's file name\n";
        return kFailed;
    }
    if (!QFileInfo(QFileInfo(cabinet).absolutePath()).isDir()) {
        err << "quillbox: the folder of " << options.cabinet << " does not exist\n";
        return kFailed;
    }
    QStringList paths;
    for (const QString &given : std::as_const(options.paths)) {
        const QString path = here.absoluteFilePath(given);
        if (!QFileInfo::exists(path)) {
            err << "quillbox: no such file or folder: " << given << "\n";
            return kFailed;
        }
        paths.append(path);
    }

    ConsoleDialogs dialogs(err);
    // A maker already chosen by the host stays; otherwise it is looked up as the window does.
    if (workbench::gMakeCabPath.isEmpty() && !workbench::PrepareApplication(dialogs))
        return kFailed;

    workbench::RowStore rows;
    ConsoleStrip strip(out, terminal);
    NoMenus menus;
    workbench::Workbench bench(rows, strip, menus, dialogs);
    // A command runs the maker at normal priority, not at the engine's idle default, which a busy
    // machine would starve for minutes.
    bench.FFmpegX1().setpriority(util::kPriorityNormal);
    for (const QString &path : std::as_const(paths)) {
        // As a request from the desktop: a folder's files are named relative to the folder.
        const bool folder = QFileInfo(path).isDir();
        const QString item = folder ? workbench::AddBackslash(path) : path;
        bench.mBasePath = workbench::AddBackslash(workbench::GetPathPart(item, u"/"_s, 0));
        bench.DropFile({}, item);
    }
    const bool refused = dialogs.messages > 0;
    if (rows.Count() == 0) {
        err << "quillbox: nothing to pack\n";
        return kFailed;
    }

    bench.mCabinetPath = cabinet;
    bench.setCompressionLines(compressionLines(options));
    const FileIdentity before = identityOf(cabinet);
    QStringList toolLines;
    QObject::connect(&bench.FFmpegX1(), &engine::FFmpegX::PipeChange,
        [&toolLines](const QString &text) { toolLines.append(text); });

    InterruptWatch interrupts;
    int interruptedBy = 0;
    QEventLoop loop;
    QObject::connect(&bench.FFmpegX1(), &engine::FFmpegX::StatusChange, &loop, [&loop](int status) {
        if (status == engine::kComplete)
            loop.quit();
    });
    if (interrupts.notifier()) {
        QObject::connect(interrupts.notifier(), &QSocketNotifier::activated, &loop, [&] {
            const int signal = interrupts.take();
            if (signal != 0 && interruptedBy == 0) {
                interruptedBy = signal;
                bench.mnuCancel();
            }
        });
    }
    const int messagesBefore = dialogs.messages;
    bench.BuildCabinet();
    if (bench.FFmpegX1().Processing())
        loop.exec();
    strip.endLine();
    // The window leaves these to its timer; a command ends now.
    bench.CleanSetupFiles();
    bench.DeleteTempFiles();

    if (interruptedBy != 0) {
        err << "quillbox: interrupted; no cabinet was written\n";
        return 128 + interruptedBy;
    }
    const FileIdentity after = identityOf(cabinet);
    if (!after.exists || after == before) {
        // The maker's own words say why; the engine only knows that it ended.
        if (dialogs.messages == messagesBefore)
            err << "quillbox: the cabinet was not written: " << options.cabinet << "\n";
        const QString told = consoleText(toolLines.join(QString()));
        for (const QString &line : told.split(u'\n', Qt::SkipEmptyParts)) {
            if (line.contains(u"error"_s, Qt::CaseInsensitive))
                err << "makecab: " << line.trimmed() << "\n";
        }
        return kFailed;
    }
    return refused ? kFailed : kOk;
}

} // namespace qb::cli
