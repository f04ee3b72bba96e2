// Row texts of the package list and the texts of a build, byte for byte.
#include "workbench/app_context.h"
#include "workbench/directive_text.h"
#include "workbench/package_rows.h"

#include <QDateTime>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::workbench {
namespace {

TEST(PackageRows, GroupedNumbersBothWays)
{
    const std::pair<qint64, const char16_t *> table[] = {{0, u"0"}, {7, u"7"}, {999, u"999"},
        {1000, u"1,000"}, {1234567, u"1,234,567"}, {-1234, u"-1,234"}, {4294967296LL, u"4,294,967,296"}};
    for (const auto &[value, text] : table) {
        EXPECT_EQ(FormatGrouped(value), QString::fromUtf16(text));
        EXPECT_EQ(ReadGrouped(QString::fromUtf16(text)), value);
    }
    EXPECT_EQ(ReadGrouped(u" 12,345 "_s), 12345);
    EXPECT_EQ(ReadGrouped(u"12x34"_s), 12);
    EXPECT_EQ(ReadGrouped(QString()), 0);
}

TEST(PackageRows, DateTextsLikeTheDefaultOfADate)
{
    EXPECT_EQ(DefaultDateText(QDateTime(QDate(2009, 1, 2), QTime(3, 4, 5))), u"2009-1-2 3:04:05"_s);
    EXPECT_EQ(DefaultDateText(QDateTime(QDate(2024, 12, 31), QTime(23, 59, 59))), u"2024-12-31 23:59:59"_s);
    EXPECT_EQ(DefaultDateText(QDateTime(QDate(2009, 1, 2), QTime(0, 0))), u"2009-1-2"_s);
    EXPECT_EQ(DefaultDateText(QDateTime(QDate(1899, 12, 30), QTime(10, 0))), u"10:00:00"_s);
}

TEST(PackageRows, FolderInTheCabinetKeepsTheFourConsequences)
{
    struct Case
    {
        const char16_t *path;
        const char16_t *base;
        const char16_t *folder;
    };
    const Case cases[] = {
        // Chosen in the file dialog: the base is the file's folder.
        {u"/home/u/docs/a.txt", u"/home/u/docs/", u""},
        // A folder from the folder browser, base without its separator.
        {u"/home/u/docs/sub/a.txt", u"/home/u/docs", u"\\sub\\"},
        {u"/home/u/docs/a.txt", u"/home/u/docs", u"\\"},
        // A dropped folder: the base is its parent, so its own name stays.
        {u"/home/u/docs/sub/a.txt", u"/home/u/", u"docs\\sub\\"},
        // Outside the base: the whole folder stays.
        {u"/mnt/other/a.txt", u"/home/u/", u"\\mnt\\other\\"},
        // The root as the base: only the leading separator goes.
        {u"/srv/data/a.txt", u"/", u"srv\\data\\"},
        {u"/a.txt", u"/", u""},
        // Every occurrence goes, as the rule says.
        {u"/x/y/x/y/a.txt", u"/x/y", u"\\"},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(CabinetFolderOf(QString::fromUtf16(c.path), QString::fromUtf16(c.base)),
            QString::fromUtf16(c.folder))
            << QString::fromUtf16(c.path).toStdString() << " in " << QString::fromUtf16(c.base).toStdString();
    }
}

TEST(PackageRows, TypeNamesByExtension)
{
    TypeNames types;
    const QString text = types.forExtension(u"txt"_s);
    EXPECT_FALSE(text.isEmpty());
    EXPECT_EQ(types.forExtension(u".TXT"_s), text);
    EXPECT_TRUE(types.forExtension(u"qbunknownext"_s).isEmpty());
    EXPECT_TRUE(types.forExtension(QString()).isEmpty());
    EXPECT_TRUE(types.forExtension(u"b/file"_s).isEmpty()); // a dot only in a folder's name
}

TEST(DirectiveTexts, CompressionLinesByStoredSettings)
{
    struct Case
    {
        const char16_t *type;
        const char16_t *memory;
        QStringList lines;
    };
    const Case cases[] = {
        {u"0", u"6", {u".Set Compress=OFF"_s}},
        {u"1", u"6", {u".Set CompressionType=MSZIP"_s}},
        {u"2", u"6", {u".Set CompressionType=LZX"_s, u".Set CompressionMemory=21"_s}},
        {u"2", u"0", {u".Set CompressionType=LZX"_s, u".Set CompressionMemory=15"_s}},
        {u"2", u"", {u".Set CompressionType=LZX"_s, u".Set CompressionMemory=15"_s}},
        {u"LZX", u"3", {u".Set Compress=OFF"_s}},
        {u"3", u"0", {u".Set Compress=OFF"_s}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(CompressionLines(QString::fromUtf16(c.type), QString::fromUtf16(c.memory)), c.lines)
            << QString::fromUtf16(c.type).toStdString();
}

TEST(DirectiveTexts, DirectiveFileByteForByte)
{
    gAppTitle = u"Quillbox Desk"_s;
    const QString text
        = DirectiveText(u"/out/包.cab"_s, u"/tmp/notice.tmp"_s, CompressionLines(u"2"_s, u"6"_s),
            {{u"/src/a b.txt"_s, u"a b.txt"_s}, {u"/src/sub/中.txt"_s, u"sub\\中.txt"_s}});
    const QString expected = u".Option EXPLICIT\r\n\r\n"
                             ".Set CabinetNameTemplate=\"/out/包.cab\"\r\n\r\n"
                             ".Set DiskDirectoryTemplate=CDROM\r\n\r\n"
                             ".Set CompressionType=LZX\r\n\r\n"
                             ".Set CompressionMemory=21\r\n\r\n"
                             ".Set MaxCabinetSize=0\r\n\r\n"
                             ".Set MaxDiskSize=0\r\n\r\n"
                             ".Set UniqueFiles=OFF\r\n\r\n"
                             ".Set FolderFileCountThreshold=0\r\n\r\n"
                             ".Set Cabinet=on\r\n\r\n"
                             ".Set DiskDirectory1=\r\n\r\n"
                             "\"/tmp/notice.tmp\" \"Quillbox Desk.txt\"\r\n\r\n"
                             "\"/src/a b.txt\" \"a b.txt\"\r\n\r\n"
                             "\"/src/sub/中.txt\" \"sub\\中.txt\"\r\n\r\n"_s;
    EXPECT_EQ(text, expected);
}

TEST(DirectiveTexts, NoticeAndCommandLine)
{
    gAppTitle = u"Quillbox Desk"_s;
    EXPECT_TRUE(NoticeText().startsWith(u"\r\n本压缩包使用 Quillbox Desk 制作\r\n"_s));
    EXPECT_EQ(NoticeNameInCabinet(), u"Quillbox Desk.txt"_s);
    EXPECT_EQ(HiddenNoticeName(), u"Quillbox Desk 压缩制作.txt"_s);
    EXPECT_EQ(MakeCabCommandLine(u"/opt/q b/makecab"_s, u"/tmp/d.tmp"_s),
        u"\"/opt/q b/makecab\" /f \"/tmp/d.tmp\""_s);
}

} // namespace
} // namespace qb::workbench
