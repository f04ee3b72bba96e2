// The error table of the cabinet reader and libmspack's codes mapped onto it.
#include "cabinet/cab_errors.h"

#include <mspack.h>

#include <array>
#include <utility>

namespace qb::cabinet {

namespace {

struct ErrorRow
{
    long number;
    const char *text;
};

constexpr std::array kErrorRows {
    ErrorRow {2, "The system cannot find the file specified."},
    ErrorRow {3, "The system cannot find the path specified."},
    ErrorRow {4, "The system cannot open the file."},
    ErrorRow {5, "Access is denied."},
    ErrorRow {8, "Not enough storage is available to process this command."},
    ErrorRow {13, "Invalid data."},
    ErrorRow {14, "Not enough storage is available to complete this operation."},
    ErrorRow {15, "The system cannot find the drive specified."},
    ErrorRow {19, "The media is write protected."},
    ErrorRow {20, "The system cannot find the device specified."},
    ErrorRow {21, "The device is not ready."},
    ErrorRow {23, "Data error (cyclic redundancy check)."},
    ErrorRow {25, "The drive cannot locate a specific area or track on the disk."},
    ErrorRow {26, "The specified disk or diskette cannot be accessed."},
    ErrorRow {27, "The drive cannot find the sector requested."},
    ErrorRow {29, "The system cannot write to the specified device."},
    ErrorRow {30, "The system cannot read from the specified device."},
    ErrorRow {31, "A device attached to the system is not functioning."},
    ErrorRow {32, "The process cannot access the file because it is being used by another process."},
    ErrorRow {
        33, "The process cannot access the file because another process has locked a portion of the file."},
    ErrorRow {39, "The disk is full."},
    ErrorRow {82, "The directory or file cannot be created."},
    ErrorRow {111, "The file name is too long."},
    ErrorRow {112, "There is not enough space on the disk."},
    ErrorRow {123, "The filename, directory name, or volume label syntax is incorrect."},
};

constexpr std::array kMspackRows {
    std::pair {MSPACK_ERR_OPEN, kErrCannotOpen},
    std::pair {MSPACK_ERR_READ, kErrRead},
    std::pair {MSPACK_ERR_WRITE, kErrWrite},
    std::pair {MSPACK_ERR_SEEK, kErrSeek},
    std::pair {MSPACK_ERR_NOMEMORY, kErrNoMemory},
    std::pair {MSPACK_ERR_SIGNATURE, kErrInvalidData},
    std::pair {MSPACK_ERR_DATAFORMAT, kErrInvalidData},
    std::pair {MSPACK_ERR_DECRUNCH, kErrInvalidData},
    std::pair {MSPACK_ERR_CRUNCH, kErrInvalidData},
    std::pair {MSPACK_ERR_CHECKSUM, kErrCrc},
};

} // namespace

QString ErrorText(long number)
{
    for (const ErrorRow &row : kErrorRows) {
        if (row.number == number)
            return QString::fromLatin1(row.text);
    }
    return QStringLiteral("Unknown error.");
}

long ErrorFromMspack(int mspackError)
{
    for (const auto &[code, number] : kMspackRows) {
        if (code == mspackError)
            return number;
    }
    return mspackError;
}

} // namespace qb::cabinet
