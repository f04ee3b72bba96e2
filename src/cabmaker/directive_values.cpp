// The standard variables of directive files and the checks on their values and on /parameters.
#include "cabmaker/directive_values.h"

#include <QDate>
#include <QStringList>

#include <limits>

using namespace Qt::StringLiterals;

namespace qb::cabmaker {

namespace {

constexpr qint64 kAnyNumber = std::numeric_limits<qint64>::max();
constexpr qint64 kAnyInt = std::numeric_limits<int>::max();

using enum VariableKind;

const StandardVariable kVariables[] = {
    {u"CabinetNameTemplate", u"*.cab", Text, 0},
    {u"DiskDirectoryTemplate", u"DISK*", Text, 0},
    {u"DiskDirectory1", nullptr, Text, 0},
    {u"CompressionType", u"MSZIP", CompressionType, 0},
    {u"CompressionMemory", u"21", CompressionMemory, 0},
    {u"LZXLevel", u"", LzxLevel, 0},
    {u"Compress", u"ON", Flag, 0},
    {u"Cabinet", u"ON", Cabinet, 0},
    {u"MaxCabinetSize", u"0", Size, 0},
    {u"MaxDiskSize", u"0", Size, 0},
    {u"UniqueFiles", u"ON", Flag, 0},
    {u"FolderFileCountThreshold", u"0", Number, kAnyInt},
    {u"FolderSizeThreshold", u"0", Number, kAnyNumber},
    {u"SourceDir", u"", Text, 0},
    {u"DestinationDir", u"", Text, 0},
    {u"InfFileName", u"setup.inf", Text, 0},
    {u"RptFileName", u"setup.rpt", Text, 0},
    {u"GenerateInf", u"ON", Flag, 0},
    // Disk layout, reserved space and the like mean nothing for one cabinet written here; they are
    // taken so that directive files written for other tools still run.
    {u"CabinetFileCountThreshold", nullptr, NoEffect, 0},
    {u"ClusterSize", nullptr, NoEffect, 0},
    {u"CompressedFileExtensionChar", nullptr, NoEffect, 0},
    {u"CompressionLevel", nullptr, NoEffect, 0},
    {u"DiskLabelTemplate", nullptr, NoEffect, 0},
    {u"DiskLabel1", nullptr, NoEffect, 0},
    {u"DoNotCopyFiles", nullptr, NoEffect, 0},
    {u"MaxDiskFileCount", nullptr, NoEffect, 0},
    {u"MaxErrors", nullptr, NoEffect, 0},
    {u"ReservePerCabinetSize", nullptr, NoEffect, 0},
    {u"ReservePerDataBlockSize", nullptr, NoEffect, 0},
    {u"ReservePerFolderSize", nullptr, NoEffect, 0},
};

// Stands for every "Inf..." name that the table does not hold.
const StandardVariable kInfVariable = {u"Inf", nullptr, NoEffect, 0};

struct SizeName
{
    const char16_t *name;
    qint64 bytes;
};

const SizeName kSizeNames[] = {
    {u"CDROM", 681574400},
    {u"1.44M", 1457664},
    {u"1.2M", 1213952},
    {u"720K", 730112},
    {u"360K", 362496},
};

QStringView trimBlanks(QStringView text)
{
    while (!text.isEmpty() && (text.front() == u' ' || text.front() == u'\t'))
        text = text.sliced(1);
    while (!text.isEmpty() && (text.back() == u' ' || text.back() == u'\t'))
        text.chop(1);
    return text;
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// One or two digits, for the parts of dates and times.
std::optional<int> smallNumber(QStringView text)
{
    if (text.isEmpty() || text.size() > 2)
        return std::nullopt;
    const std::optional<qint64> value = ParseWholeNumber(text, 99);
    if (!value || text.front() == u' ' || text.back() == u' ')
        return std::nullopt;
    return int(*value);
}

bool equalsIgnoringCase(QStringView a, QStringView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

const StandardVariable *FindStandardVariable(QStringView name)
{
    for (const StandardVariable &variable : kVariables) {
        if (equalsIgnoringCase(name, QStringView(variable.name)))
            return &variable;
    }
    if (name.startsWith(u"Inf", Qt::CaseInsensitive))
        return &kInfVariable;
    return nullptr;
}

QList<const StandardVariable *> StandardVariables()
{
    QList<const StandardVariable *> list;
    for (const StandardVariable &variable : kVariables)
        list.append(&variable);
    return list;
}

QString CheckVariableValue(const StandardVariable &variable, QStringView name, QStringView value)
{
    switch (variable.kind) {
    case Text:
    case NoEffect:
        return {};
    case Flag:
        if (ParseFlag(value))
            return {};
        return u"%1 must be ON or OFF, not '%2'"_s.arg(name, value);
    case Cabinet: {
        const std::optional<bool> on = ParseFlag(value);
        if (!on)
            return u"%1 must be ON or OFF, not '%2'"_s.arg(name, value);
        if (!*on)
            return u"Cabinet=OFF (copying files without a cabinet) is not supported"_s;
        return {};
    }
    case Number:
        if (ParseWholeNumber(value, variable.maxNumber))
            return {};
        return u"%1 must be a whole number from 0 to %2, not '%3'"_s.arg(
            name, QString::number(variable.maxNumber), value);
    case Size:
        if (ParseSize(value))
            return {};
        return u"%1 must be a whole number or one of CDROM, 1.44M, 1.2M, 720K, 360K, not '%2'"_s.arg(
            name, value);
    case CompressionType: {
        const QStringView type = trimBlanks(value);
        if (equalsIgnoringCase(type, u"NONE") || equalsIgnoringCase(type, u"MSZIP")
            || equalsIgnoringCase(type, u"LZX"))
            return {};
        if (equalsIgnoringCase(type, u"QUANTUM"))
            return u"Quantum compression is not supported"_s;
        return u"%1 must be NONE, MSZIP or LZX, not '%2'"_s.arg(name, value);
    }
    case CompressionMemory: {
        const std::optional<qint64> bits = ParseWholeNumber(value, 21);
        if (bits && *bits >= 15)
            return {};
        return u"%1 must be a number from 15 to 21, not '%2'"_s.arg(name, value);
    }
    case LzxLevel: {
        if (trimBlanks(value).isEmpty())
            return {};
        const std::optional<qint64> level = ParseWholeNumber(value, 9);
        if (level && *level >= 1)
            return {};
        return u"%1 must be empty or a number from 1 to 9, not '%2'"_s.arg(name, value);
    }
    }
    return {};
}

std::optional<bool> ParseFlag(QStringView value)
{
    const QStringView word = trimBlanks(value);
    for (QStringView on : {u"ON", u"YES", u"TRUE", u"1"}) {
        if (equalsIgnoringCase(word, on))
            return true;
    }
    for (QStringView off : {u"OFF", u"NO", u"FALSE", u"0"}) {
        if (equalsIgnoringCase(word, off))
            return false;
    }
    return std::nullopt;
}

std::optional<qint64> ParseWholeNumber(QStringView value, qint64 max)
{
    const QStringView digits = trimBlanks(value);
    if (digits.isEmpty())
        return std::nullopt;
    qint64 number = 0;
    for (QChar c : digits) {
        if (!isDigit(c))
            return std::nullopt;
        const int digit = c.unicode() - u'0';
        if (number > (max - digit) / 10)
            return std::nullopt;
        number = number * 10 + digit;
    }
    return number;
}

std::optional<qint64> ParseSize(QStringView value)
{
    const QStringView word = trimBlanks(value);
    for (const SizeName &size : kSizeNames) {
        if (equalsIgnoringCase(word, QStringView(size.name)))
            return size.bytes;
    }
    return ParseWholeNumber(word, kAnyNumber);
}

std::optional<QString> NormalizeDate(QStringView value)
{
    const QList<QStringView> parts = trimBlanks(value).split(u'/');
    if (parts.size() != 3 || (parts[2].size() != 2 && parts[2].size() != 4))
        return std::nullopt;
    const std::optional<int> month = smallNumber(parts[0]);
    const std::optional<int> day = smallNumber(parts[1]);
    std::optional<qint64> year = ParseWholeNumber(parts[2], 9999);
    if (!month || !day || !year || parts[2].front() == u' ' || parts[2].back() == u' ')
        return std::nullopt;
    // Two digits: 80..99 are the 1900s, the rest the 2000s, as old directive files mean them.
    if (parts[2].size() == 2)
        year = *year + (*year < 80 ? 2000 : 1900);
    if (*year < 1980 || *year > 2107 || !QDate::isValid(int(*year), *month, *day))
        return std::nullopt;
    return u"%1/%2/%3"_s.arg(*month, 2, 10, QLatin1Char('0')).arg(*day, 2, 10, QLatin1Char('0')).arg(*year);
}

std::optional<QString> NormalizeTime(QStringView value)
{
    QStringView text = trimBlanks(value);
    int twelveHour = 0; // 0: 24-hour clock, 1: a.m., 2: p.m.
    if (text.endsWith(u"m", Qt::CaseInsensitive))
        text.chop(1);
    if (text.endsWith(u"a", Qt::CaseInsensitive))
        twelveHour = 1;
    else if (text.endsWith(u"p", Qt::CaseInsensitive))
        twelveHour = 2;
    else if (text.size() != trimBlanks(value).size())
        return std::nullopt; // an "m" with no "a" or "p" before it
    if (twelveHour != 0)
        text = trimBlanks(text.chopped(1));

    const QList<QStringView> parts = text.split(u':');
    if (parts.size() < 2 || parts.size() > 3)
        return std::nullopt;
    std::optional<int> hour = smallNumber(parts[0]);
    const std::optional<int> minute = smallNumber(parts[1]);
    const std::optional<int> second = parts.size() < 3 ? std::optional<int>(0) : smallNumber(parts[2]);
    if (!hour || !minute || !second || *minute > 59 || *second > 59)
        return std::nullopt;
    if (twelveHour != 0) {
        if (*hour < 1 || *hour > 12)
            return std::nullopt;
        hour = *hour % 12 + (twelveHour == 2 ? 12 : 0);
    } else if (*hour > 23) {
        return std::nullopt;
    }
    return u"%1:%2:%3"_s.arg(*hour, 2, 10, QLatin1Char('0'))
        .arg(*minute, 2, 10, QLatin1Char('0'))
        .arg(*second, 2, 10, QLatin1Char('0'));
}

std::optional<QString> NormalizeAttributes(QStringView value)
{
    static constexpr char16_t kOrder[] = u"rhsa";
    const QStringView letters = trimBlanks(value);
    if (letters.isEmpty())
        return std::nullopt;
    bool seen[4] = {false, false, false, false};
    for (QChar c : letters) {
        const qsizetype index = QStringView(kOrder, 4).indexOf(c.toLower());
        if (index < 0)
            return std::nullopt;
        seen[index] = true;
    }
    QString normal;
    for (int i = 0; i < 4; ++i) {
        if (seen[i])
            normal.append(QChar(kOrder[i]));
    }
    return normal;
}

} // namespace qb::cabmaker
