// Directive files in, build plans and error messages out.
#include "cabmaker/directive_interpreter.h"
#include "support/temp_tree.h"
#include "util/code_page.h"

#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Qt::StringLiterals;
using namespace qb::cabmaker;

namespace {

std::string utf8(const QString &text)
{
    return text.toStdString();
}

std::vector<std::string> utf8(const QStringList &list)
{
    std::vector<std::string> out;
    for (const QString &text : list)
        out.push_back(utf8(text));
    return out;
}

class DirectiveTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        interpreter.setCurrentFolder(tree.root());
        for (const char16_t *name : {u"a.txt", u"b.txt", u"c.txt", u"d.txt", u"e.txt", u"f.txt", u"g.txt"})
            tree.writeFile(QString::fromUtf16(name), "data");
        tree.makeDir(u"sub"_s);
    }

    bool run(const QString &text, const QString &file = u"t.ddf"_s)
    {
        return interpreter.run(text.toUtf8(), file);
    }

    std::vector<std::string> errors() const
    {
        QStringList list;
        for (const DirectiveError &error : interpreter.errors())
            list.append(error.toString());
        return utf8(list);
    }

    // One entry per folder: its names in the cabinet joined with "|".
    std::vector<std::string> folders() const
    {
        QStringList list;
        for (const PlannedFolder &folder : interpreter.plan().folders) {
            QStringList names;
            for (const PlannedFile &file : folder.files)
                names.append(file.nameInCabinet);
            list.append(names.join(u'|'));
        }
        return utf8(list);
    }

    qb::test::TempTree tree;
    DirectiveInterpreter interpreter;
};

// The workbench writes this form; the three cases vary only in compression.
struct WorkbenchCase
{
    const char16_t *compressionLines;
    FolderSettings expected;
};

class DirectiveWorkbenchForm : public DirectiveTest, public ::testing::WithParamInterface<WorkbenchCase>
{
};

TEST_P(DirectiveWorkbenchForm, MakesOneFolderOfBothFilesInOrder)
{
    const QString first = tree.writeFile(u"QuiA1B2.tmp"_s, "x");
    const QString second = tree.writeFile(u"docs/read me.txt"_s, "y");
    QStringList lines = {u".Option EXPLICIT"_s,
        u".Set CabinetNameTemplate=\"%1\""_s.arg(tree.path(u"out/新建压缩包.cab"_s)),
        u".Set DiskDirectoryTemplate=CDROM"_s, u".Set MaxCabinetSize=0"_s, u".Set MaxDiskSize=0"_s,
        u".Set UniqueFiles=OFF"_s, u".Set FolderFileCountThreshold=0"_s, u".Set Cabinet=on"_s,
        u".Set DiskDirectory1="_s, u"\"%1\" \"Quillbox Desk.txt\""_s.arg(first),
        u"\"%1\" \"docs\\read me.txt\""_s.arg(second)};
    lines.insert(3, QString::fromUtf16(GetParam().compressionLines));
    // Every line is followed by an empty one, all ending in CR LF.
    const QString text = lines.join(u'\n').replace(u"\n"_s, u"\r\n\r\n"_s) + u"\r\n\r\n"_s;

    ASSERT_TRUE(run(text, u"wb.ddf"_s)) << testing::PrintToString(errors());
    ASSERT_TRUE(interpreter.finish());
    const BuildPlan plan = interpreter.plan();
    EXPECT_EQ(utf8(plan.cabinetPath), utf8(tree.path(u"out/新建压缩包.cab"_s)));
    ASSERT_EQ(plan.folders.size(), 1);
    EXPECT_EQ(plan.folders[0].settings, GetParam().expected);
    ASSERT_EQ(plan.folders[0].files.size(), 2);
    const PlannedFile &a = plan.folders[0].files[0];
    const PlannedFile &b = plan.folders[0].files[1];
    EXPECT_EQ(utf8(a.sourcePath), utf8(first));
    EXPECT_EQ(utf8(a.nameInCabinet), "Quillbox Desk.txt");
    EXPECT_EQ(utf8(b.sourcePath), utf8(second));
    EXPECT_EQ(utf8(b.nameInCabinet), "docs\\read me.txt");
    EXPECT_EQ(utf8(b.directiveFile), "wb.ddf");
    EXPECT_EQ(a.line + 2, b.line); // one empty line between them
    EXPECT_EQ(plan.maxCabinetSize, 0);
    EXPECT_EQ(utf8(plan.infPath), utf8(tree.path(u"setup.inf"_s)));
    EXPECT_TRUE(interpreter.warnings().isEmpty());

    // The same text in code page 936 gives the same plan.
    DirectiveInterpreter gbk;
    gbk.setCurrentFolder(tree.root());
    ASSERT_TRUE(gbk.run(qb::util::EncodeCodePage(text, 936), u"wb.ddf"_s));
    EXPECT_EQ(utf8(gbk.plan().cabinetPath), utf8(plan.cabinetPath));
}

INSTANTIATE_TEST_SUITE_P(Directive, DirectiveWorkbenchForm,
    ::testing::Values(WorkbenchCase {u".Set CompressionType=LZX\n.Set CompressionMemory=21",
                          {CompressionKind::Lzx, 21, -1}},
        WorkbenchCase {
            u".Set CompressionType=LZX\n.Set CompressionMemory=15", {CompressionKind::Lzx, 15, -1}},
        WorkbenchCase {
            u".Set CompressionType=MSZIP\n.Set CompressionMemory=21", {CompressionKind::MsZip, 21, -1}},
        WorkbenchCase {u".Set Compress=OFF\n.Set CompressionType=LZX", {CompressionKind::None, 21, -1}}));

struct ErrorCase
{
    const char16_t *text;
    const char16_t *expected; // "@" stands for the scratch folder
};

class DirectiveErrorTable : public DirectiveTest, public ::testing::WithParamInterface<ErrorCase>
{
};

TEST_P(DirectiveErrorTable, ReportsExactlyThisError)
{
    const QString expected = QString::fromUtf16(GetParam().expected).replace(u'@', tree.root());
    EXPECT_FALSE(run(QString::fromUtf16(GetParam().text)));
    EXPECT_EQ(errors(), std::vector<std::string> {utf8(expected)});
}

INSTANTIATE_TEST_SUITE_P(Directive, DirectiveErrorTable,
    ::testing::Values(ErrorCase {u"", u"t.ddf: the directive file is empty"},
        ErrorCase {u"  \n; only a comment\r\n\t\r", u"t.ddf: the directive file is empty"},
        ErrorCase {u".Option IMPLICIT", u"t.ddf(1): unknown option 'IMPLICIT' (only EXPLICIT is known)"},
        ErrorCase {u"a.txt\n.New Cabinet", u"t.ddf(2): spanning several cabinets is not supported"},
        ErrorCase {u".new disk", u"t.ddf(1): spanning several cabinets is not supported"},
        ErrorCase {u".New Shelf", u"t.ddf(1): unknown .New 'Shelf' (Folder, Cabinet or Disk)"},
        ErrorCase {u"; c\n\n.Frob x=1", u"t.ddf(3): unknown directive '.Frob'"},
        ErrorCase {u"a.txt\r.Frob", u"t.ddf(2): unknown directive '.Frob'"},
        ErrorCase {u"\ufeff.Frob", u"t.ddf(1): unknown directive '.Frob'"},
        ErrorCase {u".Set x=\"abc", u"t.ddf(1): a quote is left open"},
        ErrorCase {u"\"a.txt b.txt", u"t.ddf(1): a quote is left open"},
        ErrorCase {u".Set x", u"t.ddf(1): .Set needs name=value"},
        ErrorCase {u".Define =1", u"t.ddf(1): .Define needs name=value"},
        ErrorCase {u".Set my var=1", u"t.ddf(1): 'my var' is not a valid variable name"},
        ErrorCase {u".Set a=\"x\" y", u"t.ddf(1): unexpected text after the quoted value: 'y'"},
        ErrorCase {u".Set CompressionType=QUANTUM", u"t.ddf(1): Quantum compression is not supported"},
        ErrorCase {
            u".Set CompressionType=ZIP", u"t.ddf(1): CompressionType must be NONE, MSZIP or LZX, not 'ZIP'"},
        ErrorCase {u".Set CompressionMemory=22",
            u"t.ddf(1): CompressionMemory must be a number from 15 to 21, not '22'"},
        ErrorCase {u".Set CompressionMemory=14",
            u"t.ddf(1): CompressionMemory must be a number from 15 to 21, not '14'"},
        ErrorCase {
            u".Set Cabinet=OFF", u"t.ddf(1): Cabinet=OFF (copying files without a cabinet) is not supported"},
        ErrorCase {u".Set Compress=maybe", u"t.ddf(1): Compress must be ON or OFF, not 'maybe'"},
        ErrorCase {u".Set GenerateInf=2", u"t.ddf(1): GenerateInf must be ON or OFF, not '2'"},
        ErrorCase {u".Set MaxDiskSize=1.44MB",
            u"t.ddf(1): MaxDiskSize must be a whole number or one of CDROM, 1.44M, 1.2M, 720K, 360K, not "
            u"'1.44MB'"},
        ErrorCase {u".Set MaxCabinetSize=-1",
            u"t.ddf(1): MaxCabinetSize must be a whole number or one of CDROM, 1.44M, 1.2M, 720K, 360K, not "
            u"'-1'"},
        ErrorCase {u".Set FolderFileCountThreshold=2147483648",
            u"t.ddf(1): FolderFileCountThreshold must be a whole number from 0 to 2147483647, not "
            u"'2147483648'"},
        ErrorCase {u".Set FolderSizeThreshold=99999999999999999999",
            u"t.ddf(1): FolderSizeThreshold must be a whole number from 0 to 9223372036854775807, not "
            u"'99999999999999999999'"},
        ErrorCase {u".Set LZXLevel=0", u"t.ddf(1): LZXLevel must be empty or a number from 1 to 9, not '0'"},
        ErrorCase {
            u".Set LZXLevel=high", u"t.ddf(1): LZXLevel must be empty or a number from 1 to 9, not 'high'"},
        ErrorCase {
            u".Option EXPLICIT\n.Set Foo=1", u"t.ddf(2): unknown variable 'Foo' (.Option EXPLICIT is on)"},
        ErrorCase {u"%nope%.txt", u"t.ddf(1): unknown variable 'nope'"},
        ErrorCase {u"a.txt \"50% off\"", u"t.ddf(1): a '%' is not closed (write %% for a single '%')"},
        ErrorCase {u"a.txt b.txt c.txt",
            u"t.ddf(1): unexpected 'c.txt' after the name in the cabinet (put a name with blanks in quotes)"},
        ErrorCase {u"missing.txt", u"t.ddf(1): cannot find '@/missing.txt'"},
        ErrorCase {u"sub", u"t.ddf(1): '@/sub' is a folder, not a file"},
        ErrorCase {u"\"\" x.txt", u"t.ddf(1): the source file name is empty"},
        ErrorCase {u"a.txt \"\"", u"t.ddf(1): the name in the cabinet is empty"},
        ErrorCase {u"a.txt \\", u"t.ddf(1): the name in the cabinet is empty"},
        ErrorCase {u"a.txt C:\\x.txt",
            u"t.ddf(1): 'C:\\x.txt' is an absolute name; a name in the cabinet must be relative"},
        ErrorCase {u"a.txt x\\..\\..\\y.txt",
            u"t.ddf(1): 'x\\..\\..\\y.txt' climbs out with '..'; a name in the cabinet must stay inside it"},
        ErrorCase {u"a.txt ../y.txt",
            u"t.ddf(1): '..\\y.txt' climbs out with '..'; a name in the cabinet must stay inside it"},
        ErrorCase {u"a.txt x\\\\y.txt", u"t.ddf(1): 'x\\\\y.txt' has an empty or '.' part"},
        ErrorCase {u"a.txt x\\.\\y.txt", u"t.ddf(1): 'x\\.\\y.txt' has an empty or '.' part"},
        ErrorCase {u"a.txt \"x%#0%y\"",
            u"t.ddf(1): '%#0%' is not a character: write %#N% with N from 1 to 1114111, not a surrogate"},
        ErrorCase {u"a.txt /colour=red", u"t.ddf(1): unknown parameter '/colour'"},
        ErrorCase {u"a.txt /DATE=13/01/2020",
            u"t.ddf(1): '13/01/2020' is not a date (/date=MM/DD/YYYY, from 1980 to 2107)"},
        ErrorCase {u"a.txt /date=01/01/1979",
            u"t.ddf(1): '01/01/1979' is not a date (/date=MM/DD/YYYY, from 1980 to 2107)"},
        ErrorCase {u"a.txt /time=25:00",
            u"t.ddf(1): '25:00' is not a time (/time=HH:MM:SS, with a or p for a 12-hour clock)"},
        ErrorCase {
            u"a.txt /attr=rx", u"t.ddf(1): 'rx' is not a set of attributes (/attr= some of r, h, s, a)"},
        ErrorCase {u"a.txt /unique=maybe", u"t.ddf(1): /unique must be ON or OFF, not 'maybe'"},
        ErrorCase {u"a.txt /size=", u"t.ddf(1): '' is not a size in bytes (/size=number)"},
        ErrorCase {u"a.txt /time=1:00 /Time=2:00", u"t.ddf(1): '/Time' is given twice"}));

TEST_F(DirectiveTest, SubstitutesVariablesOncePerLine)
{
    tree.writeFile(u"100%.txt"_s, "x");
    ASSERT_TRUE(run(u".Set MyName=q.txt\n"
                    ".Set Raw=%%a%%\n" // stored as "%a%" and never expanded again
                    ".Define where=sub2\n"
                    "a.txt %MYNAME%\n"
                    "100%%.txt\n"
                    "b.txt \"x%raw%y.txt\"\n"
                    "c.txt %where%\\%myname% ; a comment with %unknown% in it\n"_s))
        << testing::PrintToString(errors());
    EXPECT_EQ(folders(), std::vector<std::string> {"q.txt|100%.txt|x%a%y.txt|sub2\\q.txt"});
    EXPECT_EQ(utf8(interpreter.plan().folders[0].files[1].sourcePath), utf8(tree.path(u"100%.txt"_s)));
}

// Names a Linux user may have: line ends only as references, the rest as written.
TEST_F(DirectiveTest, ControlCharactersPassIntoNames)
{
    ASSERT_TRUE(run(u"a.txt \"tab\there\"\n"
                    "a.txt \"two%#13%%#10%lines\"\n"
                    "a.txt \"%#37%#10%%\"\n"_s))
        << testing::PrintToString(errors());
    EXPECT_EQ(folders(), std::vector<std::string> {"tab\there|two\r\nlines|%#10%"});
}

TEST_F(DirectiveTest, ExpansionThatKeepsDoublingStopsAtTheLineLimit)
{
    QString text = u".Set a="_s + QString(1024, u'x') + u'\n';
    for (int i = 0; i < 30; ++i)
        text += u".Set a=%a%%a%\n"_s;
    EXPECT_FALSE(run(text));
    // 7 + 2 * 32768 characters is the first line past 65536.
    ASSERT_EQ(interpreter.errors().size(), 25);
    EXPECT_EQ(
        errors().front(), "t.ddf(7): the line is longer than 65536 characters once variables are expanded");
}

TEST_F(DirectiveTest, DefineWorksUnderExplicitAndLzxLevelIsStandard)
{
    ASSERT_TRUE(
        run(u".Option explicit\n.Define Foo=bar.txt\n.Set foo=b.txt\n.Set LZXLevel=7\n"
            ".Set CompressionType=lzx\n.Set InfHeader=x\n.Define CompressionMemory=16\na.txt %FOO%\n"_s))
        << testing::PrintToString(errors());
    EXPECT_EQ(folders(), std::vector<std::string> {"b.txt"});
    EXPECT_EQ(interpreter.plan().folders[0].settings, (FolderSettings {CompressionKind::Lzx, 16, 7}));
    EXPECT_EQ(utf8(interpreter.warnings()),
        std::vector<std::string> {"t.ddf(6): InfHeader has no effect here and is ignored"});
}

TEST_F(DirectiveTest, CommandLineDefinesOverrideDefaultsAndEscapeExplicit)
{
    EXPECT_TRUE(interpreter.define(u"compressiontype"_s, u"NONE"_s));
    EXPECT_TRUE(interpreter.define(u"Target"_s, u"t.bin"_s));
    EXPECT_FALSE(interpreter.define(u"bad name"_s, u"1"_s));
    EXPECT_FALSE(interpreter.define(u"CompressionMemory"_s, u"99"_s));
    ASSERT_TRUE(run(u".Option EXPLICIT\n.Set Target=u.bin\na.txt %target%\n"_s));
    EXPECT_TRUE(interpreter.define(u"Later"_s, u"1"_s)); // EXPLICIT binds directive files only
    EXPECT_EQ(errors(),
        (std::vector<std::string> {"'bad name' is not a valid variable name",
            "CompressionMemory must be a number from 15 to 21, not '99'"}));
    EXPECT_EQ(folders(), std::vector<std::string> {"u.bin"});
    EXPECT_EQ(interpreter.plan().folders[0].settings.kind, CompressionKind::None);
}

TEST_F(DirectiveTest, QuotedPathsAndNamesKeepBlanksChineseAndQuotes)
{
    const QString source = tree.writeFile(u"中文 目录/文件 \"一\".txt"_s, "x");
    ASSERT_TRUE(run(u"\"中文 目录/文件 \"\"一\"\".txt\" \"文件夹\\say \"\"hi\"\" 你好.txt\"\n"
                    "\"中文 目录\"/\"文件 \"\"一\"\".txt\"\n"_s))
        << testing::PrintToString(errors());
    const BuildPlan plan = interpreter.plan();
    ASSERT_EQ(plan.fileCount(), 2);
    EXPECT_EQ(utf8(plan.folders[0].files[0].sourcePath), utf8(source));
    EXPECT_EQ(utf8(plan.folders[0].files[0].nameInCabinet), "文件夹\\say \"hi\" 你好.txt");
    EXPECT_EQ(utf8(plan.folders[0].files[1].nameInCabinet), "文件 \"一\".txt");
}

TEST_F(DirectiveTest, UniqueFilesComparesNamesIgnoringCase)
{
    EXPECT_FALSE(run(u"a.txt Same.txt\nb.txt SAME.TXT\nc.txt same.txt /unique=no\n"_s));
    EXPECT_EQ(errors(), std::vector<std::string> {"t.ddf(2): 'SAME.TXT' is already in the cabinet (line 1)"});
    EXPECT_EQ(folders(), std::vector<std::string> {"Same.txt|same.txt"});

    DirectiveInterpreter off;
    off.setCurrentFolder(tree.root());
    EXPECT_TRUE(off.run("a.txt x.txt\n.Set UniqueFiles=no\nb.txt X.TXT\nc.txt x.txt\n", u"t.ddf"_s));
    EXPECT_EQ(off.plan().fileCount(), 3);
    EXPECT_FALSE(off.run("d.txt x.txt /unique=yes\n", u"u.ddf"_s));
    EXPECT_EQ(
        utf8(off.errors().value(0).toString()), "u.ddf(1): 'x.txt' is already in the cabinet (t.ddf line 1)");
}

TEST_F(DirectiveTest, CompressionChangesAndNewFolderStartFolders)
{
    ASSERT_TRUE(run(u".New Folder\na.txt\n.Set CompressionType=LZX\nb.txt\n.Set CompressionMemory=16\nc.txt\n"
                    ".Set CompressionType=MSZIP\nd.txt\n.Set CompressionMemory=18\n.Set LZXLevel=3\ne.txt\n"
                    ".Set Compress=OFF\nf.txt\n.Set Compress=ON\n.Set CompressionType=NONE\ng.txt\n"
                    ".New Folder\n.New Folder\na.txt a2.txt\n"_s))
        << testing::PrintToString(errors());
    EXPECT_EQ(folders(),
        (std::vector<std::string> {"a.txt", "b.txt", "c.txt", "d.txt|e.txt", "f.txt|g.txt", "a2.txt"}));
    const BuildPlan plan = interpreter.plan();
    EXPECT_EQ(plan.folders[1].settings, (FolderSettings {CompressionKind::Lzx, 21, -1}));
    EXPECT_EQ(plan.folders[2].settings, (FolderSettings {CompressionKind::Lzx, 16, -1}));
    EXPECT_EQ(plan.folders[3].settings, FolderSettings {});
    EXPECT_EQ(plan.folders[4].settings.kind, CompressionKind::None);
    EXPECT_EQ(plan.folders[4].files[1].line, 16);
}

TEST_F(DirectiveTest, SourceDirAndDestinationDirPrefixPathsAndNames)
{
    tree.writeFile(u"src/x.txt"_s, "x");
    const QString absolute = tree.writeFile(u"abs/y.txt"_s, "y");
    ASSERT_TRUE(
        run(u".Set SourceDir=src\n.Set DestinationDir=dest/sub\nx.txt\nx.txt renamed.txt\n"
            ".Set SourceDir=%1\n.Set DestinationDir=top\\\ny.txt\n.Set DestinationDir=\n../a.txt\n"_s.arg(
                tree.path(u"abs"_s))))
        << testing::PrintToString(errors());
    EXPECT_EQ(
        folders(), std::vector<std::string> {"dest\\sub\\x.txt|dest\\sub\\renamed.txt|top\\y.txt|a.txt"});
    const BuildPlan plan = interpreter.plan();
    EXPECT_EQ(utf8(plan.folders[0].files[0].sourcePath), utf8(tree.path(u"src/x.txt"_s)));
    EXPECT_EQ(utf8(plan.folders[0].files[2].sourcePath), utf8(absolute));
    EXPECT_EQ(utf8(plan.folders[0].files[3].sourcePath), utf8(tree.path(u"abs/../a.txt"_s)));
}

TEST_F(DirectiveTest, NamesFromTheRootAreStoredFromBelowIt)
{
    tree.writeFile(u"a.txt"_s, "a");
    ASSERT_TRUE(run(u"a.txt \\abs.txt\na.txt \"\\sub\\in sub.txt\"\na.txt /slash.txt\n"_s))
        << testing::PrintToString(errors());
    EXPECT_EQ(folders(), std::vector<std::string> {"abs.txt|sub\\in sub.txt|slash.txt"});
}

TEST_F(DirectiveTest, BackslashPathsFallBackToSlashes)
{
    tree.writeFile(u"sub/deep/f.txt"_s, "x");
    tree.writeFile(u"odd\\name.txt"_s, "x");
    ASSERT_TRUE(run(
        u".Set SourceDir=sub\\deep\nf.txt\n.Set SourceDir=\nsub\\deep\\f.txt g.txt\nodd\\name.txt n.txt\n"_s))
        << testing::PrintToString(errors());
    const BuildPlan plan = interpreter.plan();
    EXPECT_EQ(folders(), std::vector<std::string> {"f.txt|g.txt|n.txt"});
    EXPECT_EQ(utf8(plan.folders[0].files[0].sourcePath), utf8(tree.path(u"sub/deep/f.txt"_s)));
    EXPECT_EQ(utf8(plan.folders[0].files[1].sourcePath), utf8(tree.path(u"sub/deep/f.txt"_s)));
    // A name that really holds a "\" is taken as written.
    EXPECT_EQ(utf8(plan.folders[0].files[2].sourcePath), utf8(tree.path(u"odd\\name.txt"_s)));
}

struct CabinetPathCase
{
    const char16_t *lines;
    const char16_t *outputFolder; // "" = not set
    const char16_t *expected; // "@" is the current folder
};

class DirectiveCabinetPath : public DirectiveTest, public ::testing::WithParamInterface<CabinetPathCase>
{
};

TEST_P(DirectiveCabinetPath, FollowsTheTemplatesAndFolders)
{
    if (*GetParam().outputFolder != u'\0')
        interpreter.setOutputFolder(QString::fromUtf16(GetParam().outputFolder));
    ASSERT_TRUE(run(QString::fromUtf16(GetParam().lines) + u"\na.txt\n"_s))
        << testing::PrintToString(errors());
    EXPECT_EQ(utf8(interpreter.plan().cabinetPath),
        utf8(QString::fromUtf16(GetParam().expected).replace(u'@', tree.root())));
}

INSTANTIATE_TEST_SUITE_P(Directive, DirectiveCabinetPath,
    ::testing::Values(CabinetPathCase {u"", u"", u"@/DISK1/1.cab"},
        CabinetPathCase {u".Set CabinetNameTemplate=out*-*.cab", u"", u"@/DISK1/out1-1.cab"},
        CabinetPathCase {u".Set DiskDirectoryTemplate=", u"", u"@/1.cab"},
        CabinetPathCase {u".Set DiskDirectoryTemplate=d*x", u"", u"@/d1x/1.cab"},
        CabinetPathCase {u".Set DiskDirectory1=mine", u"", u"@/mine/1.cab"},
        CabinetPathCase {u".Set DiskDirectory1=", u"", u"@/1.cab"},
        CabinetPathCase {
            u".Set DiskDirectory1=/abs/dir\n.Set CabinetNameTemplate=c.cab", u"", u"/abs/dir/c.cab"},
        CabinetPathCase {u".Set CabinetNameTemplate=/abs/c*.cab", u"", u"/abs/c1.cab"},
        CabinetPathCase {u"", u"outdir", u"@/outdir/DISK1/1.cab"},
        CabinetPathCase {u".Set DiskDirectory1=", u"/elsewhere", u"/elsewhere/1.cab"}));

TEST_F(DirectiveTest, InformationAndReportFilesStartInTheCurrentFolder)
{
    interpreter.setOutputFolder(u"/elsewhere"_s);
    ASSERT_TRUE(run(u"a.txt\n.Set InfFileName=reports/x.inf\n.Set RptFileName=/abs/x.rpt\n"_s));
    EXPECT_EQ(utf8(interpreter.plan().infPath), utf8(tree.path(u"reports/x.inf"_s)));
    EXPECT_EQ(utf8(interpreter.plan().rptPath), "/abs/x.rpt");

    ASSERT_TRUE(run(u".Set InfFileName=nul\n.Set RptFileName=\n"_s));
    EXPECT_EQ(utf8(interpreter.plan().infPath), "");
    EXPECT_EQ(utf8(interpreter.plan().rptPath), "");

    ASSERT_TRUE(run(u".Set InfFileName=x.inf\n.Set RptFileName=NUL\n.Set GenerateInf=false\n"_s));
    EXPECT_EQ(utf8(interpreter.plan().infPath), "");
}

TEST_F(DirectiveTest, TwoRunsMakeOnePlanWithLimitsFromTheLastValues)
{
    ASSERT_TRUE(run(u".Set MaxDiskSize=1.44M\n.Set CompressionType=LZX\na.txt\n"_s, u"one.ddf"_s));
    ASSERT_TRUE(
        run(u".Set MaxCabinetSize=2000000\n.Set FolderSizeThreshold=5000\n.Set FolderFileCountThreshold=7\n"
            "b.txt\n.Set CompressionType=MSZIP\nc.txt\n"_s,
            u"two.ddf"_s));
    ASSERT_TRUE(interpreter.finish());
    const BuildPlan plan = interpreter.plan();
    EXPECT_EQ(folders(), (std::vector<std::string> {"a.txt|b.txt", "c.txt"}));
    EXPECT_EQ(utf8(plan.folders[0].files[1].directiveFile), "two.ddf");
    EXPECT_EQ(plan.folders[0].files[1].line, 4);
    EXPECT_EQ(plan.maxCabinetSize, 1457664);
    EXPECT_EQ(plan.folderSizeThreshold, 5000);
    EXPECT_EQ(plan.folderFileCountThreshold, 7);
}

TEST_F(DirectiveTest, NamesMayTakeUpTo255BytesOfUtf8)
{
    const QString fits = QString(85, QChar(0x4e2d)); // three bytes each
    EXPECT_TRUE(run(u"a.txt %1\n"_s.arg(fits)));
    EXPECT_FALSE(run(u"b.txt %1\n"_s.arg(fits + u'x')));
    EXPECT_EQ(errors(),
        std::vector<std::string> {utf8(u"t.ddf(1): '%1x' is longer than 255 bytes in UTF-8"_s.arg(fits))});
}

TEST_F(DirectiveTest, FileParametersAreCheckedAndWrittenOneWay)
{
    ASSERT_TRUE(run(u"a.txt /date=2/9/07 /time=1:05p /ATTR=AhR /inf=no /size=12\nb.txt\n"_s))
        << testing::PrintToString(errors());
    const PlannedFile file = interpreter.plan().folders[0].files[0];
    EXPECT_EQ(utf8(file.date), "02/09/2007");
    EXPECT_EQ(utf8(file.time), "13:05:00");
    EXPECT_EQ(utf8(file.attributes), "rha");
    EXPECT_EQ(utf8(interpreter.plan().folders[0].files[1].date), "");
}

TEST_F(DirectiveTest, RefusesFilesOfTwoGibibytesOrMore)
{
    const QString big = tree.makeSparseFile(u"big.bin"_s, (qint64(1) << 31));
    const QString fits = tree.makeSparseFile(u"fits.bin"_s, (qint64(1) << 31) - 1);
    if (big.isEmpty() || fits.isEmpty())
        GTEST_SKIP() << "no sparse files here";
    EXPECT_FALSE(run(u"fits.bin\nbig.bin\n"_s));
    EXPECT_EQ(errors(),
        std::vector<std::string> {
            utf8(u"t.ddf(2): '%1' is 2 GiB or larger; a cabinet cannot hold it"_s.arg(big))});
    EXPECT_EQ(folders(), std::vector<std::string> {"fits.bin"});
}

TEST_F(DirectiveTest, ReportsAFileThatCannotBeRead)
{
    QString locked = tree.writeFile(u"locked.txt"_s, "x");
    QFile::setPermissions(locked, QFileDevice::Permissions());
    // Permissions do not stop root; a write-only kernel setting does.
    if (QFile probe(locked); probe.open(QIODevice::ReadOnly))
        locked = u"/proc/sys/vm/compact_memory"_s;
    if (QFile probe(locked); !QFileInfo(locked).isFile() || probe.open(QIODevice::ReadOnly))
        GTEST_SKIP() << "no unreadable file to be had here";
    EXPECT_FALSE(run(u"\"%1\"\n"_s.arg(locked)));
    EXPECT_EQ(errors(), std::vector<std::string> {utf8(u"t.ddf(1): cannot read '%1'"_s.arg(locked))});
}

TEST_F(DirectiveTest, NoEffectVariablesWarnOnceAndStillExpand)
{
    ASSERT_TRUE(run(u".Set ClusterSize=4096\n.Set clustersize=2048\na.txt \"%ClusterSize%.txt\"\n"_s));
    EXPECT_EQ(utf8(interpreter.warnings()),
        std::vector<std::string> {"t.ddf(1): ClusterSize has no effect here and is ignored"});
    EXPECT_EQ(folders(), std::vector<std::string> {"2048.txt"});
}

TEST_F(DirectiveTest, StopsCollectingAfterAHundredErrors)
{
    QString text;
    for (int i = 0; i < 150; ++i)
        text += u".Bogus\n"_s;
    EXPECT_FALSE(run(text));
    ASSERT_EQ(interpreter.errors().size(), DirectiveInterpreter::kMaxErrors);
    EXPECT_EQ(errors().back(), "t.ddf(100): unknown directive '.Bogus'");
}

TEST_F(DirectiveTest, FinishNeedsFilesAndACabinetName)
{
    ASSERT_TRUE(run(u".Set CabinetNameTemplate=\n"_s));
    EXPECT_FALSE(interpreter.finish());
    EXPECT_FALSE(interpreter.finish()); // asking twice does not repeat the errors
    EXPECT_EQ(errors(),
        (std::vector<std::string> {
            "no files to put in the cabinet", "t.ddf(1): CabinetNameTemplate does not name a file: ''"}));
}

TEST_F(DirectiveTest, RunFileReadsFromDiskAndNamesTheFileInErrors)
{
    const QString good = tree.writeFile(u"ok.ddf"_s, "a.txt\r\nb.txt ; comment\r\n");
    EXPECT_TRUE(interpreter.runFile(good));
    EXPECT_EQ(utf8(interpreter.plan().folders[0].files[1].directiveFile), utf8(good));
    EXPECT_FALSE(interpreter.runFile(tree.path(u"none.ddf"_s)));
    EXPECT_FALSE(interpreter.runFile(tree.path(u"sub"_s)));
    EXPECT_EQ(errors(),
        (std::vector<std::string> {utf8(tree.root() + u"/none.ddf: cannot find the directive file"_s),
            utf8(tree.root() + u"/sub: the directive file is a folder"_s)}));
    EXPECT_FALSE(interpreter.finish());
}

TEST_F(DirectiveTest, HostileLinesNeverTouchTheFileSystemWithANul)
{
    EXPECT_FALSE(run(u"a\0b.txt\n"_s));
    EXPECT_EQ(errors(),
        std::vector<std::string> {
            utf8(u"t.ddf(1): '%1/a?b.txt' is not a valid file name"_s.arg(tree.root()))});
}

} // namespace
