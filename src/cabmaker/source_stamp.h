// The date, time, attributes and size that a file entry records for a source file.
#pragma once

#include "cabmaker/directive_plan.h"

namespace qb::cabmaker {

struct SourceStamp
{
    quint16 date = 0;
    quint16 time = 0;
    quint16 attributes = 0;
};

// Reads the source's size and stamp: the modification time in local time, "archive" always,
// "read-only" without write permission for the owner, "hidden" for a name starting with ".",
// "execute" with execute permission for the owner. The file line's /date=MM/DD/YY[YY],
// /time=HH:MM[:SS][a|p] and /attr=letters of "rash" replace what the file says.
// False with a message naming the directive line when the source or a parameter is wrong.
bool ReadSourceStamp(const PlannedFile &file, SourceStamp &stamp, qint64 &size, QString &problem);

} // namespace qb::cabmaker
