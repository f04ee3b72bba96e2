// The exit statuses every quillbox command answers with.
#pragma once

namespace qb::cli {

constexpr int kOk = 0; // done
constexpr int kFailed = 1; // a file, a tool or the work itself failed
constexpr int kUsage = 2; // the command line was wrong

} // namespace qb::cli
