// File lines of a directive file: the source on disk, the name in the cabinet and /parameters.
#include "cabmaker/directive_interpreter.h"

#include "cabmaker/directive_lexer.h"
#include "cabmaker/directive_paths.h"
#include "cabmaker/directive_values.h"

#include <QFile>
#include <QFileInfo>

#include <limits>

using namespace Qt::StringLiterals;

namespace qb::cabmaker {

namespace {

constexpr qint64 kTwoGiB = qint64(1) << 31;
constexpr qsizetype kMaxNameBytes = 255;

// "/name=value" with a name of letters.
bool isParameterToken(const QString &text)
{
    if (text.size() < 3 || text[0] != u'/')
        return false;
    qsizetype i = 1;
    while (i < text.size() && IsAsciiLetter(text[i]))
        ++i;
    return i > 1 && i < text.size() && text[i] == u'=';
}

} // namespace

void DirectiveInterpreter::runFileLine(const QString &line)
{
    const TokenList split = SplitTokens(line);
    if (!split.error.isEmpty()) {
        addError(split.error);
        return;
    }
    // The first token is always the source: a Linux path may well look like "/x=1".
    std::optional<QString> given;
    FileParameters parameters;
    QSet<QString> seen;
    for (qsizetype i = 1; i < split.tokens.size(); ++i) {
        const LineToken &token = split.tokens[i];
        if (!token.quoted && isParameterToken(token.text)) {
            if (!readParameter(token.text, parameters, seen))
                return;
            continue;
        }
        if (given) {
            addError(
                u"unexpected '%1' after the name in the cabinet (put a name with blanks in quotes)"_s.arg(
                    PrintableText(token.text)));
            return;
        }
        given = token.text;
    }

    const std::optional<QString> source = findSource(split.tokens.front().text);
    if (!source)
        return;
    const std::optional<QString> name = cabinetName(given, *source);
    if (!name)
        return;

    const QString key = name->toCaseFolded();
    const auto earlier = m_names.constFind(key);
    if (earlier != m_names.constEnd()) {
        if (parameters.unique.value_or(flag(u"UniqueFiles"))) {
            const QString where = earlier->file == m_file
                ? u"line %1"_s.arg(earlier->line)
                : u"%1 line %2"_s.arg(earlier->file, QString::number(earlier->line));
            addError(u"'%1' is already in the cabinet (%2)"_s.arg(PrintableText(*name), where));
            return;
        }
    } else {
        m_names.insert(key, NameUse {m_file, m_line});
    }

    const FolderSettings settings = currentSettings();
    if (!m_folderOpen || m_folders.isEmpty() || m_folders.last().settings != settings) {
        m_folders.append(PlannedFolder {settings, {}});
        m_folderOpen = true;
    }
    m_folders.last().files.append(PlannedFile {
        *source, *name, m_file, m_line, parameters.date, parameters.time, parameters.attributes});
}

bool DirectiveInterpreter::readParameter(
    const QString &token, FileParameters &parameters, QSet<QString> &seen)
{
    const qsizetype equals = token.indexOf(u'=');
    const QString written = token.mid(1, equals - 1);
    const QString key = written.toLower();
    const QString text = token.mid(equals + 1);
    if (seen.contains(key)) {
        addError(u"'/%1' is given twice"_s.arg(written));
        return false;
    }
    seen.insert(key);

    if (key == u"inf" || key == u"unique") {
        const std::optional<bool> on = ParseFlag(text);
        if (!on) {
            addError(u"/%1 must be ON or OFF, not '%2'"_s.arg(written, PrintableText(text)));
            return false;
        }
        if (key == u"unique")
            parameters.unique = on;
    } else if (key == u"date") {
        const std::optional<QString> date = NormalizeDate(text);
        if (!date) {
            addError(u"'%1' is not a date (/date=MM/DD/YYYY, from 1980 to 2107)"_s.arg(PrintableText(text)));
            return false;
        }
        parameters.date = *date;
    } else if (key == u"time") {
        const std::optional<QString> time = NormalizeTime(text);
        if (!time) {
            addError(u"'%1' is not a time (/time=HH:MM:SS, with a or p for a 12-hour clock)"_s.arg(
                PrintableText(text)));
            return false;
        }
        parameters.time = *time;
    } else if (key == u"attr") {
        const std::optional<QString> attributes = NormalizeAttributes(text);
        if (!attributes) {
            addError(
                u"'%1' is not a set of attributes (/attr= some of r, h, s, a)"_s.arg(PrintableText(text)));
            return false;
        }
        parameters.attributes = *attributes;
    } else if (key == u"size") {
        // Only a hint for sizing disks, which one cabinet does not need.
        if (!ParseWholeNumber(text, std::numeric_limits<qint64>::max())) {
            addError(u"'%1' is not a size in bytes (/size=number)"_s.arg(PrintableText(text)));
            return false;
        }
    } else {
        addError(u"unknown parameter '/%1'"_s.arg(written));
        return false;
    }
    return true;
}

std::optional<QString> DirectiveInterpreter::findSource(const QString &written)
{
    if (written.isEmpty()) {
        addError(u"the source file name is empty"_s);
        return std::nullopt;
    }
    const QString sourceDir = value(u"SourceDir");
    const QString base = sourceDir.isEmpty() ? m_currentFolder : AbsolutePathFrom(m_currentFolder, sourceDir);
    QString path = AbsolutePathFrom(base, written);
    if (path.contains(QChar(0))) {
        addError(u"'%1' is not a valid file name"_s.arg(PrintableText(path)));
        return std::nullopt;
    }
    QFileInfo info(path);
    // Directive files written on Windows separate folders with "\".
    if (!info.exists() && path.contains(u'\\')) {
        const QString slashed = TidyPath(QString(path).replace(u'\\', u'/'));
        const QFileInfo slashedInfo(slashed);
        if (slashedInfo.exists()) {
            path = slashed;
            info = slashedInfo;
        }
    }
    const QString shown = PrintableText(path);
    if (!info.exists()) {
        addError(u"cannot find '%1'"_s.arg(shown));
        return std::nullopt;
    }
    if (info.isDir()) {
        addError(u"'%1' is a folder, not a file"_s.arg(shown));
        return std::nullopt;
    }
    if (!info.isFile()) {
        addError(u"'%1' is not a regular file"_s.arg(shown));
        return std::nullopt;
    }
    if (info.size() >= kTwoGiB) {
        addError(u"'%1' is 2 GiB or larger; a cabinet cannot hold it"_s.arg(shown));
        return std::nullopt;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        addError(u"cannot read '%1'"_s.arg(shown));
        return std::nullopt;
    }
    file.close();
    return path;
}

std::optional<QString> DirectiveInterpreter::cabinetName(
    const std::optional<QString> &given, const QString &sourcePath)
{
    if (given && given->isEmpty()) {
        addError(u"the name in the cabinet is empty"_s);
        return std::nullopt;
    }
    QString name = given ? *given : sourcePath.section(u'/', -1);
    name.replace(u'/', u'\\');
    QString folder = value(u"DestinationDir");
    folder.replace(u'/', u'\\');
    if (!folder.isEmpty())
        name.prepend(folder.endsWith(u'\\') ? folder : folder + u'\\');

    // A name that starts at the cabinet's root ("\\sub\\a.txt", as a package added from a chosen
    // folder names its files) is stored from below the root: names in a cabinet are relative.
    while (name.startsWith(u'\\'))
        name.remove(0, 1);
    if (name.isEmpty()) {
        addError(u"the name in the cabinet is empty"_s);
        return std::nullopt;
    }
    const QString shown = PrintableText(name);
    if ((name.size() >= 2 && IsAsciiLetter(name[0]) && name[1] == u':')) {
        addError(u"'%1' is an absolute name; a name in the cabinet must be relative"_s.arg(shown));
        return std::nullopt;
    }
    const QStringList parts = name.split(u'\\');
    if (parts.contains(u".."_s)) {
        addError(u"'%1' climbs out with '..'; a name in the cabinet must stay inside it"_s.arg(shown));
        return std::nullopt;
    }
    if (parts.contains(QString()) || parts.contains(u"."_s)) {
        addError(u"'%1' has an empty or '.' part"_s.arg(shown));
        return std::nullopt;
    }
    // Any other character is fine: a cabinet stores every byte but NUL, and Linux names may hold
    // tabs and line ends.
    if (name.contains(QChar(0))) {
        addError(u"'%1' holds a NUL character"_s.arg(shown));
        return std::nullopt;
    }
    if (name.toUtf8().size() > kMaxNameBytes) {
        addError(u"'%1' is longer than %2 bytes in UTF-8"_s.arg(shown, QString::number(kMaxNameBytes)));
        return std::nullopt;
    }
    return name;
}

} // namespace qb::cabmaker
