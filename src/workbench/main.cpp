// quillbox-desk: finds the cabinet maker, then hands the command line to a running instance or
// opens the window.
#include "workbench/entry_procedure.h"
#include "workbench/main_window.h"
#include "workbench/qt_translation.h"
#include "workbench/qt_user_dialogs.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(QB_VERSION));
    qb::workbench::InstallToolkitTranslation(app);
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("quillbox-desk")));
    qb::workbench::QtUserDialogs dialogs(nullptr);
    if (!qb::workbench::PrepareApplication(dialogs))
        return 1;
    qb::workbench::frmMain window;
    if (!window.Load(QCoreApplication::arguments().mid(1)))
        return 0; // the running instance took the request
    return app.exec();
}
