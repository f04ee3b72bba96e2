// The standard variables of directive files and the checks on their values and on /parameters.
#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <QtGlobal>

#include <optional>

namespace qb::cabmaker {

enum class VariableKind {
    Text, // any value
    Flag, // ON/OFF and friends
    Number, // whole number up to maxNumber
    Size, // whole number or a disk size name
    CompressionType,
    CompressionMemory,
    LzxLevel,
    Cabinet, // a flag that must stay ON
    NoEffect, // accepted as it is and ignored
};

struct StandardVariable
{
    const char16_t *name;
    const char16_t *defaultValue; // nullptr: not set until a directive sets it
    VariableKind kind;
    qint64 maxNumber;
};

// The standard variable of that name in any case, or nullptr. Any other name that starts with
// "Inf" is a standard variable without effect.
const StandardVariable *FindStandardVariable(QStringView name);

// Every standard variable with its own name, for setting the defaults.
QList<const StandardVariable *> StandardVariables();

// Empty when the value suits the variable; otherwise the message, naming the variable as written.
QString CheckVariableValue(const StandardVariable &variable, QStringView name, QStringView value);

// ON/YES/TRUE/1 and OFF/NO/FALSE/0 in any case, blanks around allowed.
std::optional<bool> ParseFlag(QStringView value);

// Digits only (blanks around allowed), no sign, at most max.
std::optional<qint64> ParseWholeNumber(QStringView value, qint64 max);

// A whole number or one of the disk size names CDROM, 1.44M, 1.2M, 720K, 360K (any case).
std::optional<qint64> ParseSize(QStringView value);

// "/date=M/D/YYYY" or "M/D/YY" from 1980 to 2107 (what a cabinet can store) → "MM/DD/YYYY".
std::optional<QString> NormalizeDate(QStringView value);

// "/time=H:MM[:SS]", 24-hour, or 12-hour with a trailing "a", "p", "am" or "pm" → "HH:MM:SS".
std::optional<QString> NormalizeTime(QStringView value);

// "/attr=" letters r, h, s, a in any order and case → the ones given, in the order "rhsa".
std::optional<QString> NormalizeAttributes(QStringView value);

} // namespace qb::cabmaker
