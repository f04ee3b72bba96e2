// Runs directive files line by line and gathers what they ask for into one build plan.
#pragma once

#include "cabmaker/directive_plan.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace qb::cabmaker {

class DirectiveInterpreter
{
public:
    // No more errors are kept after this many; reading stops there as well.
    static constexpr qsizetype kMaxErrors = 100;

    DirectiveInterpreter();

    // Where relative source paths, SourceDir, InfFileName and RptFileName start.
    // Default QDir::currentPath().
    void setCurrentFolder(const QString &folder);
    // The base of the disk folders and of a relative cabinet name; default the current folder.
    void setOutputFolder(const QString &folder);

    // Sets a variable as /D name=value does: like .Set before the first file, without the
    // .Option EXPLICIT check. False, with an error that has no file, when the name or value is bad.
    bool define(const QString &name, const QString &value);

    // Runs one directive file's text (UTF-8, or code page 936 when it is not valid UTF-8). All state
    // carries over to the next call, so several files make one cabinet. False when this text had
    // errors; they are in errors(), each with fileName and a line number.
    bool run(const QByteArray &text, const QString &fileName);
    // Reads a directive file and runs it; a file that cannot be read is an error.
    bool runFile(const QString &path);

    // Final checks after the last run: there must be a file, and the cabinet name must name one.
    // True when no error at all has been found, in any run or here.
    bool finish();
    // The plan from everything run so far; only meaningful when finish() returned true.
    BuildPlan plan() const;

    const QList<DirectiveError> &errors() const { return m_errors; }
    // Each one "FILE(LINE): message", like DirectiveError::toString().
    const QStringList &warnings() const { return m_warnings; }

private:
    struct Variable
    {
        QString value;
        QString file; // where it was last set, for messages; empty for defaults and /D
        int line = 0;
    };
    struct NameUse
    {
        QString file;
        int line = 0;
    };
    struct FileParameters
    {
        std::optional<bool> unique;
        QString date, time, attributes;
    };

    void runLine(const QString &rawLine);
    void runDirective(const QString &line);
    void runFileLine(const QString &line);
    bool readParameter(const QString &token, FileParameters &parameters, QSet<QString> &seen);
    std::optional<QString> findSource(const QString &written);
    std::optional<QString> cabinetName(const std::optional<QString> &given, const QString &sourcePath);
    bool setVariable(const QString &name, const QString &value, bool explicitCheck);

    std::optional<QString> variable(const QString &name) const;
    QString value(const char16_t *name) const;
    bool flag(const char16_t *name) const;
    FolderSettings currentSettings() const;
    QString outputFolder() const;
    QString sideFile(const QString &name) const;

    void addError(const QString &message);
    void addWarning(const QString &message);

    QHash<QString, Variable> m_variables; // by lower-case name
    bool m_explicit = false;
    QString m_currentFolder;
    QString m_outputFolder; // empty: the current folder
    QList<PlannedFolder> m_folders;
    bool m_folderOpen = false;
    QHash<QString, NameUse> m_names; // case-folded names already in the cabinet
    QSet<QString> m_warnedVariables;
    QList<DirectiveError> m_errors;
    QStringList m_warnings;
    bool m_finished = false;
    bool m_finishResult = false;
    // Where the line being read comes from, for messages.
    QString m_file;
    int m_line = 0;
    bool m_runFailed = false;
};

} // namespace qb::cabmaker
