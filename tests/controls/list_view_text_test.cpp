// The list view's rules that need no window: cells from "|"-joined text, the tip's byte cut, the
// path splitter, size limits, sort context and comparators, the file-type table, and the key,
// button and drop numbering.
#include "controls/input_codes.h"
#include "controls/list_view_file_types.h"
#include "controls/list_view_sort.h"
#include "controls/list_view_text.h"

#include <QMimeDatabase>

#include <gtest/gtest.h>

#include <climits>
#include <vector>

using namespace Qt::StringLiterals;

namespace qb::controls {
namespace {

QString S(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

TEST(ListViewText, ThumbnailSidesAreClampedTo32Through125)
{
    const std::vector<std::pair<int, int>> cases = {{10, 32}, {500, 125}, {31, 32}, {32, 32}, {33, 33},
        {80, 80}, {124, 124}, {125, 125}, {126, 125}, {0, 32}, {-5, 32}, {INT_MIN, 32}, {INT_MAX, 125}};
    for (const auto &[side, expected] : cases)
        EXPECT_EQ(ClampThumbnailSide(side), expected) << side;
}

struct CellsCase
{
    const char *text, *typeName;
    std::vector<const char *> cells;
};

TEST(ListViewText, CellsSplitAtEveryBarAndEmptyLaterPiecesTakeTheTypeName)
{
    const std::vector<CellsCase> cases = {
        {"a", "Text", {"a"}}, {"a|b|c", "Text", {"a", "b", "c"}}, {"a|", "Text", {"a", "Text"}},
        {"a||c", "Text", {"a", "Text", "c"}}, {"|b", "Text", {"", "b"}}, // the first cell is never replaced
        {"", "Text", {""}}, {"|||", "", {"", "", "", ""}}, {"|||", "T", {"", "T", "T", "T"}},
        {" a | b ", "T", {" a ", " b "}}, // cells keep their blanks; ItemText trims on reading
        {"a;b|c", "T", {"a;b", "c"}}, // only "|" separates, whatever the mask separator
    };
    for (const CellsCase &c : cases) {
        const std::vector<QString> cells = ComposeItemTexts(S(c.text), S(c.typeName));
        ASSERT_EQ(cells.size(), c.cells.size()) << c.text;
        for (size_t i = 0; i < cells.size(); ++i)
            EXPECT_EQ(cells[i], S(c.cells[i])) << c.text << " cell " << i;
    }
}

TEST(ListViewText, CellsEndAtANulAsTheListsCStringsDo)
{
    const QString text = u"ab"_s + QChar(u'\0') + u"cd|x"_s + QChar(u'\0') + u"y|"_s;
    const std::vector<QString> cells = ComposeItemTexts(text, u"ty"_s + QChar(u'\0') + u"pe"_s);
    ASSERT_EQ(cells.size(), 3u);
    EXPECT_EQ(cells[0], u"ab"_s);
    EXPECT_EQ(cells[1], u"x"_s);
    EXPECT_EQ(cells[2], u"ty"_s);
    EXPECT_EQ(ListCellText(QStringView(u"\0abc", 4)), QString());
}

TEST(ListViewText, TipBufferKeepsAsManyBytesAsTheTipHasCharacters)
{
    // Plain ASCII passes whole.
    EXPECT_EQ(TipBufferText(u"abc\r\nd"_s), u"abc\r\nd"_s);
    EXPECT_EQ(TipBufferText(QString()), QString());
    // Three characters of three bytes each: three bytes are one whole character.
    EXPECT_EQ(TipBufferText(S("文件名")), S("文"));
    // "ab文件": 4 characters, 8 bytes; 4 bytes cut the first ideograph in two, which goes.
    EXPECT_EQ(TipBufferText(S("ab文件")), S("ab"));
    // "a文件xyz": 6 characters; 6 bytes hold "a", "文" and two bytes of "件", so "件" goes.
    EXPECT_EQ(TipBufferText(S("a文件xyz")), S("a文"));
}

struct PathCase
{
    const char *path, *delimiter;
    int style;
    const char *expected;
};

TEST(ListViewText, PathPartSplitsAtTheLastDelimiter)
{
    const std::vector<PathCase> cases = {
        {"C:\\dir\\file.txt", "\\", 1, "file.txt"},
        {"C:\\dir\\file.txt", "\\", 0, "C:\\dir"},
        {"C:\\dir\\file.txt", "\\", 2, "C:\\dir"},
        {"C:\\dir\\file.txt", ".", 0, "file"},
        {"C:\\dir\\file.tar.gz", ".", 0, "file.tar"},
        {"C:\\dir\\file.txt", ".", 1, "txt"},
        {"C:\\dir\\file.txt", ".", 2, "C:\\dir\\file"},
        {"file.txt", ".", 0, "file"},
        {"noslash", "\\", 1, "noslash"}, // no delimiter: the whole path, whatever the style
        {"noslash", "\\", 7, "noslash"},
        {"a\\b", "\\", 3, ""},
        {"a\\b", "\\", -1, ""},
        {"a\\", "\\", 1, ""},
        {"aXbxc", "x", 1, "c"},
        {"aXbxc", "X", 2, "aXb"}, // found case-insensitively: the last of x and X
        {"a::b::c", "::", 1, "c"},
        {"", "\\", 1, ""},
        {"abc", "", 1, "abc"},
    };
    for (const PathCase &c : cases)
        EXPECT_EQ(PathPart(S(c.path), S(c.delimiter), c.style), S(c.expected))
            << c.path << " / " << c.delimiter << " / " << c.style;
}

TEST(ListViewSort, ArmingSetsTheRequestAndOrdersAndOtherOrdersKeepThem)
{
    // Each step arms the same context: order, then the answers for greater and less.
    const std::vector<std::tuple<int, int, int>> steps
        = {{5, 0, 0}, {0, 1, -1}, {-1, -1, 1}, {2, -1, 1}, {1, 1, -1}, {INT_MIN, 1, -1}};
    SortContext context;
    EXPECT_EQ(OrderedAnswer(context, 1), 0); // unarmed: everything equal
    for (const auto &[order, greater, less] : steps) {
        ArmSortContext(context, order & 7, order);
        EXPECT_EQ(context.Column, order & 7);
        EXPECT_EQ(context.Mask, kSortTextMask);
        EXPECT_EQ(context.TextMax, 260);
        EXPECT_EQ(OrderedAnswer(context, 9), greater) << order;
        EXPECT_EQ(OrderedAnswer(context, -9), less) << order;
        EXPECT_EQ(OrderedAnswer(context, 0), 0);
    }
}

TEST(ListViewSort, ValueRulesOfTheComparators)
{
    EXPECT_EQ(CompareValues(2, 1), 1);
    EXPECT_EQ(CompareValues(-1, 0), -1);
    EXPECT_EQ(CompareValues(INT_MIN, INT_MAX), -1);
    EXPECT_EQ(CompareValues(7, 7), 0);

    EXPECT_EQ(CompareTexts(u"apple", u"APPLE"), 0);
    EXPECT_EQ(CompareTexts(u"b", u"A"), 1);
    EXPECT_EQ(CompareTexts(u"", u"a"), -1);

    EXPECT_EQ(CompareNumbers(u"10", u"9"), 1); // as numbers, not as text
    EXPECT_EQ(CompareNumbers(u"1e3", u"999"), 1);
    EXPECT_EQ(CompareNumbers(u"-2.5", u"-2"), -1);
    EXPECT_EQ(CompareNumbers(u"abc", u"0"), 0); // no number reads as 0

    EXPECT_EQ(CompareDates(u"2024-01-02", u"2023-12-31"), 1);
    EXPECT_EQ(CompareDates(u"2024-01-02 10:00:00", u"2024-01-02 09:59:59"), 1);
    EXPECT_EQ(CompareDates(u"2024/1/2", u"2024-01-02"), 0);
    EXPECT_EQ(CompareDates(u"no date", u"1990-01-01"), -1);
    EXPECT_EQ(CompareDates(u"no date", u"also none"), 0);
}

FileTypeRecord fakeLookup(const QString &extension)
{
    FileTypeRecord record;
    record.TypeName = u"type of "_s + extension;
    record.IconIndex = int(extension.size()) + 10;
    return record;
}

TEST(ListViewFileTypes, MaskPiecesInOrderSplitCaseInsensitivelyWithoutHoles)
{
    const std::vector<FileTypeRecord> types
        = BuildFileTypes(u"andtxtANDcabandandpngAnd"_s, u"and"_s, fakeLookup);
    ASSERT_EQ(types.size(), 3u);
    EXPECT_EQ(types[0].Extension, u"txt"_s);
    EXPECT_EQ(types[0].TypeName, u"type of txt"_s);
    EXPECT_EQ(types[0].IconIndex, 13);
    EXPECT_EQ(types[1].Extension, u"cab"_s);
    EXPECT_EQ(types[2].Extension, u"png"_s);
    EXPECT_TRUE(BuildFileTypes(QString(), u"|"_s, fakeLookup).empty());
    EXPECT_TRUE(BuildFileTypes(u"txt"_s, QString(), fakeLookup).empty());
    EXPECT_TRUE(BuildFileTypes(u"|||"_s, u"|"_s, fakeLookup).empty());
}

TEST(ListViewFileTypes, FindTakesWhatFollowsTheLastDotFirstMatchWins)
{
    std::vector<FileTypeRecord> types = BuildFileTypes(u"txt|gz|TXT"_s, u"|"_s, fakeLookup);
    types[2].TypeName = u"second txt"_s;
    const std::vector<std::pair<const char *, const char *>> cases = {
        {"/a/b/file.txt", "type of txt"},
        {"/a/b/FILE.TXT", "type of txt"}, // case-insensitive, first match
        {"x.tar.gz", "type of gz"},
        {"/a.txt/noext", ""}, // the extension is "txt/noext"
        {"txt", "type of txt"}, // no dot: the whole name is the extension
        {"file.", ""},
        {"", ""},
        {"file.doc", ""},
    };
    for (const auto &[name, expected] : cases)
        EXPECT_EQ(FindFileType(types, S(name)).TypeName, S(expected)) << name;
    EXPECT_EQ(FindFileType(types, u"a.doc"_s).IconIndex, 0);
}

TEST(ListViewFileTypes, TheDesktopGivesTypeNamesAndIconsOfKnownTypesOnly)
{
    ShellFileTypes shell;
    ASSERT_EQ(int(shell.icons().size()), ShellFileTypes::kFixedImages);
    const FileTypeRecord text = shell.lookup(u"txt"_s);
    const QString expected
        = QMimeDatabase().mimeTypeForFile(u"file.txt"_s, QMimeDatabase::MatchExtension).comment();
    ASSERT_FALSE(expected.isEmpty());
    EXPECT_EQ(text.TypeName, expected);
    EXPECT_GE(text.IconIndex, ShellFileTypes::kFixedImages);
    EXPECT_LT(size_t(text.IconIndex), shell.icons().size());
    // One icon a type: asking again reuses it.
    EXPECT_EQ(shell.lookup(u"TXT"_s).IconIndex, text.IconIndex);
    const size_t icons = shell.icons().size();
    shell.lookup(u"txt"_s);
    EXPECT_EQ(shell.icons().size(), icons);
    // A type the desktop doesn't know has no name and icon 0.
    const FileTypeRecord unknown = shell.lookup(u"qqzzunknown"_s);
    EXPECT_EQ(unknown.TypeName, QString());
    EXPECT_EQ(unknown.IconIndex, 0);
    EXPECT_EQ(shell.lookup(QString()).IconIndex, 0);
}

TEST(ListViewInput, KeyCodesFollowTheClassicTable)
{
    const std::vector<std::tuple<int, Qt::KeyboardModifiers, int>> cases = {
        {Qt::Key_A, Qt::NoModifier, 65}, {Qt::Key_Z, Qt::ShiftModifier, 90}, {Qt::Key_0, Qt::NoModifier, 48},
        {Qt::Key_5, Qt::KeypadModifier, 101}, {Qt::Key_Asterisk, Qt::KeypadModifier, 106},
        {Qt::Key_Asterisk, Qt::ShiftModifier, '8'}, {Qt::Key_Return, Qt::NoModifier, 13},
        {Qt::Key_Delete, Qt::NoModifier, 46}, {Qt::Key_Left, Qt::NoModifier, 37},
        {Qt::Key_Down, Qt::NoModifier, 40}, {Qt::Key_F12, Qt::NoModifier, 123},
        {Qt::Key_Control, Qt::ControlModifier, 17}, {Qt::Key_Comma, Qt::NoModifier, 188},
        {Qt::Key_unknown, Qt::NoModifier, 0},
        {0x4E2D, Qt::NoModifier, 0}, // a character with no key of its own
    };
    for (const auto &[key, modifiers, code] : cases)
        EXPECT_EQ(VirtualKeyCode(key, modifiers), code) << std::hex << key;
}

TEST(ListViewInput, ModifierButtonAndEffectBits)
{
    EXPECT_EQ(ShiftState(Qt::NoModifier), 0);
    EXPECT_EQ(ShiftState(Qt::ShiftModifier), 1);
    EXPECT_EQ(ShiftState(Qt::ControlModifier), 2);
    EXPECT_EQ(ShiftState(Qt::AltModifier), 4);
    EXPECT_EQ(ShiftState(Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier), 7);
    EXPECT_EQ(ButtonState(Qt::LeftButton | Qt::RightButton), 3);
    EXPECT_EQ(ButtonState(Qt::MiddleButton), 4);
    EXPECT_EQ(ButtonState(Qt::NoButton), 0);
    EXPECT_EQ(DropEffectOf(Qt::CopyAction | Qt::MoveAction), 3);
    EXPECT_EQ(DropEffectOf(Qt::LinkAction), 4);
    EXPECT_EQ(DropEffectOf(Qt::IgnoreAction), 0);
    EXPECT_EQ(DropActionOf(7), Qt::CopyAction);
    EXPECT_EQ(DropActionOf(6), Qt::MoveAction);
    EXPECT_EQ(DropActionOf(4), Qt::LinkAction);
    EXPECT_EQ(DropActionOf(0), Qt::IgnoreAction);
    EXPECT_EQ(DropActionOf(8), Qt::IgnoreAction);
}

} // namespace
} // namespace qb::controls
