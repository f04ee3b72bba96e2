// The hostile folder and the three extractors that judge a cabinet of it.
#include "support/hostile_names.h"

#include "support/tool_run.h"

#include <QDir>
#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace qb::test {

namespace {

bool writeRaw(const QByteArray &path, const QByteArray &bytes)
{
    const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return false;
    const bool ok = ::write(fd, bytes.constData(), size_t(bytes.size())) == bytes.size();
    return ::close(fd) == 0 && ok;
}

void walk(const std::string &root, const std::string &relative, QMap<QByteArray, QByteArray> &files)
{
    DIR *dir = ::opendir((root + relative).c_str());
    if (!dir)
        return;
    while (const dirent *entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        const std::string child = relative.empty() ? name : relative + "/" + name;
        struct stat st;
        if (::lstat((root + child).c_str(), &st) != 0)
            continue;
        if (S_ISDIR(st.st_mode)) {
            walk(root, child, files);
            continue;
        }
        QFile file(QFile::decodeName((root + child).c_str()));
        QByteArray bytes;
        if (file.open(QIODevice::ReadOnly))
            bytes = file.readAll();
        files.insert(QByteArray::fromStdString(child), bytes);
    }
    ::closedir(dir);
}

} // namespace

HostileFolder MakeHostileFolder(TempTree &tree)
{
    // Deep enough that the longest path below is about 4,000 bytes, within the system's 4,096.
    QString deep = u"long"_s;
    const int rootLength = int(QFile::encodeName(tree.root()).size());
    while (rootLength + deep.size() + 250 < 3700)
        deep += u'/' + QString(240, u'd');
    HostileFolder result;
    result.folder = tree.makeDir(deep + u"/hostile"_s);
    const QString longName = QString(85, u'长'); // 255 bytes in UTF-8
    const QList<std::pair<QString, QByteArray>> files {
        {u"a.txt"_s, "plain a\n"},
        {u"a.txt "_s, "trailing blank, not a.txt\n"},
        {u" lead.txt"_s, "leading blank\n"},
        {u"b|c.txt"_s, "bar\n"},
        {u"tab\there.txt"_s, "tab\n"},
        {u"new\nline.txt"_s, "line feed\n"},
        {u"carriage\rreturn.txt"_s, "carriage return\n"},
        {u"say \"hi\".txt"_s, "quotes\n"},
        {u"100%% sure %PATH%.txt"_s, "percent\n"},
        {u"中文 名字.txt"_s, QByteArray("中文内容").repeated(40)},
        {longName, "255 bytes of name\n"},
        {u"empty"_s, QByteArray()},
        {u"sub dir |x/inner ;file.txt"_s, "nested\n"},
    };
    for (const auto &[name, bytes] : files) {
        tree.writeFile(deep + u"/hostile/"_s + name, bytes);
        result.storable.insert(name.toUtf8(), bytes);
    }
    const QString backslash = result.folder + u"/back\\slash.txt"_s;
    tree.writeFile(deep + u"/hostile/back\\slash.txt"_s, "refused\n");
    result.refused.append(backslash);
    const QByteArray invalid = QFile::encodeName(result.folder) + "/bad\xff\xfe.txt";
    if (writeRaw(invalid, "refused too\n"))
        result.refused.append(QFile::decodeName(invalid));
    return result;
}

QMap<QByteArray, QByteArray> RawFilesBelow(const QString &folder)
{
    QMap<QByteArray, QByteArray> files;
    walk(QFile::encodeName(folder).toStdString() + "/", std::string(), files);
    return files;
}

QMap<QString, QString> CompareExtractors(const QString &cabinet, const QString &scratch,
    const QMap<QByteArray, QByteArray> &expected, const QByteArray &ignoredName)
{
    QMap<QString, QString> verdicts;
    const QList<std::pair<QString, QStringList>> tools {
        {u"cabextract"_s, {u"-q"_s, u"-d"_s, u"%D"_s, cabinet}},
        {u"7zz"_s, {u"x"_s, u"-y"_s, u"-o%D"_s, cabinet}},
        {u"bsdtar"_s, {u"-xf"_s, cabinet, u"-C"_s, u"%D"_s}},
    };
    for (const auto &[tool, pattern] : tools) {
        const QString out = scratch + u'/' + tool;
        QDir().mkpath(out);
        QStringList args;
        for (const QString &arg : pattern)
            args.append(QString(arg).replace(u"%D"_s, out));
        const ToolResult run = runTool(tool, args);
        QString verdict;
        if (run.exitCode != 0)
            verdict = u"exit %1: %2"_s.arg(run.exitCode).arg(run.output);
        QMap<QByteArray, QByteArray> got = RawFilesBelow(out);
        got.remove(ignoredName);
        for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
            if (!got.contains(it.key()))
                verdict += u"\nmissing: "_s + QString::fromUtf8(it.key());
            else if (got.value(it.key()) != it.value())
                verdict += u"\ndiffers: "_s + QString::fromUtf8(it.key());
        }
        for (auto it = got.cbegin(); it != got.cend(); ++it) {
            if (!expected.contains(it.key()))
                verdict += u"\nunexpected: "_s + QString::fromUtf8(it.key());
        }
        verdicts.insert(tool, verdict);
    }
    return verdicts;
}

} // namespace qb::test
