// The karaoke script and the tabular script: a fixed header, then one call or row per cue.
#include "subtitle/writer_shared.h"

#include "util/number_text.h"

using namespace Qt::StringLiterals;

namespace qb::subtitle::writer {

QStringList WriteKaraokeScript(const CueList &cues)
{
    QStringList out {u"karaoke := CreateKaraokeObject;"_s, u"karaoke.rows := 2;"_s, u"karaoke.clear;"_s,
        u"karaoke.singer := '';"_s, u"karaoke.songname := '';"_s, u"karaoke.TimeOffset := 0;"_s,
        u"karaoke.AnimateColor := RGB(0,0,0);"_s, u"karaoke.NormalColor := RGB(0,0,0);"_s,
        u"karaoke.Font('', 0, false);\r\n"_s};
    double start = 0;
    double end = 0;
    for (qsizetype i = 1; i < cues.size(); ++i) {
        if (!HasText(cues.at(i)))
            continue;
        CueSpan(cues, i, start, end);
        const QString raw = CueText(cues.at(i));
        const qsizetype length = NormalizeCueText(raw, u" "_s).size();
        // Every character gets the same share of the cue's time.
        const QString share = WholeText(util::RoundHalfEven((end - start) / double(length)));
        QStringList timings;
        for (qsizetype c = 0; c < length; ++c)
            timings << share;
        out << u"karaoke.add('"_s + TimeText(start, 3) + u"', '"_s + TimeText(PrintedEnd(start, end), 3)
                + u"', '"_s + raw + u"', '"_s + timings.join(u',') + u"');"_s;
    }
    return out;
}

QStringList WriteTable(const CueList &cues)
{
    // Key, tabs, "=", tab, value: the tab counts line the values up and belong to the format.
    struct Setting
    {
        const char16_t *key;
        int tabs;
        const char16_t *value;
    };
    static constexpr Setting kHeader[] = {
        {u"$FontName", 3, u"Arial"},
        {u"$FontSize", 3, u"32"},
        {u"$HorzAlign", 3, u"Center"},
        {u"$VertAlign", 3, u"bottom"},
        {u"$Bold", 4, u"TRUE"},
        {u"$UnderLined", 3, u"FALSE"},
        {u"$Italic", 4, u"FALSE"},
        {u"$XOffset", 3, u"0"},
        {u"$YOffset", 3, u"33"},
        {u"$TextContrast", 3, u"15"},
        {u"$Outline1Contrast", 2, u"15"},
        {u"$Outline2Contrast", 2, u"12"},
        {u"$BackgroundContrast", 2, u"0"},
        {u"$ForceDisplay", 3, u"TRUE"},
        {u"$FadeIn", 4, u"0"},
        {u"$FadeOut", 3, u"0"},
        {u"$ColorIndex1", 3, u"0   "},
        {u"$ColorIndex2", 3, u"0"},
        {u"$ColorIndex3", 3, u"8"},
        {u"$ColorIndex4", 3, u"0"},
    };
    const auto line = [](const char16_t *key, int tabs, const char16_t *value) -> QString {
        return QString::fromUtf16(key) + QString(tabs, u'\t') + u"=\t"_s + QString::fromUtf16(value);
    };
    QString header;
    for (const Setting &setting : kHeader)
        header += line(setting.key, setting.tabs, setting.value) + u"\r\n"_s;
    header += u"\r\n"_s + line(u"$TapeOffset", 3, u"FALSE") + u"\r\n"_s;
    QStringList out {header};

    double start = 0;
    double end = 0;
    for (qsizetype i = 1; i < cues.size(); ++i) {
        if (!HasText(cues.at(i)))
            continue;
        CueSpan(cues, i, start, end);
        out << TimeText(start, 5) + u"\t,\t"_s + TimeText(PrintedEnd(start, end), 5) + u"\t,\t"_s
                + NormalizeCueText(CueText(cues.at(i)), u" "_s);
    }
    return out;
}

} // namespace qb::subtitle::writer
