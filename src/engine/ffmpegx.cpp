// The engine's state, its setters and the name helpers it offers.
#include "engine/ffmpegx.h"

#include "engine/ffmpegx_round.h"
#include "engine/ffmpegx_sheet.h"
#include "engine/status_codes.h"
#include "util/file_names.h"
#include "util/file_search.h"

#include <QFile>
#include <QFileInfo>

#include <cmath>

namespace qb::engine {

FFmpegX::FFmpegX(QObject *parent)
    : QObject(parent)
    , m_clock([] { return QTime::currentTime(); })
    , m_search(new util::FileSearchEngine(this))
{
    connect(m_search, &util::FileSearchEngine::SearchStart, this, &FFmpegX::SearchStart);
    connect(m_search, &util::FileSearchEngine::SearchEnd, this, &FFmpegX::SearchEnd);
    connect(m_search, &util::FileSearchEngine::SearchFile, this, &FFmpegX::SearchFile);
    connect(&m_refreshTimer, &QTimer::timeout, this, &FFmpegX::onRefreshTick);
}

double FFmpegX::value() const
{
    return m_scan.value > m_scan.Max ? 0.0 : m_scan.value;
}

double FFmpegX::Max() const
{
    return m_scan.Max >= 1 ? m_scan.Max : 1.0;
}

void FFmpegX::setStatusRefreshInterval(int milliseconds)
{
    m_statusRefreshInterval = milliseconds;
    Q_EMIT PropertyMarkedChanged(QStringLiteral("StatusRefreshInterval"));
    if (m_processing && m_subclassEnabled) {
        m_refreshTimer.stop();
        m_refreshTimer.start(std::max(0, milliseconds));
    }
}

void FFmpegX::setFileName(const QString &value)
{
    m_fileInfo = value;
    m_fileName = value.section(u'|', 0, 0);
    m_scan = ScanState {};
    m_remainderInfo.clear();
    m_outputInfo.clear();
    m_twoPassStatus.clear();
    m_startTime.clear();
    m_endTime.clear();
    m_streamInfo.clear();
    m_fileSummary.clear();
    Video.DefaultVideoStream.clear();
    Video.DefaultAudioStream.clear();
    Subtitle.DefaultSubtitleStream.clear();
    // A drive (a name ending in ":") is read by the tool itself and has nothing to probe.
    if (!m_fileName.endsWith(u':'))
        m_streamInfo = GetStreamInfo(m_fileName);
    raiseStatus(kSettingChanged, value);
}

void FFmpegX::setOutputDir(const QString &value)
{
    if (value == m_outputDir)
        return;
    if (value.isEmpty() || value == QStringLiteral("\\"))
        m_outputDir.clear();
    else
        m_outputDir = util::cPath(value);
    raiseStatus(kSettingChanged, m_outputDir);
}

void FFmpegX::setJobComposer(JobComposer composer)
{
    m_composer = [this, composer = std::move(composer)](
                     int pass) -> ComposedCommand { return composer(Settings(), pass); };
}

JobSettings FFmpegX::Settings() const
{
    return {m_fileName, m_fileInfo, m_outputDir, m_core, m_tempBase, m_duration, m_source, FileOutput, Job,
        CoreState, Video, Audio, Subtitle, AVS, AVFilter, AVFilterVideoWatermark, AVFilterVideoSubtitle, Menc,
        MetaData, x264, Image, ImageWatermark};
}

QString FFmpegX::GetStatusString(int Status)
{
    return qb::engine::GetStatusString(Status);
}

void FFmpegX::raiseStatus(int code, const QString &text)
{
    if (m_allowRaiseEvent)
        Q_EMIT StatusChange(code, text);
}

void FFmpegX::raiseProgress(int position, int end, int fps, bool last)
{
    if (m_allowRaiseEvent)
        Q_EMIT ProgressChange(position, end, fps, m_remainderInfo, m_outputInfo, last);
}

QString FFmpegX::now() const
{
    return m_clock().toString(QStringLiteral("HH:mm:ss"));
}

void FFmpegX::SearchFileStart(
    const QString &Start_Dir, const QString &File_Pattern, const QString &Find_String)
{
    m_search->SearchFileStart(Start_Dir, File_Pattern, Find_String);
}

void FFmpegX::SearchFileStop()
{
    m_search->SearchFileStop();
}

bool FFmpegX::FileExists(const QString &FileName) const
{
    return util::FileExists(FileName);
}

bool FFmpegX::DirExists(const QString &path) const
{
    return util::DirExists(path);
}

bool FFmpegX::DirectoryExists(const QString &path) const
{
    return util::DirectoryExists(path);
}

QString FFmpegX::cPath(const QString &path) const
{
    return util::cPath(path);
}

bool FFmpegX::MakedPath(const QString &path) const
{
    return util::MakedPath(path);
}

QString FFmpegX::RenameExists(const QString &FileName) const
{
    return util::RenameExists(FileName);
}

bool FFmpegX::MoveFileTo(const QString &source, const QString &target) const
{
    return util::MoveFileTo(source, target, FileOutput.Overwrite);
}

QString FFmpegX::CreateTempFile(const QString &folder, const QString &prefix) const
{
    return util::CreateTempFile(folder, prefix);
}

qint64 FFmpegX::GetFileLen(const QString &FileName) const
{
    return util::GetFileLen(FileName);
}

QString FFmpegX::GetWindowsBaseDirectory() const
{
    return util::GetWindowsBaseDirectory();
}

QString FFmpegX::GetWindowsSystemDirectory() const
{
    return util::GetWindowsSystemDirectory();
}

QString FFmpegX::GetWindowsTempDirectory() const
{
    return util::GetWindowsTempDirectory();
}

} // namespace qb::engine
