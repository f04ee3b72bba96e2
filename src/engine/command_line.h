// Command lines as the job engine receives them: one text, split into arguments by the quoting
// rules of the platform the commands were written for (blanks separate, double quotes group,
// backslashes escape only before a quote), and the plan that starts one on Linux.
#pragma once

#include <QString>
#include <QStringList>

namespace qb::engine {

// One stage of a command: a program and its arguments.
using CommandStage = QStringList;

// Splits a command line into its stages at every "|" outside quotes, and each stage into
// arguments. The first argument of a stage is a program name: quotes group it but backslashes are
// taken as they stand. Blank and tab separate arguments; other characters, line breaks included,
// belong to them. Inside quotes a doubled quote is one literal quote. Empty stages are dropped.
QList<CommandStage> SplitCommandStages(QStringView commandLine);

// All arguments of a command line that has no "|" outside quotes; with one, the stages'
// arguments one after the other.
QStringList SplitCommandLine(QStringView commandLine);

// Quotes an argument (not a program name) so that SplitCommandLine gives it back unchanged,
// whatever it holds; plain words stay as they are.
QString QuoteArgument(const QString &argument);

// An argument always in double quotes, as composed commands write file names, whatever it holds:
// SplitCommandLine gives it back unchanged.
QString QuoteName(const QString &argument);

// Quotes a text for /bin/sh so that the shell takes it as one word and interprets nothing in it.
QString QuoteForShell(const QString &text);

// How a command starts: directly (program and arguments) or through the shell.
struct ToolLaunch
{
    QString program;
    QStringList arguments;
    bool throughShell = false; // the command text itself is a shell command
};

// Starts a command's program directly, each argument exactly as split; with "|" stages it becomes
// a shell pipeline of words the shell cannot interpret. An empty command gives an empty program.
ToolLaunch PlanDirectLaunch(const QString &command);

// A command whose first character is a double quote starts its program directly, each argument
// exactly as split; with "|" stages it becomes a shell pipeline of words the shell cannot
// interpret. Any other command runs as "/bin/sh -c command". An empty or blank command gives an
// empty program.
ToolLaunch PlanToolLaunch(const QString &command);

} // namespace qb::engine
