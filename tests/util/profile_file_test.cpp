// Profile files: reading entries and editing them in place without losing other lines.
#include "util/profile_file.h"

#include "support/temp_tree.h"

#include <gtest/gtest.h>

using qb::util::ProfileFile;

namespace {

TEST(ProfileFile, ReadsEntriesIgnoringCaseAndBlanks)
{
    const ProfileFile profile
        = ProfileFile::parse("; comment\r\n[Main]\r\n Key = Value \r\nother=1\n[Second]\rkey=2");
    QString value;
    ASSERT_TRUE(profile.value(QStringLiteral("main"), QStringLiteral("KEY"), value));
    EXPECT_EQ(value, QStringLiteral("Value"));
    ASSERT_TRUE(profile.value(QStringLiteral("Second"), QStringLiteral("key"), value));
    EXPECT_EQ(value, QStringLiteral("2"));
    EXPECT_FALSE(profile.value(QStringLiteral("Main"), QStringLiteral("missing"), value));
    EXPECT_FALSE(profile.value(QStringLiteral("None"), QStringLiteral("key"), value));
}

TEST(ProfileFile, EditsKeepOtherLines)
{
    ProfileFile profile = ProfileFile::parse("; keep me\r\n[A]\r\nx=1\r\n\r\n[B]\r\ny=2\r\n");
    profile.setValue(QStringLiteral("A"), QStringLiteral("x"), QStringLiteral("10"));
    profile.setValue(QStringLiteral("A"), QStringLiteral("z"), QStringLiteral("3"));
    profile.setValue(QStringLiteral("C"), QStringLiteral("w"), QStringLiteral("4"));
    EXPECT_EQ(profile.serialize(),
        QByteArray("; keep me\r\n[A]\r\nx=10\r\nz=3\r\n\r\n[B]\r\ny=2\r\n[C]\r\nw=4\r\n"));
    EXPECT_TRUE(profile.removeSection(QStringLiteral("b")));
    EXPECT_FALSE(profile.removeSection(QStringLiteral("b")));
    EXPECT_TRUE(profile.removeEntry(QStringLiteral("A"), QStringLiteral("X")));
    EXPECT_EQ(profile.serialize(), QByteArray("; keep me\r\n[A]\r\nz=3\r\n\r\n[C]\r\nw=4\r\n"));
}

TEST(ProfileFile, SavesAndLoadsThroughDisk)
{
    qb::test::TempTree tree;
    const QString path = tree.path(QStringLiteral("p.ini"));
    ProfileFile profile = qb::util::LoadProfileFile(path); // missing: empty
    profile.setValue(QStringLiteral("Software\\Tidewick"), QStringLiteral("名字"), QStringLiteral("值"));
    ASSERT_TRUE(qb::util::SaveProfileFile(path, profile));
    QString value;
    EXPECT_TRUE(qb::util::LoadProfileFile(path).value(
        QStringLiteral("software\\tidewick"), QStringLiteral("名字"), value));
    EXPECT_EQ(value, QStringLiteral("值"));
    EXPECT_FALSE(qb::util::SaveProfileFile(tree.path(QStringLiteral("no/folder/p.ini")), profile));
}

TEST(ProfileFile, HostileTextParsesWithoutLoss)
{
    const QByteArray hostile("[\r\n]\r\n=x\r\n[[a]]\r\n\xff\xfe=\x01\r\n[a");
    const ProfileFile profile = ProfileFile::parse(hostile);
    QString value;
    EXPECT_FALSE(profile.value(QString(), QString(), value));
    EXPECT_EQ(ProfileFile::parse(profile.serialize()).serialize(), profile.serialize());
}

} // namespace
