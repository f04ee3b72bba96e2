// The quillbox program: hands its command line to the command library. The application object is a
// GUI one on the off-screen platform, so that pictures can carry text without any display.
#include "cli/cli.h"

#include <QGuiApplication>
#include <QTextStream>

#include <cstdio>

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return qb::cli::RunQuillbox(app.arguments().mid(1), out, err);
}
