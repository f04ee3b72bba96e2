// Splitting and quoting of command lines.
#include "engine/command_line.h"

namespace qb::engine {

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

// Reads one stage starting at pos; stops behind the "|" that ends it, or at the end.
CommandStage readStage(QStringView text, qsizetype &pos)
{
    CommandStage stage;
    const qsizetype n = text.size();
    bool programDone = false;
    while (pos < n) {
        while (pos < n && isBlank(text[pos]))
            ++pos;
        if (pos >= n)
            break;
        if (text[pos] == u'|') {
            ++pos;
            return stage;
        }
        QString arg;
        bool inQuotes = false;
        if (!programDone) {
            // A program name: quotes toggle, backslashes are plain characters.
            while (pos < n) {
                const QChar c = text[pos];
                if (c == u'"') {
                    inQuotes = !inQuotes;
                    ++pos;
                    continue;
                }
                if (!inQuotes && (isBlank(c) || c == u'|'))
                    break;
                arg.append(c);
                ++pos;
            }
            programDone = true;
            stage.append(arg);
            continue;
        }
        while (pos < n) {
            const QChar c = text[pos];
            if (c == u'\\') {
                qsizetype slashes = 0;
                while (pos < n && text[pos] == u'\\') {
                    ++slashes;
                    ++pos;
                }
                if (pos < n && text[pos] == u'"') {
                    arg.append(QString(slashes / 2, u'\\'));
                    if (slashes % 2 == 1) {
                        arg.append(u'"');
                        ++pos;
                    }
                    // An even count leaves the quote to be read as a quote below.
                } else {
                    arg.append(QString(slashes, u'\\'));
                }
                continue;
            }
            if (c == u'"') {
                if (inQuotes && pos + 1 < n && text[pos + 1] == u'"') {
                    arg.append(u'"');
                    pos += 2;
                    continue;
                }
                inQuotes = !inQuotes;
                ++pos;
                continue;
            }
            if (!inQuotes && (isBlank(c) || c == u'|'))
                break;
            arg.append(c);
            ++pos;
        }
        stage.append(arg);
    }
    return stage;
}

} // namespace

QList<CommandStage> SplitCommandStages(QStringView commandLine)
{
    QList<CommandStage> stages;
    qsizetype pos = 0;
    while (pos < commandLine.size()) {
        CommandStage stage = readStage(commandLine, pos);
        if (!stage.isEmpty())
            stages.append(std::move(stage));
    }
    return stages;
}

QStringList SplitCommandLine(QStringView commandLine)
{
    QStringList all;
    for (const CommandStage &stage : SplitCommandStages(commandLine))
        all.append(stage);
    return all;
}

QString QuoteName(const QString &argument)
{
    const QString quoted = QuoteArgument(argument);
    if (quoted.startsWith(u'"'))
        return quoted;
    // A plain word; backslashes before the closing quote would escape it, doubled they stand for
    // themselves.
    qsizetype tail = 0;
    while (tail < quoted.size() && quoted.at(quoted.size() - 1 - tail) == u'\\')
        ++tail;
    return u'"' + quoted + QString(tail, u'\\') + u'"';
}

QString QuoteArgument(const QString &argument)
{
    bool plain = !argument.isEmpty();
    for (const QChar c : argument) {
        if (isBlank(c) || c == u'"' || c == u'|') {
            plain = false;
            break;
        }
    }
    if (plain)
        return argument;
    QString quoted = QStringLiteral("\"");
    qsizetype slashes = 0;
    for (const QChar c : argument) {
        if (c == u'\\') {
            ++slashes;
            continue;
        }
        if (c == u'"') {
            // Backslashes before a quote double, and the quote itself is escaped.
            quoted.append(QString(slashes * 2 + 1, u'\\'));
            quoted.append(u'"');
        } else {
            quoted.append(QString(slashes, u'\\'));
            quoted.append(c);
        }
        slashes = 0;
    }
    // Backslashes before the closing quote double too.
    quoted.append(QString(slashes * 2, u'\\'));
    quoted.append(u'"');
    return quoted;
}

QString QuoteForShell(const QString &text)
{
    QString quoted = QStringLiteral("'");
    for (const QChar c : text) {
        if (c == u'\'')
            quoted.append(QStringLiteral("'\\''"));
        else
            quoted.append(c);
    }
    quoted.append(u'\'');
    return quoted;
}

ToolLaunch PlanToolLaunch(const QString &command)
{
    if (command.trimmed().isEmpty())
        return {};
    if (command.startsWith(u'"'))
        return PlanDirectLaunch(command);
    ToolLaunch launch;
    launch.program = QStringLiteral("/bin/sh");
    launch.arguments = {QStringLiteral("-c"), command};
    launch.throughShell = true;
    return launch;
}

ToolLaunch PlanDirectLaunch(const QString &command)
{
    ToolLaunch launch;
    const QList<CommandStage> stages = SplitCommandStages(command);
    if (stages.isEmpty() || stages.first().first().isEmpty())
        return launch;
    if (stages.size() == 1) {
        launch.program = stages.first().first();
        launch.arguments = stages.first().mid(1);
        return launch;
    }
    QStringList pipeline;
    for (const CommandStage &stage : stages) {
        QStringList words;
        for (const QString &word : stage)
            words.append(QuoteForShell(word));
        pipeline.append(words.join(u' '));
    }
    launch.program = QStringLiteral("/bin/sh");
    launch.arguments = {QStringLiteral("-c"), pipeline.join(QStringLiteral(" | "))};
    return launch;
}

} // namespace qb::engine
