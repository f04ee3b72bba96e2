// Commands as composers hand them over.
#include "engine/tool_command.h"

namespace qb::engine {

QString CommandText(const ToolCommand &command)
{
    QString text = u'"' + command.program + u'"';
    for (const QString &argument : command.arguments)
        text += u' ' + QuoteArgument(argument);
    return text;
}

ComposedCommand::ComposedCommand(const QString &commandText)
    : text(commandText)
    , launch(PlanToolLaunch(commandText))
{ }

ComposedCommand::ComposedCommand(const ToolCommand &command)
    : text(CommandText(command))
    , launch {command.program, command.arguments, false}
{ }

} // namespace qb::engine
