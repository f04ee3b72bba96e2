// The engine's status vocabulary: the codes StatusChange carries and their names.
#pragma once

#include <QString>

namespace qb::engine {

enum JobStatus : int {
    kStarting = 0,
    kProcessing = 1,
    kComplete = 2,
    kError = 3,
    kCanceled = 4,
    kSettingChanged = 5,
    kInfoString = 6,
    kCreateThumb = 7,
    kCancelFailed = 8,
    kSearching = 9,
    kSuspended = 10, // the value of Status while suspended; never raised
    kFatalToolText = 11, // the tool's own fatal text; nameless on purpose
};

// The name of a code 0 to 9; "" for anything else, 10 and 11 included.
QString GetStatusString(int Status);

} // namespace qb::engine
