// Error numbers the cabinet reader raises, and the texts that go with them.
#pragma once

#include <QString>

namespace qb::cabinet {

// Raised by every service while CabName is empty.
constexpr long kErrNoCabName = -2147219548;
// Raised for each message libmspack gives while it reads (a warning such as a truncated or odd
// cabinet); Description is "libmspack: " and its text. Only a note: the service goes on, and a
// failure it leads to is raised after it with its own number.
constexpr long kErrLibraryMessage = kErrNoCabName + 1;
// The system error numbers the reader uses by name.
constexpr long kErrFileNotFound = 2;
constexpr long kErrCannotOpen = 4;
constexpr long kErrAccessDenied = 5;
constexpr long kErrNoMemory = 8;
constexpr long kErrInvalidData = 13;
constexpr long kErrCrc = 23;
constexpr long kErrSeek = 25;
constexpr long kErrWrite = 29;
constexpr long kErrRead = 30;
constexpr long kErrInUse = 32;
constexpr long kErrCannotCreate = 82;
constexpr long kErrBadName = 123;

// The text of a system error number; "Unknown error." for one not in the table.
QString ErrorText(long number);

// The system error number for a libmspack error code. MSPACK_ERR_OPEN has no number of its own
// (the caller knows whether it was the cabinet or an output file); it gives kErrCannotOpen.
// A code the table does not know is returned as it is.
long ErrorFromMspack(int mspackError);

} // namespace qb::cabinet
