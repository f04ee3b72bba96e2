// Runs directive files line by line and gathers what they ask for into one build plan.
#include "cabmaker/directive_interpreter.h"

#include "cabmaker/directive_lexer.h"
#include "cabmaker/directive_paths.h"
#include "cabmaker/directive_values.h"
#include "util/code_page.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace qb::cabmaker {

namespace {

constexpr qint64 kMaxDirectiveFileBytes = qint64(64) << 20;

} // namespace

DirectiveInterpreter::DirectiveInterpreter()
{
    setCurrentFolder(QDir::currentPath());
    for (const StandardVariable *standard : StandardVariables()) {
        if (standard->defaultValue == nullptr)
            continue;
        m_variables.insert(QString::fromUtf16(standard->name).toLower(),
            Variable {QString::fromUtf16(standard->defaultValue), {}, 0});
    }
}

void DirectiveInterpreter::setCurrentFolder(const QString &folder)
{
    m_currentFolder = AbsolutePathFrom(QDir::currentPath(), folder);
}

void DirectiveInterpreter::setOutputFolder(const QString &folder)
{
    m_outputFolder = folder;
}

bool DirectiveInterpreter::define(const QString &name, const QString &value)
{
    m_finished = false;
    m_file.clear();
    m_line = 0;
    if (!IsValidVariableName(name)) {
        addError(u"'%1' is not a valid variable name"_s.arg(PrintableText(name)));
        return false;
    }
    return setVariable(name, value, false);
}

bool DirectiveInterpreter::run(const QByteArray &text, const QString &fileName)
{
    m_finished = false;
    m_file = fileName;
    m_line = 0;
    m_runFailed = false;

    QString decoded = util::DecodeCodePage(text, 0);
    // Editors on Windows like to start a UTF-8 file with a byte order mark.
    if (decoded.startsWith(QChar(0xfeff)))
        decoded.remove(0, 1);
    const QStringList lines = SplitDirectiveLines(decoded);

    bool anyContent = false;
    for (qsizetype i = 0; i < lines.size() && m_errors.size() < kMaxErrors; ++i) {
        if (IsIgnorableLine(lines[i]))
            continue;
        anyContent = true;
        m_line = int(std::min<qsizetype>(i + 1, std::numeric_limits<int>::max()));
        runLine(lines[i]);
    }
    m_line = 0;
    if (!anyContent)
        addError(u"the directive file is empty"_s);
    return !m_runFailed;
}

bool DirectiveInterpreter::runFile(const QString &path)
{
    m_finished = false;
    m_file = path;
    m_line = 0;
    // Qt refuses (and complains aloud about) a path with a NUL in it, so it never gets that far.
    if (path.isEmpty() || path.contains(QChar(0))) {
        addError(u"cannot read the directive file"_s);
        return false;
    }
    const QFileInfo info(path);
    if (!info.exists()) {
        addError(u"cannot find the directive file"_s);
        return false;
    }
    if (info.isDir()) {
        addError(u"the directive file is a folder"_s);
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        addError(u"cannot read the directive file"_s);
        return false;
    }
    // Read one byte past the limit so that a pipe or a huge file is caught without reading it all.
    const QByteArray bytes = file.read(kMaxDirectiveFileBytes + 1);
    if (bytes.size() > kMaxDirectiveFileBytes) {
        addError(u"the directive file is larger than 64 MiB"_s);
        return false;
    }
    return run(bytes, path);
}

bool DirectiveInterpreter::finish()
{
    if (m_finished)
        return m_finishResult;
    m_file.clear();
    m_line = 0;
    if (m_folders.isEmpty())
        addError(u"no files to put in the cabinet"_s);
    const Variable name = m_variables.value(u"cabinetnametemplate"_s);
    if (name.value.isEmpty() || name.value.endsWith(u'/')) {
        m_file = name.file;
        m_line = name.line;
        addError(u"CabinetNameTemplate does not name a file: '%1'"_s.arg(PrintableText(name.value)));
    }
    m_finished = true;
    m_finishResult = m_errors.isEmpty();
    return m_finishResult;
}

BuildPlan DirectiveInterpreter::plan() const
{
    BuildPlan plan;
    plan.folders = m_folders;
    plan.folderSizeThreshold
        = ParseWholeNumber(value(u"FolderSizeThreshold"), std::numeric_limits<qint64>::max()).value_or(0);
    plan.folderFileCountThreshold = int(
        ParseWholeNumber(value(u"FolderFileCountThreshold"), std::numeric_limits<int>::max()).value_or(0));
    const qint64 cabinetSize = ParseSize(value(u"MaxCabinetSize")).value_or(0);
    const qint64 diskSize = ParseSize(value(u"MaxDiskSize")).value_or(0);
    plan.maxCabinetSize = cabinetSize == 0 ? diskSize
        : diskSize == 0                    ? cabinetSize
                                           : std::min(cabinetSize, diskSize);

    // DiskDirectory1 wins even when empty: that is how a full path in CabinetNameTemplate is kept
    // out of any disk folder.
    const std::optional<QString> firstDisk = variable(u"DiskDirectory1"_s);
    const QString disk = firstDisk ? *firstDisk : value(u"DiskDirectoryTemplate").replace(u'*', u'1');
    const QString diskFolder = disk.isEmpty() ? outputFolder() : AbsolutePathFrom(outputFolder(), disk);
    const QString cabinet = value(u"CabinetNameTemplate").replace(u'*', u'1');
    plan.cabinetPath = cabinet.isEmpty() ? QString() : AbsolutePathFrom(diskFolder, cabinet);
    plan.diskFolder = diskFolder;

    plan.infPath = flag(u"GenerateInf") ? sideFile(value(u"InfFileName")) : QString();
    plan.rptPath = sideFile(value(u"RptFileName"));
    return plan;
}

void DirectiveInterpreter::runLine(const QString &rawLine)
{
    const Expansion expanded
        = ExpandVariables(StripComment(rawLine), [this](const QString &name) { return variable(name); });
    if (!expanded.error.isEmpty()) {
        addError(PrintableText(expanded.error));
        return;
    }
    if (IsIgnorableLine(expanded.text))
        return;
    if (IsDirectiveLine(expanded.text))
        runDirective(expanded.text);
    else
        runFileLine(expanded.text);
}

void DirectiveInterpreter::runDirective(const QString &line)
{
    const DirectiveWords words = SplitDirective(line);
    const QString keyword = words.keyword.toLower();
    if (keyword == u"option") {
        if (words.rest.compare(u"EXPLICIT", Qt::CaseInsensitive) == 0)
            m_explicit = true;
        else
            addError(u"unknown option '%1' (only EXPLICIT is known)"_s.arg(PrintableText(words.rest)));
    } else if (keyword == u"set" || keyword == u"define") {
        const bool isSet = keyword == u"set";
        const Assignment assignment = ReadAssignment(words.rest, isSet ? u".Set" : u".Define");
        if (!assignment.error.isEmpty())
            addError(PrintableText(assignment.error));
        else
            setVariable(assignment.name, assignment.value, isSet);
    } else if (keyword == u"new") {
        const QString what = words.rest.toLower();
        if (what == u"folder")
            m_folderOpen = false;
        else if (what == u"cabinet" || what == u"disk")
            addError(u"spanning several cabinets is not supported"_s);
        else
            addError(u"unknown .New '%1' (Folder, Cabinet or Disk)"_s.arg(PrintableText(words.rest)));
    } else {
        addError(u"unknown directive '.%1'"_s.arg(PrintableText(words.keyword)));
    }
}

bool DirectiveInterpreter::setVariable(const QString &name, const QString &value, bool explicitCheck)
{
    const QString key = name.toLower();
    const StandardVariable *standard = FindStandardVariable(name);
    if (standard == nullptr && explicitCheck && m_explicit && !m_variables.contains(key)) {
        addError(u"unknown variable '%1' (.Option EXPLICIT is on)"_s.arg(name));
        return false;
    }
    if (standard != nullptr) {
        const QString problem = CheckVariableValue(*standard, name, value);
        if (!problem.isEmpty()) {
            addError(PrintableText(problem));
            return false;
        }
        if (standard->kind == VariableKind::NoEffect && !m_warnedVariables.contains(key)) {
            m_warnedVariables.insert(key);
            addWarning(u"%1 has no effect here and is ignored"_s.arg(name));
        }
    }
    m_variables.insert(key, Variable {value, m_file, m_line});
    return true;
}

std::optional<QString> DirectiveInterpreter::variable(const QString &name) const
{
    const auto found = m_variables.constFind(name.toLower());
    if (found == m_variables.constEnd())
        return std::nullopt;
    return found->value;
}

QString DirectiveInterpreter::value(const char16_t *name) const
{
    return m_variables.value(QString::fromUtf16(name).toLower()).value;
}

bool DirectiveInterpreter::flag(const char16_t *name) const
{
    return ParseFlag(value(name)).value_or(true);
}

FolderSettings DirectiveInterpreter::currentSettings() const
{
    FolderSettings settings;
    const QString type = value(u"CompressionType").trimmed();
    if (!flag(u"Compress") || type.compare(u"NONE", Qt::CaseInsensitive) == 0) {
        settings.kind = CompressionKind::None;
    } else if (type.compare(u"LZX", Qt::CaseInsensitive) == 0) {
        settings.kind = CompressionKind::Lzx;
        settings.lzxWindowBits = int(ParseWholeNumber(value(u"CompressionMemory"), 21).value_or(21));
        settings.lzxLevel = int(ParseWholeNumber(value(u"LZXLevel"), 9).value_or(-1));
    }
    return settings;
}

QString DirectiveInterpreter::outputFolder() const
{
    return m_outputFolder.isEmpty() ? m_currentFolder : AbsolutePathFrom(m_currentFolder, m_outputFolder);
}

QString DirectiveInterpreter::sideFile(const QString &name) const
{
    if (name.isEmpty() || name.compare(u"NUL", Qt::CaseInsensitive) == 0)
        return {};
    return AbsolutePathFrom(m_currentFolder, name);
}

void DirectiveInterpreter::addError(const QString &message)
{
    m_runFailed = true;
    if (m_errors.size() < kMaxErrors)
        m_errors.append(DirectiveError {m_file, m_line, message});
}

void DirectiveInterpreter::addWarning(const QString &message)
{
    m_warnings.append(DirectiveError {m_file, m_line, message}.toString());
}

} // namespace qb::cabmaker
