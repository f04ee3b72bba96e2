// controls-gallery: every mode and every style of the multi-mode control, both list views and the
// masked time input in one window, for a reviewer's eye. --screenshot FILE saves the window as a
// PNG and ends.
#include "controls/ctl_button.h"
#include "controls/ctl_list_view.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdio>

using namespace Qt::StringLiterals;
using qb::controls::ctlButton;
using qb::controls::ctlListView;

namespace {

constexpr int kStyleCount = 28;

const char16_t *const kModeNames[] = {
    u"0 按钮", u"1 复选", u"2 单选", u"3 文本", u"4 组合框", u"5 状态栏", u"6 目录", u"7 文件", u"8 拖动条"};

QPixmap samplePicture(int i)
{
    QPixmap picture(64, 48);
    picture.fill(QColor::fromHsv((i * 47) % 360, 120, 230));
    QPainter painter(&picture);
    painter.drawText(picture.rect(), Qt::AlignCenter, QString::number(i));
    return picture;
}

QWidget *modesBox(QWidget *parent)
{
    auto *box = new QGroupBox(u"Modes"_s, parent);
    auto *grid = new QGridLayout(box);
    for (int mode = 0; mode < 9; ++mode) {
        auto *button = new ctlButton(box);
        button->setRefresh(false);
        button->setMode(mode);
        button->setCaption(QString::fromUtf16(kModeNames[mode]));
        if (mode == ctlButton::ucModeCombo)
            button->setComboBoxItems(u"LZX|MSZIP|NONE"_s);
        if (mode == ctlButton::ucModeStatusBar) {
            button->setMax(100);
            button->setvalue(42);
        }
        button->setRefresh(true);
        button->setMinimumSize(mode == ctlButton::ucModeStatusBar ? 260 : 150, 26);
        grid->addWidget(button, mode / 3, mode % 3);
    }
    auto *masked = new ctlButton(box);
    masked->setRefresh(false);
    masked->setMode(ctlButton::ucModeText);
    masked->setTextFormat(1);
    masked->setCaption(u"12:30:00,000"_s);
    masked->setRefresh(true);
    masked->setMinimumSize(150, 26);
    grid->addWidget(new QLabel(u"时间输入 (##:##:##,###)"_s, box), 3, 0);
    grid->addWidget(masked, 3, 1);
    return box;
}

QWidget *stylesBox(QWidget *parent)
{
    auto *box = new QGroupBox(u"Styles"_s, parent);
    auto *grid = new QGridLayout(box);
    for (int style = 0; style < kStyleCount; ++style) {
        auto *button = new ctlButton(box);
        button->setRefresh(false);
        button->setStyle(style);
        button->setCaption(u"Style %1"_s.arg(style));
        button->setRefresh(true);
        button->setMinimumSize(110, 28);
        grid->addWidget(button, style / 7, style % 7);
    }
    return box;
}

ctlListView *listBox(QWidget *parent, int viewMode)
{
    auto *list = new ctlListView(parent);
    list->SetRedraw(false);
    list->Initialize(QString(), u"|"_s, viewMode);
    list->SetThumbnailSize(64, 64);
    const QStringList titles {u"文件名"_s, u"路径"_s, u"类型"_s, u"大小"_s, u"日期"_s};
    for (int c = 0; c < titles.size(); ++c)
        list->AddColumn(c, titles[c], c == 0 ? 160 : 90);
    for (int i = 0; i < 12; ++i) {
        list->AddItem(u"文件 %1.txt|docs\\|||2026-11-21 9:%2:00"_s.arg(i).arg(i, 2, 10, QChar(u'0')),
            u"/tmp/file%1.txt"_s.arg(i), i % 4 == 3 ? QPixmap() : samplePicture(i));
    }
    list->SetRedraw(true);
    list->setMinimumSize(420, 220);
    return list;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Shows the controls of Quillbox Desk."_s);
    parser.addHelpOption();
    const QCommandLineOption screenshot(u"screenshot"_s, u"Save the window as a PNG and end."_s, u"FILE"_s);
    parser.addOption(screenshot);
    parser.process(app);

    QWidget window;
    window.setWindowTitle(u"controls-gallery"_s);
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(modesBox(&window));
    layout->addWidget(stylesBox(&window));
    auto *lists = new QHBoxLayout;
    lists->addWidget(listBox(&window, 1));
    lists->addWidget(listBox(&window, 0));
    layout->addLayout(lists);
    window.resize(1000, 900);
    window.show();

    if (parser.isSet(screenshot)) {
        const QString file = parser.value(screenshot);
        QTimer::singleShot(300, &app, [&] {
            const bool saved = window.grab().save(file, "PNG");
            if (!saved)
                std::fprintf(stderr, "controls-gallery: cannot write %s\n", qPrintable(file));
            app.exit(saved ? 0 : 1);
        });
    }
    return app.exec();
}
