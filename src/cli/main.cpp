// The quillbox program: hands its command line to the command library.
#include "cli/cli.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return qb::cli::RunQuillbox(app.arguments().mid(1), out, err);
}
