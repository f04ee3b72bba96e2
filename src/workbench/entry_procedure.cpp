// Start-up checks.
#include "workbench/entry_procedure.h"

#include "workbench/app_context.h"

namespace qb::workbench {

bool PrepareApplication(UserDialogs &dialogs)
{
    if (InitializeApplicationContext())
        return true;
    // The path is empty here, so the text ends with its blank.
    dialogs.MsgBoxTitled(MakeCabMissingMessage(), kCritical, gAppTitle);
    return false;
}

} // namespace qb::workbench
