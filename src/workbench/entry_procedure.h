// The first step of a start: find the cabinet maker and set the application's strings; without a
// maker, say so in a critical message titled with the program's title.
#pragma once

#include "workbench/user_dialogs.h"

namespace qb::workbench {

// True when the maker was found and the window may load.
bool PrepareApplication(UserDialogs &dialogs);

} // namespace qb::workbench
