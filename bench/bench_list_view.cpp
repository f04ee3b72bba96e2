// The list view control with 100,000 rows: adding them with painting off, the first paint, a
// scroll to the end, a switch to thumbnails and back, and the peak memory of it all.
#include "controls/ctl_list_view.h"

#include <QApplication>
#include <QElapsedTimer>

#include <sys/resource.h>

#include <cstdio>

namespace {

constexpr int kRows = 100000;

// A package row as the workbench writes it: name, folder, type, size, date, source.
QString rowText(int i, QString &path)
{
    const QString name = QStringLiteral("file_%1.txt").arg(i, 6, 10, QLatin1Char('0'));
    const QString folder = QStringLiteral("sub%1\\").arg(i % 97);
    path = QStringLiteral("/home/user/Documents/package/sub%1/").arg(i % 97) + name;
    return name + u'|' + folder + QStringLiteral("|文本文档|") + QString::number(1000 + i)
        + QStringLiteral("|2024-05-01 12:00:00|") + path;
}

double seconds(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e9;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    qb::controls::ctlListView list;
    list.resize(1000, 700);
    list.Initialize(QString(), QStringLiteral("|"), 1);
    const char *titles[] = {"文件名", "路径", "类型", "大小", "日期", "来源"};
    for (int c = 0; c < 6; ++c)
        list.AddColumn(c, QString::fromUtf8(titles[c]), 120);
    list.show();
    QApplication::processEvents();
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    const double baseMegabytes = double(usage.ru_maxrss) / 1024.0;

    QElapsedTimer timer;
    timer.start();
    list.SetRedraw(false);
    QString path;
    for (int i = 0; i < kRows; ++i)
        list.AddItem(rowText(i, path), path);
    list.SetRedraw(true);
    const double addSeconds = seconds(timer);
    QApplication::processEvents();
    const double shownSeconds = seconds(timer);

    timer.restart();
    list.ItemEnsureVisible(kRows - 1);
    list.setItemSelected(kRows - 1, true);
    QApplication::processEvents();
    const double scrollSeconds = seconds(timer);

    timer.restart();
    list.setViewMode(0);
    list.ItemEnsureVisible(kRows / 2);
    QApplication::processEvents();
    list.setViewMode(1);
    QApplication::processEvents();
    const double switchSeconds = seconds(timer);

    getrusage(RUSAGE_SELF, &usage);
    const double peakMegabytes = double(usage.ru_maxrss) / 1024.0;

    QString lastPath;
    rowText(kRows - 1, lastPath);
    const bool intact = list.Count() == kRows && list.ItemText(kRows - 1, 5) == lastPath
        && list.ItemText(0, 0) == QStringLiteral("file_000000.txt") && list.ItemIndex() == kRows - 1;

    std::printf("rows:                       %d\n", list.Count());
    std::printf("add with redraw off:        %.3f s\n", addSeconds);
    std::printf("add and first paint:        %.3f s  (target < 2 s)\n", shownSeconds);
    std::printf("scroll to the end, select:  %.3f s\n", scrollSeconds);
    std::printf("to thumbnails and back:     %.3f s\n", switchSeconds);
    std::printf("peak memory:                %.1f MB  (target < 150 MB; %.1f MB before the rows)\n",
        peakMegabytes, baseMegabytes);
    std::printf("rows read back intact:      %s\n", intact ? "yes" : "NO");
    return intact && shownSeconds < 2.0 && peakMegabytes < 150.0 ? 0 : 1;
}
