// Template macros and the MP4 muxer's languages.
#include "engine/command_template.h"

#include <iterator>

using namespace Qt::StringLiterals;

namespace qb::engine {

QString ExpandCommandMacros(const QString &commandTemplate, const MacroValues &v)
{
    const std::pair<QString, QString> table[] = {
        {u"#VideoWidth#"_s, QString::number(v.outW)},
        {u"#VideoHeight#"_s, v.padBorder ? u"-3"_s : QString::number(v.outH)},
        {u"#VideoBitRate#"_s, QString::number(v.videoBitRate)},
        {u"#VideoVBR#"_s, QString::number(v.videoVBR)},
        {u"#VideoFrameRate#"_s, QString::number(v.frameRate, 'g', 12)},
        {u"#AudioBitRate#"_s, QString::number(v.audioBitRate)},
        {u"#AudioQuality#"_s, QString::number(v.audioQuality)},
        {u"#AudioSampleRate#"_s, QString::number(v.audioSampleRate)},
        {u"#AudioChannels#"_s, QString::number(v.audioChannels)},
        {u"#InputFileName#"_s, v.inputName},
        {u"#OutputFileName#"_s, v.outputFileName},
    };
    // One pass over the text, so that a value holding a macro's name is not expanded again.
    QString out;
    out.reserve(commandTemplate.size());
    qsizetype at = 0;
    while (at < commandTemplate.size()) {
        bool replaced = false;
        if (commandTemplate.at(at) == u'#') {
            for (const auto &[macro, value] : table) {
                if (QStringView(commandTemplate).mid(at).startsWith(macro)) {
                    out += value;
                    at += macro.size();
                    replaced = true;
                    break;
                }
            }
        }
        if (!replaced)
            out += commandTemplate.at(at++);
    }
    return out;
}

Mp4BoxLanguage ChooseMp4BoxLanguage(const QString &value)
{
    // "end" for English stands as the table has always had it.
    static constexpr const char16_t *kTable[][2]
        = {{u"danish", u"dan"}, {u"dutch", u"dut"}, {u"english", u"end"}, {u"french", u"fre"},
            {u"german", u"ger"}, {u"hebrew", u"heb"}, {u"italian", u"ita"}, {u"japanese", u"jpn"},
            {u"korean", u"kor"}, {u"polish", u"pol"}, {u"portuguese", u"por"}, {u"russian", u"rus"},
            {u"spanish", u"spa"}, {u"swedish", u"swe"}, {u"thai", u"tha"}, {u"chinese", u"zho"}};
    bool isIndex = false;
    int index = value.trimmed().toInt(&isIndex);
    if (!isIndex) {
        index = -1;
        for (int i = 0; i < int(std::size(kTable)); ++i) {
            if (value.trimmed().compare(QString::fromUtf16(kTable[i][0]), Qt::CaseInsensitive) == 0)
                index = i;
        }
    }
    if (index < 0 || index >= int(std::size(kTable)))
        return {QString(), u"und"_s};
    return {QString::fromUtf16(kTable[index][0]), QString::fromUtf16(kTable[index][1])};
}

} // namespace qb::engine
