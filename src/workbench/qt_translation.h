// The standard buttons and dialogs of the toolkit in Chinese, to match the program's own texts.
#pragma once

class QCoreApplication;
class QTranslator;

namespace qb::workbench {

// Loads the toolkit's own Chinese translation into app, which owns it; nullptr when the
// translation files are not installed (the buttons then stay in English).
QTranslator *InstallToolkitTranslation(QCoreApplication &app);

} // namespace qb::workbench
