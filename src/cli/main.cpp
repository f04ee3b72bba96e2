// The quillbox program: hands its command line to the command library. Commands that draw text on
// pictures get a GUI application object on the off-screen platform (fonts live there), so they
// work without any display; the others keep the plain one.
#include "cli/cli.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTextStream>

#include <memory>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool drawsPictures(int argc, char **argv)
{
    return argc > 1
        && (qstrcmp(argv[1], "image") == 0
            || (qstrcmp(argv[1], "media") == 0 && argc > 2
                && (qstrcmp(argv[2], "sheet") == 0 || qstrcmp(argv[2], "convert") == 0)));
}

} // namespace

int main(int argc, char **argv)
{
    std::unique_ptr<QCoreApplication> app;
    if (drawsPictures(argc, argv)) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        // Outside a desktop session there is no runtime folder; the one the platform would pick
        // anyway is named here, so that it does not warn on every run.
        if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
            const QByteArray folder = "/tmp/runtime-" + QByteArray::number(getuid());
            if (mkdir(folder.constData(), 0700) == 0 || errno == EEXIST)
                qputenv("XDG_RUNTIME_DIR", folder);
        }
        app = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }
    QTextStream out(stdout);
    QTextStream err(stderr);
    return qb::cli::RunQuillbox(QCoreApplication::arguments().mid(1), out, err);
}
