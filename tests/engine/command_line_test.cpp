// Splitting command lines by the quoting rules, quoting arguments so they survive, and how a
// command is started.
#include "engine/command_line.h"

#include <gtest/gtest.h>

#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

struct SplitCase
{
    const char16_t *line;
    QStringList expected;
};

TEST(CommandLine, SplitsByTheQuotingRules)
{
    const SplitCase cases[] = {
        {u"prog a b", {u"prog"_s, u"a"_s, u"b"_s}},
        {u"  prog \t a  ", {u"prog"_s, u"a"_s}},
        {u"\"C:\\Program Files\\x.exe\" -i", {u"C:\\Program Files\\x.exe"_s, u"-i"_s}},
        {u"p \"a b\" c", {u"p"_s, u"a b"_s, u"c"_s}},
        {u"p a\"b c\"d", {u"p"_s, u"ab cd"_s}},
        {u"p \"\"", {u"p"_s, QString()}},
        {u"p \\\"a\\\"", {u"p"_s, u"\"a\""_s}},
        {u"p a\\\\\"b c\"", {u"p"_s, u"a\\b c"_s}},
        {u"p a\\\\\\\"b", {u"p"_s, u"a\\\"b"_s}},
        {u"p a\\b\\\\c", {u"p"_s, u"a\\b\\\\c"_s}},
        {u"p \"a\"\"b\"", {u"p"_s, u"a\"b"_s}},
        {u"p \"unterminated b", {u"p"_s, u"unterminated b"_s}},
        {u"p a\nb", {u"p"_s, u"a\nb"_s}},
        // A program name keeps its backslashes, even before a quote.
        {u"\"dir\\\\\" x", {u"dir\\\\"_s, u"x"_s}},
        {u"", {}},
    };
    for (const SplitCase &c : cases)
        EXPECT_EQ(SplitCommandLine(QString::fromUtf16(c.line)), c.expected)
            << QString::fromUtf16(c.line).toStdString();
}

TEST(CommandLine, BarsOutsideQuotesSeparateStages)
{
    const QList<CommandStage> stages = SplitCommandStages(u"\"a\" x \"y|z\" | \"b\" - |c");
    ASSERT_EQ(stages.size(), 3);
    EXPECT_EQ(stages[0], (QStringList {u"a"_s, u"x"_s, u"y|z"_s}));
    EXPECT_EQ(stages[1], (QStringList {u"b"_s, u"-"_s}));
    EXPECT_EQ(stages[2], (QStringList {u"c"_s}));
    EXPECT_TRUE(SplitCommandStages(u"  |  | ").isEmpty());
}

TEST(CommandLine, QuotedArgumentsComeBackUnchanged)
{
    const QStringList hostile {u"plain"_s, QString(), u"two words"_s, u"say \"hi\""_s, u"ends\\"_s,
        u"ends with blank\\"_s, u"\\\\server\\share"_s, u"a\\\"b"_s, u"$(touch x); rm -rf / | cat"_s,
        u"`id` & echo %PATH% > y"_s, u"中文 名.mp4"_s, u"tab\there"_s, u"\"\""_s, u"\\\"\\\\\""_s,
        u"'single'"_s, u"line\nbreak"_s};
    // Both forms: quoted where needed, and always in quotes as file names are written.
    for (const auto quote : {&QuoteArgument, &QuoteName}) {
        QStringList quoted {u"\"prog\""_s};
        for (const QString &arg : hostile)
            quoted.append(quote(arg));
        const QStringList back = SplitCommandLine(quoted.join(u' '));
        ASSERT_EQ(back.size(), hostile.size() + 1);
        EXPECT_EQ(back.mid(1), hostile);
    }
    EXPECT_EQ(QuoteArgument(u"plain"_s), u"plain"_s);
    EXPECT_EQ(QuoteName(u"plain"_s), u"\"plain\""_s);
    EXPECT_EQ(QuoteName(u"C:\\"_s), u"\"C:\\\\\""_s);
}

TEST(CommandLine, RandomArgumentsSurviveQuoting)
{
    QRandomGenerator random(7);
    const QString alphabet = u"ab \\\"|\t'$;x"_s;
    for (int round = 0; round < 2000; ++round) {
        QStringList args;
        const int count = random.bounded(1, 5);
        for (int i = 0; i < count; ++i) {
            QString arg;
            const int length = random.bounded(0, 8);
            for (int k = 0; k < length; ++k)
                arg.append(alphabet.at(random.bounded(alphabet.size())));
            args.append(arg);
        }
        QStringList line {u"p"_s};
        for (const QString &arg : args)
            line.append(QuoteArgument(arg));
        ASSERT_EQ(SplitCommandLine(line.join(u' ')).mid(1), args) << line.join(u' ').toStdString();
    }
}

TEST(CommandLine, LeadingQuoteStartsTheProgramDirectly)
{
    const ToolLaunch direct = PlanToolLaunch(u"\"/bin/echo\" \"a;b\" $HOME"_s);
    EXPECT_FALSE(direct.throughShell);
    EXPECT_EQ(direct.program, u"/bin/echo"_s);
    EXPECT_EQ(direct.arguments, (QStringList {u"a;b"_s, u"$HOME"_s}));

    const ToolLaunch shell = PlanToolLaunch(u"/bin/echo \"a;b\" $HOME"_s);
    EXPECT_TRUE(shell.throughShell);
    EXPECT_EQ(shell.program, u"/bin/sh"_s);
    EXPECT_EQ(shell.arguments, (QStringList {u"-c"_s, u"/bin/echo \"a;b\" $HOME"_s}));

    EXPECT_TRUE(PlanToolLaunch(u"   "_s).program.isEmpty());
    EXPECT_TRUE(PlanToolLaunch(u"\"\" x"_s).program.isEmpty());
}

TEST(CommandLine, PipelinesBecomeShellWordsThatCannotBeInterpreted)
{
    const ToolLaunch launch = PlanToolLaunch(u"\"/bin/printf\" \"%s\" \"it's $x\" | \"/usr/bin/tr\" a b"_s);
    EXPECT_EQ(launch.program, u"/bin/sh"_s);
    ASSERT_EQ(launch.arguments.size(), 2);
    EXPECT_EQ(launch.arguments[1], u"'/bin/printf' '%s' 'it'\\''s $x' | '/usr/bin/tr' 'a' 'b'"_s);
}

} // namespace
} // namespace qb::engine
