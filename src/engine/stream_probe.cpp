// The probe's readers.
#include "engine/stream_probe.h"

#include "engine/console_scan.h"
#include "util/number_text.h"
#include "util/text_search.h"
#include "util/time_format.h"
#include "util/wildcard.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace qb::engine {

namespace {

const QString kLineBreak = QStringLiteral("\r\n");

// The kinds of stream line, with the word that ends the stream's number.
struct StreamKind
{
    const char16_t *label; // "Video:"
    const char16_t *numberEnd; // ":Video"
};

constexpr StreamKind kNumberedKinds[] = {
    {u"Video:", u":Video"},
    {u"Audio:", u":Audio"},
    {u"Subtitle:", u":Subtitle"},
    {u"Attachment:", u":Attachment"},
};

// The tags crop-detection lines begin with: the older filter's and today's filter instance.
constexpr const char16_t *kCropTags[] = {u"[cropdetect", u"[Parsed_cropdetect"};

double secondsOf(const QString &text)
{
    QString copy = text;
    return util::TimeToSec(copy, false, QStringLiteral("."));
}

// A number as the summary prints it: no trailing zeros, "." as the mark.
QString numberText(double value)
{
    return util::FormatNumber(value, u"");
}

// A codec's name without the profile and tag notes today's tool adds in parentheses.
QString codecName(const QString &item)
{
    const qsizetype paren = item.indexOf(u'(');
    return (paren > 0 ? item.left(paren) : item).trimmed();
}

// A picture size item: digits, "x", digits (a sample-aspect note in brackets may follow).
bool readSize(const QString &item, int &width, int &height)
{
    const qsizetype x = item.indexOf(u'x');
    if (x <= 0 || x + 1 >= item.size() || !item.at(x - 1).isDigit() || !item.at(x + 1).isDigit())
        return false;
    for (qsizetype i = 0; i < x; ++i) {
        if (!item.at(i).isDigit())
            return false;
    }
    QString heightText = item.mid(x + 1);
    const qsizetype bracket = heightText.indexOf(u'[');
    if (bracket >= 0)
        heightText = heightText.left(bracket);
    // Sides beyond any picture are no size (and would not fit the fields).
    const double w = util::Val(item.left(x));
    const double h = util::Val(heightText);
    if (!(w < 1e6 && h >= 0 && h < 1e6))
        return false;
    width = int(w);
    height = int(h);
    return true;
}

void appendLine(QString &text, const QString &line)
{
    if (!text.isEmpty())
        text += kLineBreak;
    text += line;
}

void readVideo(const QString &line, StreamFacts &facts)
{
    const QStringList items = line.split(u',');
    facts.SourceVideoCodec = codecName(items.first().section(QStringLiteral("Video:"), 1));
    if (facts.DefaultVideoStream.isEmpty())
        facts.DefaultVideoStream = GetStreamNumber(line);
    for (qsizetype i = 1; i < items.size(); ++i) {
        const QString &item = items.at(i);
        int width = 0;
        int height = 0;
        if (readSize(item, width, height)) {
            facts.VideoWidth = width;
            facts.VideoHeight = height;
        } else if (!item.contains(u'x') && item.contains(QStringLiteral("tbr"))) {
            facts.SourceFrameRate = util::Val(QString(item).remove(QStringLiteral("tbr")));
        }
    }
    appendLine(facts.VideoStreamInfo, line);
    ++facts.VideoStreamCount;
}

void readAudio(const QString &line, StreamFacts &facts)
{
    const QStringList items = line.section(QStringLiteral("Audio:"), 1).split(u',');
    facts.SourceAudioCodec = codecName(items.value(0));
    // Tool text can hold any number; a rate beyond the field's range is no rate.
    const double rate = util::Val(items.value(1));
    facts.SourceSampleRate = rate >= 0 && rate < 1e9 ? long(rate) : 0;
    const QString channels = items.value(2).toLower();
    if (channels == QStringLiteral("stereo"))
        facts.SourceChannels = 2;
    else if (channels == QStringLiteral("mono"))
        facts.SourceChannels = 1;
    else
        facts.SourceChannels = util::Val(channels);
    if (facts.DefaultAudioStream.isEmpty())
        facts.DefaultAudioStream = GetStreamNumber(line);
    appendLine(facts.AudioStreamInfo, line);
    ++facts.AudioStreamCount;
}

void readSubtitle(const QString &line, StreamFacts &facts)
{
    if (facts.DefaultSubtitleStream.isEmpty())
        facts.DefaultSubtitleStream = GetStreamNumber(line);
    appendLine(facts.SubtitleStreamInfo, line);
    ++facts.SubtitleStreamCount;
}

// The container's name from the "Input #" line, with the names users know for some of them.
void nameContainer(const QString &text, StreamFacts &facts)
{
    const QString input = GetString(text, QStringLiteral("Input #"), QStringLiteral(", from"));
    const QString container = input.section(QStringLiteral(", "), 1).toLower().section(u',', 0, 0);
    const QString suffix = facts.SourceSuffix;
    if (container == QStringLiteral("mkv") || container == QStringLiteral("matroska"))
        facts.SourceFormat = QStringLiteral("mkv");
    else if ((container == QStringLiteral("asf")
                 && (suffix == QStringLiteral("wmv") || suffix == QStringLiteral("wma")))
        || (container == QStringLiteral("rm") && suffix == QStringLiteral("rmvb"))
        || (container == QStringLiteral("mpeg") && suffix == QStringLiteral("mpg")))
        facts.SourceFormat = suffix;
    else if (input.contains(QStringLiteral("mov")) && suffix == QStringLiteral("mov"))
        facts.SourceFormat = QStringLiteral("mov");
    else if (input.contains(QStringLiteral("mp4"))
        && (suffix == QStringLiteral("mp4") || suffix == QStringLiteral("flv")))
        facts.SourceFormat
            = QStringLiteral("mp4"); // an flv in an mp4 container is not called flv, on purpose
    else
        facts.SourceFormat = container;
}

} // namespace

bool HasListedSuffix(const QString &fileName, const QString &patterns)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    if (suffix.isEmpty())
        return false;
    const QString wanted = QStringLiteral("*.") + suffix;
    const QStringList list = patterns.toLower().split(u';', Qt::SkipEmptyParts);
    return std::any_of(list.cbegin(), list.cend(), [&](const QString &p) { return p.trimmed() == wanted; });
}

QString GetStreamNumber(const QString &Text)
{
    QString number;
    bool matched = false;
    for (const StreamKind &kind : kNumberedKinds) {
        if (Text.contains(QString::fromUtf16(kind.label))) {
            number = util::KillTag(
                GetString(Text, QStringLiteral("Stream"), QString::fromUtf16(kind.numberEnd)), true);
            // Today's container stream id, "[0x1]", is a tag as well.
            while (number.contains(u'[') && number.indexOf(u']') > number.indexOf(u'['))
                number.remove(number.indexOf(u'['), number.indexOf(u']') - number.indexOf(u'[') + 1);
            matched = true;
            break;
        }
    }
    if (!matched) {
        if (util::Like(Text, u"*Stream*(*)*:*"))
            number = GetString(Text, QStringLiteral("Stream"), QStringLiteral("("));
        else if (util::Like(Text, u"*Stream*:*"))
            number = GetString(Text, QStringLiteral("Stream"), QStringLiteral(":"));
    }
    return number.remove(u'#');
}

StreamFacts FreshFacts(const QString &fileName)
{
    StreamFacts facts;
    facts.SourceSuffix = QFileInfo(fileName).suffix().toLower();
    facts.SourceFormat = facts.SourceSuffix;
    return facts;
}

void ReadProbeText(const QString &toolText, StreamFacts &facts)
{
    QString text = toolText;
    text.remove(u'\r');
    if (text.contains(u'\n')) {
        for (const QString &raw : text.split(u'\n')) {
            QString line = raw;
            line.remove(u' ');
            if (line.startsWith(QStringLiteral("Duration:"))) {
                facts.Duration = secondsOf(GetString(line, QStringLiteral("Duration:"), QStringLiteral(",")));
            } else if (line.startsWith(QStringLiteral("title"))) {
                appendLine(facts.streamText, line.mid(line.indexOf(QStringLiteral("title"))));
            } else if (line.startsWith(QStringLiteral("Stream"))) {
                if (line.contains(QStringLiteral("Video:")))
                    readVideo(line, facts);
                else if (line.contains(QStringLiteral("Audio:")))
                    readAudio(line, facts);
                else if (line.contains(QStringLiteral("Subtitle:")))
                    readSubtitle(line, facts);
                appendLine(facts.streamText, line.mid(line.indexOf(QStringLiteral("Stream"))));
            }
        }
    }
    if (text.contains(QStringLiteral("Input #")))
        nameContainer(text, facts);
}

std::optional<MediaGraphFacts> ReadMediaGraphAnswer(const QString &json)
{
    QJsonParseError error {};
    const QJsonDocument document = QJsonDocument::fromJson(json.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    const QJsonObject root = document.object();
    MediaGraphFacts graph;
    graph.duration = root.value(QStringLiteral("format"))
                         .toObject()
                         .value(QStringLiteral("duration"))
                         .toString()
                         .toDouble();
    for (const QJsonValue &value : root.value(QStringLiteral("streams")).toArray()) {
        const QJsonObject stream = value.toObject();
        if (stream.value(QStringLiteral("codec_type")).toString() != QStringLiteral("video"))
            continue;
        graph.width = stream.value(QStringLiteral("width")).toInt();
        graph.height = stream.value(QStringLiteral("height")).toInt();
        const QStringList rate = stream.value(QStringLiteral("avg_frame_rate")).toString().split(u'/');
        const double numerator = rate.value(0).toDouble();
        const double denominator = rate.size() > 1 ? rate.value(1).toDouble() : 1.0;
        if (numerator > 0 && denominator > 0)
            graph.frameTime = denominator / numerator;
        break;
    }
    return graph;
}

void ApplyMediaGraph(const MediaGraphFacts &graph, StreamFacts &facts)
{
    if (facts.Duration == 0)
        facts.Duration = graph.duration;
    if (facts.VideoWidth == 0 || facts.VideoHeight == 0) {
        facts.VideoWidth = graph.width;
        facts.VideoHeight = graph.height;
    }
    if (graph.frameTime > 0) {
        const double rate = std::round(1000.0 / graph.frameTime) / 1000.0;
        if (rate != facts.SourceFrameRate)
            facts.SourceFrameRate = rate;
    }
}

QString SummaryFileInfo(const StreamFacts &facts, const QString &sizeText)
{
    QStringList parts;
    const bool sized = facts.VideoWidth > 0 && facts.VideoHeight > 0;
    if (facts.Duration == 0) {
        parts.append(sizeText);
        if (sized)
            parts.append(QStringLiteral("%1x%2").arg(facts.VideoWidth).arg(facts.VideoHeight));
        if (facts.SourceFrameRate > 0)
            parts.append(numberText(facts.SourceFrameRate) + QStringLiteral("fps"));
        return parts.join(QStringLiteral(", "));
    }
    double milliseconds = facts.Duration * 1000;
    parts.append(util::MSecsToTime(milliseconds, 98));
    if (!facts.SourceFormat.isEmpty())
        parts.append(facts.SourceFormat.toUpper());
    if (!sizeText.isEmpty())
        parts.append(sizeText);
    if (!facts.SourceVideoCodec.isEmpty())
        parts.append(facts.SourceVideoCodec);
    if (sized)
        parts.append(QStringLiteral("%1x%2").arg(facts.VideoWidth).arg(facts.VideoHeight));
    if (facts.SourceFrameRate > 0)
        parts.append(numberText(facts.SourceFrameRate) + QStringLiteral("fps"));
    if (!facts.SourceAudioCodec.isEmpty())
        parts.append(facts.SourceAudioCodec);
    if (facts.SourceSampleRate > 0)
        parts.append(QString::number(facts.SourceSampleRate) + QStringLiteral("Hz"));
    if (facts.SourceChannels > 0)
        parts.append(numberText(facts.SourceChannels) + QStringLiteral("ch"));
    return parts.join(QStringLiteral(", "));
}

int CropSeekPoint(double lengthSeconds)
{
    if (!(lengthSeconds > 0))
        return 0;
    return lengthSeconds <= 20 ? int(util::RoundHalfEven(lengthSeconds / 2)) : 10;
}

QString ReadCropDetection(const QString &toolText)
{
    QString text = toolText;
    text.replace(u'\r', u'\n');
    for (const QString &raw : text.split(u'\n')) {
        const QString line = raw.trimmed();
        for (const char16_t *tag : kCropTags) {
            const qsizetype at = line.indexOf(QString::fromUtf16(tag));
            if (at < 0)
                continue;
            const QString crop = GetString(line.mid(at), QStringLiteral("crop="), QStringLiteral(" "));
            if (util::Like(crop, u"*:*:*:*"))
                return QStringLiteral("crop=") + crop;
        }
    }
    return {};
}

} // namespace qb::engine
