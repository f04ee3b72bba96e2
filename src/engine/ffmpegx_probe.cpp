// Knowing the tool and the source: the tool's banner and listings, the probe of a source, its
// black borders. Each is a short run of a tool through a bounded wait; the readers are pure.
#include "engine/capability_reader.h"
#include "engine/command_line.h"
#include "engine/ffmpegx.h"
#include "engine/stream_probe.h"
#include "engine/tool_catalogue.h"
#include "engine/wait_for_tool.h"
#include "util/file_names.h"
#include "util/process_priority.h"
#include "util/size_format.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QImageReader>
#include <QStandardPaths>

#include <mutex>
#include <optional>
#include <sys/stat.h>

namespace qb::engine {

namespace {

// A banner, a listing or a probe is short; a tool that talks longer is ended.
constexpr WaitBounds kShortRun {20000, qint64(8) << 20};

QString fixed(const char16_t *text)
{
    return QString::fromUtf16(text);
}

// The player tool that answers for the media graph: beside the encoder, else on the path.
QString playerTool(const QString &core)
{
    const QString beside = QFileInfo(core).absoluteDir().filePath(QStringLiteral("ffprobe"));
    if (!core.isEmpty() && QFileInfo(beside).isExecutable())
        return beside;
    return QStandardPaths::findExecutable(QStringLiteral("ffprobe"));
}

// How the player tool is asked for length, size and rate; an empty program without one.
ToolLaunch mediaGraphLaunch(const QString &core, const QString &fileName)
{
    const QString player = playerTool(core);
    if (player.isEmpty())
        return {};
    return {player,
        {QStringLiteral("-v"), QStringLiteral("quiet"), QStringLiteral("-print_format"),
            QStringLiteral("json"), QStringLiteral("-show_entries"),
            QStringLiteral("format=duration:stream=codec_type,width,height,avg_frame_rate"),
            QStringLiteral("--"), fileName},
        false};
}

std::optional<MediaGraphFacts> graphAnswer(const WaitedRun &run)
{
    return run.endedInTime ? ReadMediaGraphAnswer(run.output) : std::nullopt;
}

// The quoted tool, then a blank and its arguments' text when there are any.
ToolLaunch toolCommand(const QString &exe, const QString &args)
{
    return PlanToolLaunch(u'"' + exe + u'"' + (args.isEmpty() ? QString() : u' ' + args));
}

// A tool file as the system knows it: a changed or replaced file is another tool.
struct ToolIdentity
{
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec modified {};

    static std::optional<ToolIdentity> of(const QString &path)
    {
        struct stat st;
        if (::stat(QFile::encodeName(path).constData(), &st) != 0)
            return std::nullopt;
        return ToolIdentity {st.st_dev, st.st_ino, st.st_size, st.st_mtim};
    }
    bool operator==(const ToolIdentity &other) const
    {
        return device == other.device && inode == other.inode && size == other.size
            && modified.tv_sec == other.modified.tv_sec && modified.tv_nsec == other.modified.tv_nsec;
    }
};

struct KnownTool
{
    ToolIdentity identity;
    CoreFamily core;
    QString subtitleCodecs;
};

} // namespace

QString FFmpegX::GetCoreVersion(const QString &Exe, const QString &Args)
{
    if (m_processing)
        return {};
    return WaitForTool(toolCommand(Exe, Args), kShortRun, ToolRun::Output::Read, util::kPriorityIdle).output;
}

void FFmpegX::setCore(const QString &path)
{
    if (!QFileInfo(path).isFile()) {
        CoreState.CoreStatus = 0;
        CoreState.CoreName.clear();
        CoreState.CoreVersion.clear();
        return;
    }
    CoreState.CoreEnabled.clear();
    CoreState.CoreDisabled.clear();
    m_core = path;
    // Asking a tool takes several runs; what one engine learnt, the next one in this process
    // takes over while the file is the same one, unchanged.
    const std::optional<ToolIdentity> identity = ToolIdentity::of(path);
    static std::mutex guard;
    static QHash<QString, KnownTool> known;
    {
        const std::lock_guard lock(guard);
        const auto found = known.constFind(path);
        if (identity && found != known.cend() && found->identity == *identity) {
            CoreState = found->core;
            Subtitle.CoreSubtitleCodec = found->subtitleCodecs;
            return;
        }
    }
    detectCore(GetCoreVersion(path, QString()));
    if (identity && !m_processing) {
        const std::lock_guard lock(guard);
        known.insert(path, KnownTool {*identity, CoreState, Subtitle.CoreSubtitleCodec});
    }
}

void FFmpegX::detectCore(const QString &banner)
{
    const ToolKind *kind = IdentifyTool(banner);
    CoreState.CoreStatus = kind ? kind->status : 0;
    CoreState.CoreName = kind ? fixed(kind->name) : QString();
    CoreState.CoreFormats = kind ? fixed(kind->formats) : QString();
    CoreState.CoreVideoCodec = kind ? fixed(kind->videoCodecs) : QString();
    CoreState.CoreAudioCodec = kind ? fixed(kind->audioCodecs) : QString();
    CoreState.CoreFilters.clear();
    CoreState.CorePixelformats.clear();
    Subtitle.CoreSubtitleCodec.clear();
    if (!kind) {
        CoreState.CoreVersion.clear();
        return;
    }
    const QString versionText
        = kind->versionArguments ? GetCoreVersion(m_core, fixed(kind->versionArguments)) : banner;
    CoreState.CoreVersion = CutToolVersion(*kind, versionText);
    if (kind->status == 1) {
        CoreState.CoreEnabled = ConfigureSwitches(banner, QStringLiteral("enable"));
        CoreState.CoreDisabled = ConfigureSwitches(banner, QStringLiteral("disable"));
        ReadCoreCapabilities(QStringLiteral("|"));
    }
}

void FFmpegX::ReadCoreCapabilities(const QString &separator)
{
    if (m_processing)
        return;
    // Today's tool answers for its encoders; an older one does not know the listing.
    const ListingGeneration *generation = &TodaysListings();
    QString listings;
    for (const char16_t *arguments : generation->arguments)
        listings += GetCoreVersion(m_core, fixed(arguments));
    if (!listings.contains(QStringLiteral("Encoders:"))) {
        generation = &LegacyListings();
        listings.clear();
        for (const char16_t *arguments : generation->arguments)
            listings += GetCoreVersion(m_core, fixed(arguments));
    }
    const Capabilities caps = ReadCapabilities(listings, *generation, separator);
    CoreState.CoreFormats = caps.CoreFormats;
    CoreState.CoreVideoCodec = caps.CoreVideoCodec;
    CoreState.CoreAudioCodec = caps.CoreAudioCodec;
    Subtitle.CoreSubtitleCodec = caps.CoreSubtitleCodec;
    CoreState.CoreFilters = caps.CoreFilters;
    CoreState.CorePixelformats = caps.CorePixelformats;
}

QString FFmpegX::GetStreamInfo(const QString &FileName)
{
    m_probedFile.clear();
    StreamFacts facts = FreshFacts(FileName);
    // The default streams are set only when empty; the source's setter clears them.
    facts.DefaultVideoStream = Video.DefaultVideoStream;
    facts.DefaultAudioStream = Video.DefaultAudioStream;
    facts.DefaultSubtitleStream = Subtitle.DefaultSubtitleStream;
    m_fileSummary.clear();
    publishFacts(facts);
    if (!util::FileExists(FileName))
        return {};

    const bool image = HasListedSuffix(FileName, Image.ImageSuffixSupported);
    if (image || HasListedSuffix(FileName, Subtitle.SubtitleSuffixSupported)) {
        // Pictures and subtitles are known by their names; no tool runs.
        facts.SourceVideoCodec = facts.SourceSuffix;
        const QSize size = image ? QImageReader(FileName).size() : QSize();
        facts.VideoWidth = std::max(0, size.width());
        facts.VideoHeight = std::max(0, size.height());
        facts.VideoStreamInfo = image ? QStringLiteral("Stream#0.0:Image:%1,%2x%3")
                                            .arg(facts.SourceVideoCodec)
                                            .arg(facts.VideoWidth)
                                            .arg(facts.VideoHeight)
                                      : QStringLiteral("Stream#0.0:Subtitle:") + facts.SourceVideoCodec;
        facts.VideoStreamCount = 1;
    } else {
        // The encoder's header and the player tool's answer are asked at once: each is a tool start.
        std::vector<ToolLaunch> launches {mediaGraphLaunch(m_core, FileName)};
        if (QFileInfo(m_core).isFile() && !m_processing)
            launches.push_back(toolCommand(m_core, QStringLiteral("-i ") + QuoteArgument(FileName)));
        const std::vector<WaitedRun> runs
            = WaitForTools(launches, kShortRun, ToolRun::Output::Read, util::kPriorityIdle);
        if (runs.size() > 1)
            ReadProbeText(runs[1].output, facts);
        if (const std::optional<MediaGraphFacts> graph = graphAnswer(runs[0]))
            ApplyMediaGraph(*graph, facts);
        const double range = Job.TimeEndPoint - Job.TimeStartPoint;
        if (range > 0 && range < m_scan.Max)
            m_scan.Max = range;
    }
    m_fileSummary = SummaryFileInfo(facts, util::CheckFileSize(FileName, true));
    publishFacts(facts);
    if (!m_processing) {
        m_probedFile = FileName;
        m_probedModified = QFileInfo(FileName).lastModified();
    }
    if (m_allowRaiseEvent)
        Q_EMIT FileInfoChange();
    return facts.streamText + QStringLiteral("\r\n\r\n") + m_fileSummary;
}

void FFmpegX::publishFacts(const StreamFacts &facts)
{
    m_source = facts;
    m_duration = facts.Duration;
    Video.VideoWidth = facts.VideoWidth;
    Video.VideoHeight = facts.VideoHeight;
    Video.VideoStreamInfo = facts.VideoStreamInfo;
    Video.VideoStreamCount = facts.VideoStreamCount;
    Video.DefaultVideoStream = facts.DefaultVideoStream;
    Video.DefaultAudioStream = facts.DefaultAudioStream;
    Audio.AudioStreamInfo = facts.AudioStreamInfo;
    Audio.AudioStreamCount = facts.AudioStreamCount;
    Subtitle.SubtitleStreamInfo = facts.SubtitleStreamInfo;
    Subtitle.SubtitleStreamCount = facts.SubtitleStreamCount;
    Subtitle.DefaultSubtitleStream = facts.DefaultSubtitleStream;
    FileOutput.SourceFormat = facts.SourceFormat;
    FileOutput.SourceSuffix = facts.SourceSuffix;
}

QString FFmpegX::GetStreamNumber(const QString &Text) const
{
    return qb::engine::GetStreamNumber(Text);
}

QString FFmpegX::GetVideoScreenCropInfo(const QString &FileName)
{
    if (!util::FileExists(FileName) || !QFileInfo(m_core).isFile() || m_processing)
        return {};
    if (m_tempBase.isEmpty() || !QFileInfo::exists(m_tempBase))
        m_tempBase = util::CreateTempFile(util::GetWindowsTempDirectory(), QStringLiteral("qbx"));
    const std::optional<MediaGraphFacts> graph = graphAnswer(WaitForTool(
        mediaGraphLaunch(m_core, FileName), kShortRun, ToolRun::Output::Read, util::kPriorityIdle));
    const int seek = CropSeekPoint(graph ? graph->duration : 0);
    const QString output = m_tempBase + QStringLiteral(".avi");
    // Today's filter takes limit, round and reset by position; seeking before the input looks at
    // the one second wanted only.
    const ToolLaunch launch {m_core,
        {QStringLiteral("-hide_banner"), QStringLiteral("-nostats"), QStringLiteral("-y"),
            QStringLiteral("-ss"), QString::number(seek), QStringLiteral("-i"), FileName,
            QStringLiteral("-vf"), QStringLiteral("cropdetect=24:16:0"), QStringLiteral("-t"),
            QStringLiteral("1"), output},
        false};
    const WaitedRun run = WaitForTool(launch, kShortRun, ToolRun::Output::Read, util::kPriorityIdle);
    if (QFileInfo::exists(output))
        QFile::remove(output);
    return ReadCropDetection(run.output);
}

std::optional<MediaGraphFacts> FFmpegX::quickGraph(const QString &file)
{
    const QString tool
        = QFileInfo(m_core).isFile() ? m_core : QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    return graphAnswer(
        WaitForTool(mediaGraphLaunch(tool, file), kShortRun, ToolRun::Output::Read, util::kPriorityIdle));
}

QImage FFmpegX::GetVideoFrame(const QString &SourceFile, double Seconds)
{
    // Frames come from the encoder when it is the media tool, else from the one on the path.
    const QString tool = CoreState.CoreStatus == 1 && QFileInfo(m_core).isFile()
        ? m_core
        : QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    if (!util::FileExists(SourceFile) || tool.isEmpty())
        return {};
    if (Seconds < 0) {
        // A tenth into the source: past most black openings and title cards.
        const std::optional<MediaGraphFacts> graph = quickGraph(SourceFile);
        Seconds = graph ? graph->duration / 10 : 0;
    }
    if (m_tempBase.isEmpty() || !QFileInfo::exists(m_tempBase))
        m_tempBase = util::CreateTempFile(util::GetWindowsTempDirectory(), QStringLiteral("qbx"));
    const QString frame = m_tempBase + QStringLiteral("g.png");
    const ToolLaunch launch {tool,
        {QStringLiteral("-hide_banner"), QStringLiteral("-nostats"), QStringLiteral("-v"),
            QStringLiteral("error"), QStringLiteral("-y"), QStringLiteral("-ss"),
            QString::number(Seconds, 'f', 3), QStringLiteral("-i"), SourceFile, QStringLiteral("-frames:v"),
            QStringLiteral("1"), QStringLiteral("-an"), frame},
        false};
    WaitForTool(launch, kShortRun, ToolRun::Output::Read, util::kPriorityIdle);
    QImage image(frame);
    QFile::remove(frame);
    return image;
}

} // namespace qb::engine
