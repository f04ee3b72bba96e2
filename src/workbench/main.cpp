// quillbox-desk: finds the cabinet maker, then hands the command line to a running instance or
// opens the window.
#include "workbench/app_context.h"
#include "workbench/main_window.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(QB_VERSION));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("quillbox-desk")));
    if (!qb::workbench::InitializeApplicationContext()) {
        QMessageBox::critical(nullptr, qb::workbench::gAppTitle, qb::workbench::MakeCabMissingMessage());
        return 1;
    }
    qb::workbench::frmMain window;
    if (!window.Load(QCoreApplication::arguments().mid(1)))
        return 0; // the running instance took the request
    return app.exec();
}
