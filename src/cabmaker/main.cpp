// The makecab program: hands its command line to the makecab logic.
#include "cabmaker/makecab_command.h"

#include <QCoreApplication>
#include <QDir>
#include <QTextStream>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return qb::cabmaker::RunMakeCab(app.arguments().mid(1), out, err, QDir::currentPath());
}
