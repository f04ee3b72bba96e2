// The seam between composers and the runner. A composer is pure: it turns a job's settings into a
// program and its arguments and starts nothing. The runner starts those arguments exactly as they
// are; one command-line text is made of them only where hosts see a text (the script event, the
// command line, the test batch).
#pragma once

#include "engine/command_line.h"

#include <QString>
#include <QStringList>

namespace qb::engine {

struct ToolCommand
{
    QString program;
    QStringList arguments;
};

// The text of a command: the program in quotes, then each argument quoted where it must be, so
// that the command-line rules give back the same arguments. (A program name holding a quote has
// no such text; it is shown as it is.)
QString CommandText(const ToolCommand &command);

// A command as the runner takes it: how it starts and the text hosts see.
struct ComposedCommand
{
    ComposedCommand() = default;
    // A command text, as hosts and templates write them: it starts by the command-line rules.
    ComposedCommand(const QString &commandText);
    // Program and arguments: they start exactly as they are.
    ComposedCommand(const ToolCommand &command);

    QString text;
    ToolLaunch launch;
};

} // namespace qb::engine
