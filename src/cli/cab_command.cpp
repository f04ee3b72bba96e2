// quillbox cab: each action is one or more clsCAB services; every RaiseError becomes a message.
#include "cli/cab_command.h"

#include "cabinet/cab_reader.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

namespace qb::cli {

namespace {

constexpr int kOk = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;

struct CabRun
{
    QTextStream &out;
    QTextStream &err;
    cabinet::clsCAB reader {};
    int errors = 0;
};

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
    QObject::connect(&run.reader, &cabinet::clsCAB::FileFound,
        [&run](const QString &name, const QDateTime &dateTime, qint64 size, const QString &path) {
            run.out << size << "  " << dateTime.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) << "  "
                    << path << name << "\n";
        });
    int found = 0;
    QObject::connect(&run.reader, &cabinet::clsCAB::FileFound, [&found] { ++found; });
    const bool named = forEachName(names, [&](const QString &name) {
        const int before = found;
        run.reader.GetInfo(name);
        if (!name.isEmpty() && found == before && run.errors == 0) {
            run.err << "quillbox: not in the cabinet: " << name << "\n";
            return false;
        }
        return true;
    });
    return named && run.errors == 0 ? kOk : kFailed;
}

int xml(CabRun &run, const QStringList &names)
{
    if (names.size() > 1)
        return usage(run, QStringLiteral("cab xml takes at most one NAME"));
    run.out << run.reader.GetXML(names.value(0)) << "\n";
    return run.errors == 0 ? kOk : kFailed;
}

// Unpacks into folder; with check, also confirms that every file reported written is there.
int extract(CabRun &run, const QStringList &names, const QString &folder, bool check)
{
    int matched = 0;
    QObject::connect(
        &run.reader, &cabinet::clsCAB::BeforeExtract, &run.reader,
        [&matched](const QString &, bool &) { ++matched; }, Qt::DirectConnection);
    QStringList written;
    QObject::connect(&run.reader, &cabinet::clsCAB::AfterExtract,
        [&written](const QString &target) { written << target; });
    const bool named = forEachName(names, [&](const QString &name) {
        const int before = matched;
        run.reader.Extract(name, folder, QString());
        if (!name.isEmpty() && matched == before && run.errors == 0) {
            run.err << "quillbox: not in the cabinet: " << name << "\n";
            return false;
        }
        return true;
    });
    int missing = 0;
    for (const QString &target : written) {
        if (!QFileInfo(target).isFile()) {
            run.err << "quillbox: not written: " << target << "\n";
            ++missing;
        }
    }
    if (check && run.errors == 0 && missing == 0 && named)
        run.out << written.size() << " files tested, no errors\n";
    else if (!check)
        run.out << written.size() << " files extracted\n";
    return named && run.errors == 0 && missing == 0 && matched == written.size() ? kOk : kFailed;
}

} // namespace

int RunCabCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
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
    QObject::connect(&run.reader, &cabinet::clsCAB::RaiseError,
        [&run](long number, const QString &, const QString &description) {
            ++run.errors;
            run.err << "quillbox: " << description << " (" << number << ")\n";
        });
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
