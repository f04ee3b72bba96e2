// The program's places in the desktop: a launcher on the desktop, an entry that file managers
// offer under "Open With" for files and folders, and the "add to" entry of their context menus.
#pragma once

#include <QString>

namespace qb::workbench {

// Folder ids of GetSpecialFolder: the desktop and the applications folder.
// The launcher's path in a folder: the folder + "/" + the title + ".desktop".
QString ShortcutPath(int FolderId);

// Writes the launcher for this program into the folder; in the applications folder it also
// names the types it opens (every file and folder). True when written.
bool CreateProgramShortcut(int FolderId);

// The context-menu entry: caption gContextCaption, command the program with the chosen items.
QString ContextEntryPath();
bool WriteContextEntry();
bool RemoveContextEntry();

} // namespace qb::workbench
