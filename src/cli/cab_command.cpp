// quillbox cab: each action is one or more clsCAB services; every RaiseError becomes a message.
#include "cli/cab_command.h"
#include "cli/exit_status.h"

#include "cabinet/cab_errors.h"
#include "cabinet/cab_reader.h"
#include "cli/cab_create_command.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>

#include <unistd.h>

#include <algorithm>

namespace qb::cli {

namespace {

struct CabRun
{
    QTextStream &out;
    QTextStream &err;
    cabinet::clsCAB reader {};
    int errors = 0;
    QString cabName {}; // as given, to name it in every message
    // The file being extracted, "/" between folders; empty outside Extract.
    QString member {};
    int memberErrors = 0;
    QSet<QString> said {}; // a member's failure is said once, however often it is raised

    void say(const QString &subject, const QString &text)
    {
        QString line = QStringLiteral("quillbox: ") + cabName + QStringLiteral(": ");
        if (!subject.isEmpty())
            line += subject + QStringLiteral(": ");
        line += text;
        if (subject.isEmpty() || !said.contains(line))
            err << line << "\n";
        if (!subject.isEmpty())
            said.insert(line);
    }

    void raised(long number, const QString &description)
    {
        // libmspack's notes are worth showing but fail nothing by themselves.
        if (number == cabinet::kErrLibraryMessage) {
            say(member, description);
            return;
        }
        say(member, description + QStringLiteral(" (") + QString::number(number) + u')');
        if (member.isEmpty())
            ++errors;
        else
            ++memberErrors;
    }
};

// Rows in columns two spaces apart, each as wide as its widest cell; right-aligned where asked.
// The last column, the only one that may hold wide characters, is not padded.
void printColumns(QTextStream &out, const QList<QStringList> &rows, const QList<bool> &rightAligned)
{
    QList<int> widths(rightAligned.size(), 0);
    for (const QStringList &row : rows) {
        for (qsizetype i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], int(row[i].size()));
    }
    for (const QStringList &row : rows) {
        QString line;
        for (qsizetype i = 0; i < row.size(); ++i) {
            const QString padding(widths[i] - int(row[i].size()), u' ');
            if (i > 0)
                line += QStringLiteral("  ");
            if (rightAligned[i])
                line += padding + row[i];
            else
                line += row[i] + (i + 1 < row.size() ? padding : QString());
        }
        out << line << "\n";
    }
}

int usage(CabRun &run, const QString &problem)
{
    run.err << "quillbox: " << problem << "\n"
            << "usage: quillbox cab list|extract|test|xml CABINET [-d DIR] [NAME...]\n";
    return kUsage;
}

// Runs one service per NAME (or once with "" when there are none); false when a NAME matched nothing.
template<typename Service>
bool forEachName(const QStringList &names, Service &&service)
{
    if (names.isEmpty())
        return service(QString());
    bool all = true;
    for (const QString &name : names)
        all = service(name) && all;
    return all;
}

int list(CabRun &run, const QStringList &names)
{
    // Size, stored date and time (blank when impossible), name; printed once all widths are known.
    QList<QStringList> rows;
    QObject::connect(&run.reader, &cabinet::clsCAB::FileFound,
        [&rows](const QString &name, const QDateTime &dateTime, qint64 size, const QString &path) {
            rows << QStringList {QString::number(size),
                dateTime.isValid() ? dateTime.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) : QString(),
                path + name};
        });
    const bool named = forEachName(names, [&](const QString &name) {
        const qsizetype before = rows.size();
        run.reader.GetInfo(name);
        if (!name.isEmpty() && rows.size() == before && run.errors == 0) {
            run.say(QString(), QStringLiteral("not in the cabinet: ") + name);
            return false;
        }
        return true;
    });
    printColumns(run.out, rows, {true, false, false});
    return named && run.errors == 0 ? kOk : kFailed;
}

int xml(CabRun &run, const QStringList &names)
{
    if (names.size() > 1)
        return usage(run, QStringLiteral("cab xml takes at most one NAME"));
    run.out << run.reader.GetXML(names.value(0)) << "\n";
    return run.errors == 0 ? kOk : kFailed;
}

// Why a member's folder below root could not be made; clsCAB skips such a file without a word.
QString folderProblem(const QString &root, const QString &member)
{
    const qsizetype cut = member.lastIndexOf(u'/');
    const QStringList parts = member.left(std::max<qsizetype>(cut, 0)).split(u'/', Qt::SkipEmptyParts);
    QString folder = QDir::cleanPath(root);
    for (const QString &part : parts) {
        folder += u'/' + part;
        const QFileInfo info(folder);
        if (info.exists() && !info.isDir())
            return QStringLiteral("cannot make the folder ") + folder
                + QStringLiteral(": a file is in the way");
    }
    return QStringLiteral("cannot make the folder ") + folder;
}

// Unpacks into folder; with check, also confirms that every file reported written is there.
// Each member that fails is named with why, once; the summary counts distinct files.
int extract(CabRun &run, const QStringList &names, const QString &folder, bool check)
{
    int matched = 0;
    QSet<QString> tried;
    QSet<QString> failed;
    bool done = false;
    // Closes the member BeforeExtract opened: no AfterExtract means it failed.
    const auto settle = [&] {
        if (run.member.isEmpty())
            return;
        if (!done) {
            failed.insert(run.member);
            if (run.memberErrors == 0)
                run.say(run.member, folderProblem(folder, run.member));
        }
        run.member.clear();
    };
    QObject::connect(
        &run.reader, &cabinet::clsCAB::BeforeExtract, &run.reader,
        [&](const QString &name, bool &) {
            settle();
            ++matched;
            run.member = QString(name).replace(u'\\', u'/');
            tried.insert(run.member);
            run.memberErrors = 0;
            done = false;
        },
        Qt::DirectConnection);
    QSet<QString> written;
    QObject::connect(&run.reader, &cabinet::clsCAB::AfterExtract, [&](const QString &target) {
        written.insert(target);
        done = true;
    });
    const bool named = forEachName(names, [&](const QString &name) {
        const int before = matched;
        run.reader.Extract(name, folder, QString());
        settle();
        if (!name.isEmpty() && matched == before && run.errors == 0) {
            run.say(QString(), QStringLiteral("not in the cabinet: ") + name);
            return false;
        }
        return true;
    });
    qsizetype extracted = 0;
    for (const QString &target : std::as_const(written)) {
        if (QFileInfo(target).isFile()) {
            ++extracted;
        } else {
            run.say(target, QStringLiteral("not written"));
            failed.insert(target);
        }
    }
    if (check && run.errors == 0 && failed.isEmpty())
        run.out << tried.size() << " files tested, no errors\n";
    else if (check)
        run.out << tried.size() << " files tested, " << failed.size() << " failed\n";
    else if (failed.isEmpty())
        run.out << extracted << " files extracted\n";
    else
        run.out << extracted << " files extracted, " << failed.size() << " failed\n";
    return named && run.errors == 0 && failed.isEmpty() ? kOk : kFailed;
}

} // namespace

int RunCabCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    if (arguments.value(0) == QLatin1String("create"))
        return RunCabCreate(arguments.mid(1), out, err, ::isatty(STDOUT_FILENO) == 1);
    CabRun run {out, err};
    if (arguments.size() < 2)
        return usage(run, QStringLiteral("cab needs an action and a cabinet"));
    const QString &action = arguments[0];
    QString folder;
    bool folderGiven = false;
    QStringList names;
    for (qsizetype i = 2; i < arguments.size(); ++i) {
        if (arguments[i] == QLatin1String("-d")) {
            if (i + 1 >= arguments.size() || folderGiven)
                return usage(run, QStringLiteral("-d needs one folder"));
            folder = arguments[++i];
            folderGiven = true;
        } else {
            names << arguments[i];
        }
    }
    if (folderGiven && action != QLatin1String("extract"))
        return usage(run, QStringLiteral("-d goes with extract only"));

    run.reader.setCabName(arguments[1]);
    run.cabName = arguments[1];
    QObject::connect(&run.reader, &cabinet::clsCAB::RaiseError,
        [&run](
            long number, const QString &, const QString &description) { run.raised(number, description); });
    if (action == QLatin1String("list"))
        return list(run, names);
    if (action == QLatin1String("xml"))
        return xml(run, names);
    if (action == QLatin1String("extract"))
        return extract(run, names, folderGiven ? folder : QDir::currentPath(), false);
    if (action == QLatin1String("test")) {
        QTemporaryDir scratch;
        if (!scratch.isValid()) {
            err << "quillbox: cannot create a temporary folder\n";
            return kFailed;
        }
        return extract(run, names, scratch.path(), true);
    }
    return usage(run, QStringLiteral("unknown cab action: ") + action);
}

} // namespace qb::cli
