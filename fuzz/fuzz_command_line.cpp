// Splits arbitrary command lines; every argument it finds must survive being quoted and split again.
#include "engine/command_line.h"
#include "fuzz_check.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString line = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QList<qb::engine::CommandStage> stages = qb::engine::SplitCommandStages(line);
    for (const qb::engine::CommandStage &stage : stages) {
        check(!stage.isEmpty());
        QStringList requoted {QStringLiteral("p")};
        for (qsizetype i = 1; i < stage.size(); ++i)
            requoted.append(qb::engine::QuoteArgument(stage[i]));
        const QStringList back = qb::engine::SplitCommandLine(requoted.join(u' '));
        check(back.mid(1) == stage.mid(1));
    }
    // Only a leading quote keeps the shell out; a single stage then starts exactly as split.
    const qb::engine::ToolLaunch launch = qb::engine::PlanToolLaunch(line);
    if (line.trimmed().isEmpty()) {
        check(launch.program.isEmpty());
    } else if (!line.startsWith(u'"')) {
        check(launch.throughShell && launch.arguments.size() == 2 && launch.arguments[1] == line);
    } else if (stages.size() == 1 && !stages[0][0].isEmpty()) {
        check(!launch.throughShell && launch.program == stages[0][0] && launch.arguments == stages[0].mid(1));
    }
    return 0;
}
