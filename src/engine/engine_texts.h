// The engine's user texts: every message it raises comes from here, so a host can translate them,
// and the calendar's words likewise.
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

// The lunar calendar's words: months, weekdays, day names, stems, branches, animals, moon phases.
struct StringChineseFamily
{
    Q_GADGET
    Q_PROPERTY(QString StringChineseMonth1 MEMBER StringChineseMonth1)
    Q_PROPERTY(QString StringChineseMonth2 MEMBER StringChineseMonth2)
    Q_PROPERTY(QString StringChineseMonth3 MEMBER StringChineseMonth3)
    Q_PROPERTY(QString StringChineseMonth4 MEMBER StringChineseMonth4)
    Q_PROPERTY(QString StringChineseMonth5 MEMBER StringChineseMonth5)
    Q_PROPERTY(QString StringChineseMonth6 MEMBER StringChineseMonth6)
    Q_PROPERTY(QString StringChineseMonth7 MEMBER StringChineseMonth7)
    Q_PROPERTY(QString StringChineseMonth8 MEMBER StringChineseMonth8)
    Q_PROPERTY(QString StringChineseMonth9 MEMBER StringChineseMonth9)
    Q_PROPERTY(QString StringChineseMonth10 MEMBER StringChineseMonth10)
    Q_PROPERTY(QString StringChineseMonth11 MEMBER StringChineseMonth11)
    Q_PROPERTY(QString StringChineseMonth12 MEMBER StringChineseMonth12)
    Q_PROPERTY(QString StringChineseWeekLong0 MEMBER StringChineseWeekLong0)
    Q_PROPERTY(QString StringChineseWeekLong1 MEMBER StringChineseWeekLong1)
    Q_PROPERTY(QString StringChineseWeekLong2 MEMBER StringChineseWeekLong2)
    Q_PROPERTY(QString StringChineseWeekLong3 MEMBER StringChineseWeekLong3)
    Q_PROPERTY(QString StringChineseWeekLong4 MEMBER StringChineseWeekLong4)
    Q_PROPERTY(QString StringChineseWeekLong5 MEMBER StringChineseWeekLong5)
    Q_PROPERTY(QString StringChineseWeekLong6 MEMBER StringChineseWeekLong6)
    Q_PROPERTY(QString StringChineseWeek0 MEMBER StringChineseWeek0)
    Q_PROPERTY(QString StringChineseWeek1 MEMBER StringChineseWeek1)
    Q_PROPERTY(QString StringChineseWeek2 MEMBER StringChineseWeek2)
    Q_PROPERTY(QString StringChineseWeek3 MEMBER StringChineseWeek3)
    Q_PROPERTY(QString StringChineseWeek4 MEMBER StringChineseWeek4)
    Q_PROPERTY(QString StringChineseWeek5 MEMBER StringChineseWeek5)
    Q_PROPERTY(QString StringChineseWeek6 MEMBER StringChineseWeek6)
    Q_PROPERTY(QString StringChineseDayString1 MEMBER StringChineseDayString1)
    Q_PROPERTY(QString StringChineseDayString2 MEMBER StringChineseDayString2)
    Q_PROPERTY(QString StringChineseDayString3 MEMBER StringChineseDayString3)
    Q_PROPERTY(QString StringChineseDayString4 MEMBER StringChineseDayString4)
    Q_PROPERTY(QString StringChineseDayString5 MEMBER StringChineseDayString5)
    Q_PROPERTY(QString StringChineseYearText MEMBER StringChineseYearText)
    Q_PROPERTY(QString StringChineseMonthText MEMBER StringChineseMonthText)
    Q_PROPERTY(QString StringChineseDayText MEMBER StringChineseDayText)
    Q_PROPERTY(QString StringChineseLunarText MEMBER StringChineseLunarText)
    Q_PROPERTY(QString StringChineseLeapText MEMBER StringChineseLeapText)
    Q_PROPERTY(QString StringChineseMoonText1 MEMBER StringChineseMoonText1)
    Q_PROPERTY(QString StringChineseMoonText2 MEMBER StringChineseMoonText2)
    Q_PROPERTY(QString StringChineseMoonText3 MEMBER StringChineseMoonText3)
    Q_PROPERTY(QString StringChineseMoonText4 MEMBER StringChineseMoonText4)
    Q_PROPERTY(QString StringChineseMoonText5 MEMBER StringChineseMoonText5)
    Q_PROPERTY(QString StringChineseMoonText6 MEMBER StringChineseMoonText6)
    Q_PROPERTY(QString StringChineseMoonText7 MEMBER StringChineseMoonText7)
    Q_PROPERTY(QString StringChineseMoonText8 MEMBER StringChineseMoonText8)
    Q_PROPERTY(QString StringChineseMoonText9 MEMBER StringChineseMoonText9)

public:
    QString StringChineseMonth1 = QStringLiteral("一月");
    QString StringChineseMonth2 = QStringLiteral("二月");
    QString StringChineseMonth3 = QStringLiteral("三月");
    QString StringChineseMonth4 = QStringLiteral("四月");
    QString StringChineseMonth5 = QStringLiteral("五月");
    QString StringChineseMonth6 = QStringLiteral("六月");
    QString StringChineseMonth7 = QStringLiteral("七月");
    QString StringChineseMonth8 = QStringLiteral("八月");
    QString StringChineseMonth9 = QStringLiteral("九月");
    QString StringChineseMonth10 = QStringLiteral("十月");
    QString StringChineseMonth11 = QStringLiteral("十一月");
    QString StringChineseMonth12 = QStringLiteral("十二月");
    QString StringChineseWeekLong0 = QStringLiteral("周日");
    QString StringChineseWeekLong1 = QStringLiteral("周一");
    QString StringChineseWeekLong2 = QStringLiteral("周二");
    QString StringChineseWeekLong3 = QStringLiteral("周三");
    QString StringChineseWeekLong4 = QStringLiteral("周四");
    QString StringChineseWeekLong5 = QStringLiteral("周五");
    QString StringChineseWeekLong6 = QStringLiteral("周六");
    QString StringChineseWeek0 = QStringLiteral("日");
    QString StringChineseWeek1 = QStringLiteral("一");
    QString StringChineseWeek2 = QStringLiteral("二");
    QString StringChineseWeek3 = QStringLiteral("三");
    QString StringChineseWeek4 = QStringLiteral("四");
    QString StringChineseWeek5 = QStringLiteral("五");
    QString StringChineseWeek6 = QStringLiteral("六");
    QString StringChineseDayString1
        = QStringLiteral("初一初二初三初四初五初六初七初八初九初十十一十二十三十四十五十六十七十八十九二十廿"
                         "一廿二廿三廿四廿五廿六廿七廿八廿九三十");
    QString StringChineseDayString2 = QStringLiteral("正二三四五六七八九十冬腊");
    QString StringChineseDayString3 = QStringLiteral("甲乙丙丁戊已庚辛壬癸");
    QString StringChineseDayString4 = QStringLiteral("子丑寅卯辰巳午未申酉戌亥");
    QString StringChineseDayString5 = QStringLiteral("鼠牛虎兔龙蛇马羊猴鸡狗猪");
    QString StringChineseYearText = QStringLiteral("年");
    QString StringChineseMonthText = QStringLiteral("月");
    QString StringChineseDayText = QStringLiteral("日");
    QString StringChineseLunarText = QStringLiteral("农历");
    QString StringChineseLeapText = QStringLiteral("闰");
    QString StringChineseMoonText1 = QStringLiteral("新月(朔日)");
    QString StringChineseMoonText2 = QStringLiteral("峨眉月");
    QString StringChineseMoonText3 = QStringLiteral("上弦月");
    QString StringChineseMoonText4 = QStringLiteral("渐盈凸月");
    QString StringChineseMoonText5 = QStringLiteral("满月(望日)");
    QString StringChineseMoonText6 = QStringLiteral("渐亏凸月");
    QString StringChineseMoonText7 = QStringLiteral("下弦月");
    QString StringChineseMoonText8 = QStringLiteral("残月");
    QString StringChineseMoonText9 = QStringLiteral("晦日");
};

} // namespace qb::engine
