// The workbench on a large package: adds a generated folder of 100,000 files (1,000 folders of
// 100) and writes the directive file for it. Prints the seconds of each and the peak memory.
// Targets: the add under 5 s, the directive file under 1 s, memory under 200 MB.
#include "workbench/app_context.h"
#include "workbench/list_surface.h"
#include "workbench/workbench.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>

namespace {

long peakKiB()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

class QuietStrip : public qb::workbench::StripSurface
{
public:
    QString Caption() const override { return m_caption; }
    void setCaption(const QString &text) override { m_caption = text; }
    double value() const override { return m_value; }
    void setvalue(double position) override { m_value = position; }
    double Max() const override { return m_max; }
    void setMax(double end) override { m_max = end; }
    bool Refresh() const override { return true; }
    void setRefresh(bool) override { }

private:
    QString m_caption;
    double m_value = 0;
    double m_max = 100;
};

class QuietMenus : public qb::workbench::MenuSurface
{
public:
    void setMenuEnabled(qb::workbench::Menu, bool) override { }
    bool menuEnabled(qb::workbench::Menu) const override { return true; }
};

class NoDialogs : public qb::workbench::UserDialogs
{
public:
    int MsgBox(const QString &, int) override { return qb::workbench::kAnswerNo; }
    qb::workbench::ChosenFiles GetOpenFiles(const QString &, const QString &, bool) override { return {}; }
    QString GetSaveFile(const QString &, const QString &) override { return {}; }
    QString SelectFolder(const QString &) override { return {}; }
    void OpenWithSystem(const QString &) override { }
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int folders = argc > 1 ? std::atoi(argv[1]) : 1000;
    const int perFolder = 100;
    QTemporaryDir dir;
    QSettings::setPath(
        QSettings::NativeFormat, QSettings::UserScope, dir.filePath(QStringLiteral("settings")));
    qb::workbench::InitializeApplicationContext();
    // The maker itself is not the subject here: a program that does nothing stands in for it.
    qb::workbench::gMakeCabPath = QStringLiteral("/bin/true");

    const std::filesystem::path root = dir.filePath(QStringLiteral("package")).toStdString();
    for (int f = 0; f < folders; ++f) {
        const auto folder = root / ("part" + std::to_string(f / 100)) / ("folder " + std::to_string(f));
        std::filesystem::create_directories(folder);
        for (int i = 0; i < perFolder; ++i) {
            static const char *const kExtensions[] = {".txt", ".dll", ".png", ".xml", ".bin"};
            std::ofstream(folder / ("file" + std::to_string(i) + kExtensions[i % 5])) << i;
        }
    }

    qb::workbench::RowStore list;
    QuietStrip strip;
    QuietMenus menus;
    NoDialogs dialogs;
    qb::workbench::Workbench bench(list, strip, menus, dialogs);

    QElapsedTimer clock;
    clock.start();
    bench.DropFile({QString::fromStdString(root.string())}, QString());
    const double addSeconds = double(clock.nsecsElapsed()) / 1e9;

    clock.restart();
    bench.mnuSave(0);
    const double directiveSeconds = double(clock.nsecsElapsed()) / 1e9;
    const qint64 directiveBytes = QFileInfo(bench.mDirectivePath).size();

    std::printf("files added:        %d\n", list.Count());
    std::printf("add:                %.3f s (target < 5 s)\n", addSeconds);
    std::printf("directive file:     %.3f s, %lld bytes (target < 1 s)\n", directiveSeconds,
        static_cast<long long>(directiveBytes));
    std::printf("peak memory:        %.1f MiB (target < 200 MB)\n", double(peakKiB()) / 1024.0);
    bench.DeleteTempFiles();
    return 0;
}
