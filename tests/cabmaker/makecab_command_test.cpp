// The makecab command line: one-file cabinets, options, progress lines, errors that leave nothing behind.
#include "cabmaker/makecab_command.h"

#include "sample_data.h"
#include "support/temp_tree.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <gtest/gtest.h>

using qb::cabmaker::CompressedFileName;
using qb::test::TempTree;
using namespace Qt::StringLiterals;

namespace {

using Result = qb::test::MakeCabRun;

Result makecab(const QStringList &args, const QString &folder)
{
    return qb::test::RunMakeCabIn(args, folder);
}

// What cabextract finds in a cabinet: "name" lines of its listing.
QStringList cabextractNames(const QString &cabinet)
{
    QProcess p;
    p.start(QStringLiteral("cabextract"), {QStringLiteral("-l"), cabinet});
    p.waitForFinished(60000);
    QStringList names;
    const QStringList lines = QString::fromUtf8(p.readAllStandardOutput()).split(u'\n');
    for (const QString &line : lines) {
        const qsizetype bar = line.lastIndexOf(QStringLiteral(" | "));
        const QString name = bar > 0 ? line.mid(bar + 3).trimmed() : QString();
        if (!name.isEmpty() && name != u"Name")
            names << name;
    }
    return names;
}

QByteArray extractOne(TempTree &tree, const QString &cabinet, const QString &name)
{
    const QString into = tree.makeDir(QStringLiteral("extract"));
    QProcess p;
    p.start(QStringLiteral("cabextract"), {QStringLiteral("-q"), QStringLiteral("-d"), into, cabinet});
    p.waitForFinished(60000);
    EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    return qb::test::readAll(into + u'/' + name);
}

QStringList folderNames(const QString &folder)
{
    QStringList names = QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    names.sort();
    return names;
}

TEST(MakeCabCommand, CompressedFileNameRule)
{
    EXPECT_EQ(CompressedFileName(QStringLiteral("setup.inf")), QStringLiteral("setup.in_"));
    EXPECT_EQ(CompressedFileName(QStringLiteral("a.b.c")), QStringLiteral("a.b._"));
    EXPECT_EQ(CompressedFileName(QStringLiteral("README")), QStringLiteral("README._"));
    EXPECT_EQ(CompressedFileName(QStringLiteral("x.")), QStringLiteral("x._"));
    EXPECT_EQ(CompressedFileName(QStringLiteral(".bashrc")), QStringLiteral(".bashrc._"));
    EXPECT_EQ(CompressedFileName(QStringLiteral("dir.d/file")), QStringLiteral("dir.d/file._"));
}

TEST(MakeCabCommand, OneFileCabinetBesideTheSource)
{
    TempTree tree;
    tree.writeFile(QStringLiteral("setup.inf"), "[Version]\r\nSignature=\"$Windows NT$\"\r\n");
    const Result r = makecab({QStringLiteral("setup.inf")}, tree.root());
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(
        cabextractNames(tree.path(QStringLiteral("setup.in_"))), QStringList {QStringLiteral("setup.inf")});
    EXPECT_EQ(extractOne(tree, tree.path(QStringLiteral("setup.in_")), QStringLiteral("setup.inf")),
        qb::test::readAll(tree.path(QStringLiteral("setup.inf"))));
    // A one-file cabinet leaves no report or information file.
    EXPECT_EQ(folderNames(tree.root()),
        (QStringList {QStringLiteral("extract"), QStringLiteral("setup.in_"), QStringLiteral("setup.inf")}));
}

TEST(MakeCabCommand, ProgressLinesAndSummary)
{
    TempTree tree;
    QString ddf = QStringLiteral(".Set CabinetNameTemplate=out.cab\n");
    for (int i = 0; i < 3; ++i)
        ddf += QStringLiteral("\"%1\" \"docs\\f%2.txt\"\n")
                   .arg(tree.writeFile(QStringLiteral("f%1").arg(i), QByteArray(1000 * (i + 1), 'a')))
                   .arg(i);
    ddf.prepend(QStringLiteral(".Set DiskDirectoryTemplate=\n"));
    tree.writeFile(QStringLiteral("p.ddf"), ddf.toUtf8());
    const Result r = makecab({QStringLiteral("/f"), QStringLiteral("p.ddf")}, tree.root());
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    const QRegularExpression progress(QStringLiteral("^ ?\\d{1,3}\\.\\d{2}% - (.*) \\((\\d+) of (\\d+)\\)$"));
    QStringList seen;
    for (const QString &line : r.out.split(u'\n')) {
        if (progress.match(line).hasMatch())
            ADD_FAILURE() << "a progress line ends with CR LF: " << line.toStdString();
        const auto m = progress.match(line.endsWith(u'\r') ? line.chopped(1) : line);
        if (m.hasMatch())
            seen << m.captured(1) + u'/' + m.captured(2) + u'/' + m.captured(3);
    }
    EXPECT_EQ(seen,
        (QStringList {QStringLiteral("docs\\f0.txt/1/3"), QStringLiteral("docs\\f1.txt/2/3"),
            QStringLiteral("docs\\f2.txt/3/3")}));
    EXPECT_TRUE(r.out.contains(QStringLiteral(" 16.67% - docs\\f0.txt (1 of 3)\r\n")));
    EXPECT_TRUE(r.out.contains(QStringLiteral("100.00% - docs\\f2.txt (3 of 3)\r\n")));
    EXPECT_TRUE(r.out.contains(QStringLiteral("Bytes before:   6000")));
    // Report and information files land in the current folder by default.
    EXPECT_TRUE(QFileInfo::exists(tree.path(QStringLiteral("setup.rpt"))));
    const QString inf = QString::fromUtf8(qb::test::readAll(tree.path(QStringLiteral("setup.inf"))));
    EXPECT_TRUE(inf.contains(QStringLiteral("1,docs\\f1.txt,2000,"))) << inf.toStdString();
}

struct FailureCase
{
    const char *name;
    QByteArray directive; // "%D" stands for the scratch folder
    const char *message; // a part of the one line on standard error
};

class MakeCabFailure : public ::testing::TestWithParam<FailureCase>
{
};

TEST_P(MakeCabFailure, ClearErrorAndNothingLeftBehind)
{
    TempTree tree;
    tree.writeFile(QStringLiteral("in/real.txt"), "data");
    tree.makeDir(QStringLiteral("out"));
    // An older cabinet under the target name must survive a failed run untouched.
    tree.writeFile(QStringLiteral("out/target.cab"), "old cabinet");
    QByteArray directive = GetParam().directive;
    directive.replace("%D", tree.root().toUtf8());
    tree.writeFile(QStringLiteral("run.ddf"), directive);
    const Result r = makecab({QStringLiteral("/F"), QStringLiteral("run.ddf")}, tree.root());
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.contains(QString::fromUtf8(GetParam().message))) << r.err.toStdString();
    EXPECT_TRUE(r.err.startsWith(QStringLiteral("makecab: error: "))) << r.err.toStdString();
    EXPECT_EQ(folderNames(tree.path(QStringLiteral("out"))), QStringList {QStringLiteral("target.cab")});
    EXPECT_EQ(qb::test::readAll(tree.path(QStringLiteral("out/target.cab"))), QByteArray("old cabinet"));
    EXPECT_FALSE(QFileInfo::exists(tree.path(QStringLiteral("setup.rpt"))));
}

const QByteArray kHead = ".Set CabinetNameTemplate=\"%D/out/target.cab\"\r\n.Set DiskDirectory1=\r\n";

INSTANTIATE_TEST_SUITE_P(Cases, MakeCabFailure,
    ::testing::Values(
        FailureCase {"MissingSource", kHead + "\"%D/in/missing.txt\"\r\n", "run.ddf(3): cannot find"},
        FailureCase {"EmptyFile", "", "the directive file is empty"},
        FailureCase {"ExplicitUnknown",
            ".Option EXPLICIT\r\n.Set Bogus=1\r\n" + kHead + "\"%D/in/real.txt\"\r\n",
            "run.ddf(2): unknown variable 'Bogus'"},
        FailureCase {"NoTargetFolder",
            ".Set CabinetNameTemplate=\"%D/nowhere/target.cab\"\r\n.Set "
            "DiskDirectory1=\r\n\"%D/in/real.txt\"\r\n",
            "does not exist"}),

    [](const auto &info) { return std::string(info.param.name); });

TEST(MakeCabCommand, BadCommandLines)
{
    TempTree tree;
    const QList<QStringList> cases {
        {},
        {QStringLiteral("-v")}, // an option, so no source is given
        {QStringLiteral("--"), QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")},
        {QStringLiteral("/F")},
        {QStringLiteral("/D"), QStringLiteral("novalue")},
        {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")},
        {QStringLiteral("/F"), QStringLiteral("x.ddf"), QStringLiteral("source.txt")},
    };
    for (const QStringList &args : cases) {
        const Result r = makecab(args, tree.root());
        EXPECT_EQ(r.status, 2) << args.join(u' ').toStdString();
        EXPECT_TRUE(r.err.startsWith(QStringLiteral("makecab: error: "))) << r.err.toStdString();
    }
    EXPECT_EQ(makecab({QStringLiteral("/?")}, tree.root()).status, 0);
    EXPECT_EQ(folderNames(tree.root()), QStringList());
}

TEST(MakeCabCommand, UnwritableReportIsOnlyAWarning)
{
    TempTree tree;
    tree.makeDir(QStringLiteral("setup.rpt")); // a folder where the report would go
    const QString source = tree.writeFile(QStringLiteral("a.txt"), "a");
    tree.writeFile(QStringLiteral("r.ddf"), QStringLiteral("\"%1\"\n").arg(source).toUtf8());
    const Result r = makecab({QStringLiteral("/F"), QStringLiteral("r.ddf")}, tree.root());
    EXPECT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains(QStringLiteral("makecab: warning: cannot write"))) << r.err.toStdString();
    // Without a disk folder named, the default "DISK1" is made.
    EXPECT_TRUE(QFileInfo::exists(tree.path(QStringLiteral("DISK1/1.cab"))));
}

// Only the tool's own options are options: any other argument starting with "/" or "-" is a path.
TEST(MakeCabCommand, AbsolutePathsAndTheEndOfOptions)
{
    TempTree tree;
    // A "%" in a name must survive the directive the command writes for one file.
    const QString source = tree.writeFile(u"in/50% off.txt"_qs, "absolute");
    tree.writeFile(u"-v"_qs, "dash");
    tree.makeDir(u"out"_qs);
    const QString elsewhere = tree.makeDir(u"cwd"_qs);

    Result r = makecab({source}, elsewhere);
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(extractOne(tree, tree.path(u"cwd/50% off.tx_"_qs), u"50% off.txt"_qs), QByteArray("absolute"));

    r = makecab({source, tree.path(u"out/x.cab"_qs)}, elsewhere);
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(extractOne(tree, tree.path(u"out/x.cab"_qs), u"50% off.txt"_qs), QByteArray("absolute"));

    r = makecab({u"/V0"_qs, u"--"_qs, u"-v"_qs, u"-V1.cab"_qs}, tree.root());
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.isEmpty()) << "/V0 before -- is still an option";
    EXPECT_EQ(extractOne(tree, tree.path(u"-V1.cab"_qs), u"-v"_qs), QByteArray("dash"));

    // A path that looks like no option is a path, even a missing one.
    r = makecab({u"/X"_qs}, tree.root());
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.contains(u"cannot find '/X'"_qs)) << r.err.toStdString();
}

struct OptionCase
{
    const char *spelling;
    char option; // which one, whatever the spelling
};

class MakeCabOption : public ::testing::TestWithParam<OptionCase>
{
};

TEST_P(MakeCabOption, EachSpellingActs)
{
    TempTree tree;
    const QString spelling = QString::fromLatin1(GetParam().spelling);
    tree.writeFile(u"src.txt"_qs, QByteArray(3000, 'q'));
    tree.makeDir(u"outdir"_qs);
    tree.writeFile(u"run.ddf"_qs,
        ".Set CabinetNameTemplate=ddf.cab\n.Set DiskDirectory1=\n.Set RptFileName=NUL\n"
        ".Set InfFileName=NUL\nsrc.txt\n");
    switch (GetParam().option) {
    case 'F': {
        const Result r = makecab({spelling, u"run.ddf"_qs}, tree.root());
        ASSERT_EQ(r.status, 0) << r.err.toStdString();
        EXPECT_EQ(extractOne(tree, tree.path(u"ddf.cab"_qs), u"src.txt"_qs), QByteArray(3000, 'q'));
        break;
    }
    case 'D': {
        const Result r
            = makecab({spelling, u"CompressionType=NONE"_qs, u"src.txt"_qs, u"x.cab"_qs}, tree.root());
        ASSERT_EQ(r.status, 0) << r.err.toStdString();
        EXPECT_GT(QFileInfo(tree.path(u"x.cab"_qs)).size(), 3000) << "stored, not compressed";
        break;
    }
    case 'L': {
        const Result r = makecab({spelling, u"outdir"_qs, u"src.txt"_qs, u"x.cab"_qs}, tree.root());
        ASSERT_EQ(r.status, 0) << r.err.toStdString();
        EXPECT_TRUE(QFileInfo::exists(tree.path(u"outdir/x.cab"_qs)));
        break;
    }
    case '0':
    case '1':
    case '2': {
        const Result r = makecab({spelling, u"src.txt"_qs, u"x.cab"_qs}, tree.root());
        ASSERT_EQ(r.status, 0) << r.err.toStdString();
        EXPECT_EQ(r.out.contains(u"100.00% - src.txt (1 of 1)"_qs), GetParam().option != '0')
            << r.out.toStdString();
        EXPECT_EQ(r.out.contains(u"folder 1: 1 files"_qs), GetParam().option == '2') << r.out.toStdString();
        break;
    }
    case '?': {
        const Result r = makecab({spelling}, tree.root());
        EXPECT_EQ(r.status, 0);
        EXPECT_TRUE(r.out.contains(u"usage: makecab"_qs)) << r.out.toStdString();
        break;
    }
    }
}

INSTANTIATE_TEST_SUITE_P(Spellings, MakeCabOption,
    ::testing::Values(OptionCase {"/F", 'F'}, OptionCase {"-F", 'F'}, OptionCase {"/f", 'F'},
        OptionCase {"-f", 'F'}, OptionCase {"/D", 'D'}, OptionCase {"-d", 'D'}, OptionCase {"/L", 'L'},
        OptionCase {"-l", 'L'}, OptionCase {"/V", '1'}, OptionCase {"-v", '1'}, OptionCase {"/V0", '0'},
        OptionCase {"-v0", '0'}, OptionCase {"/v2", '2'}, OptionCase {"-V2", '2'}, OptionCase {"/?", '?'},
        OptionCase {"-?", '?'}),
    [](const auto &info) {
        std::string name = info.param.spelling;
        for (char &c : name)
            c = c == '/' ? 'S' : c == '-' ? 'M' : c == '?' ? 'Q' : c;
        return name + "_" + std::to_string(info.index);
    });

} // namespace
