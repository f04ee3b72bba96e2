// The engine's user texts: every message it raises comes from here, so a host can translate them.
#pragma once

#include <QObject>
#include <QString>

namespace qb::engine {

struct StringContentFamily
{
    Q_GADGET
    Q_PROPERTY(QString StringContent1 MEMBER StringContent1)
    Q_PROPERTY(QString StringContent2 MEMBER StringContent2)
    Q_PROPERTY(QString StringContent3 MEMBER StringContent3)
    Q_PROPERTY(QString StringContent4 MEMBER StringContent4)
    Q_PROPERTY(QString StringContent5 MEMBER StringContent5)
    Q_PROPERTY(QString StringContent6 MEMBER StringContent6)
    Q_PROPERTY(QString StringContent7 MEMBER StringContent7)
    Q_PROPERTY(QString StringContent8 MEMBER StringContent8)
    Q_PROPERTY(QString StringContent9 MEMBER StringContent9)
    Q_PROPERTY(QString StringContent10 MEMBER StringContent10)
    Q_PROPERTY(QString StringContent11 MEMBER StringContent11)
    Q_PROPERTY(QString StringContent12 MEMBER StringContent12)
    Q_PROPERTY(QString StringContent13 MEMBER StringContent13)
    Q_PROPERTY(QString StringContent14 MEMBER StringContent14)
    Q_PROPERTY(QString StringContent15 MEMBER StringContent15)
    Q_PROPERTY(QString StringContent16 MEMBER StringContent16)
    Q_PROPERTY(QString StringContent17 MEMBER StringContent17)
    Q_PROPERTY(QString StringContent18 MEMBER StringContent18)
    Q_PROPERTY(QString StringContent19 MEMBER StringContent19)
    Q_PROPERTY(QString StringContent20 MEMBER StringContent20)
    Q_PROPERTY(QString StringContent21 MEMBER StringContent21)
    Q_PROPERTY(QString StringContent22 MEMBER StringContent22)
    Q_PROPERTY(QString StringContent23 MEMBER StringContent23)
    Q_PROPERTY(QString StringContent24 MEMBER StringContent24)
    Q_PROPERTY(QString StringContent25 MEMBER StringContent25)
    Q_PROPERTY(QString StringContent26 MEMBER StringContent26)

public:
    QString StringContent1 = QStringLiteral("无法创建程序");
    QString StringContent2 = QStringLiteral("无法创建进程");
    QString StringContent3 = QStringLiteral("无法关闭进程 id: ");
    QString StringContent4 = QStringLiteral("没有提取到字幕内容");
    QString StringContent5 = QStringLiteral("尚未执行任务");
    QString StringContent6 = QStringLiteral("正在执行任务");
    QString StringContent7 = QStringLiteral("无法设置转换核心程序!");
    QString StringContent8 = QStringLiteral("无法启动 GDIPLUS");
    QString StringContent9 = QStringLiteral("未设置原始来源文件!");
    QString StringContent10 = QStringLiteral("不能找到原始来源文件!");
    QString StringContent11 = QStringLiteral("不存在的输出路径!");
    QString StringContent12 = QStringLiteral("未设置输出路径, 文件将保存到来源路径!");
    QString StringContent13 = QStringLiteral("没有指定 VSFilter.dll 路径!");
    QString StringContent14 = QStringLiteral("输出文件未设置包含任何数据流");
    QString StringContent15 = QStringLiteral("已创建文件存在问题");
    QString StringContent16 = QStringLiteral("无法重新采样");
    QString StringContent17 = QStringLiteral("无法正确创建文件");
    QString StringContent18 = QStringLiteral("启用但没有安装 AviSynth!");
    QString StringContent19 = QStringLiteral("未知的输入或输出格式");
    QString StringContent20 = QStringLiteral("不支持重新采样声道数大于 2 个的来源");
    QString StringContent21 = QStringLiteral("图像获取失败");
    QString StringContent22 = QStringLiteral("已取消");
    QString StringContent23 = QStringLiteral("字幕预处理失败");
    QString StringContent24 = QStringLiteral("创建视频");
    QString StringContent25 = QStringLiteral("处理字幕");
    QString StringContent26
        = QStringLiteral("推荐安装解码器，没有解码器压缩支持时生成图片视频将占用极多磁盘空间！");
};

} // namespace qb::engine
