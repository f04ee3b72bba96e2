// Starting a job and running its tool: checks, the read loop as steps on the event loop, cancel,
// suspend and resume, and how a job is judged when its tool has ended.
#include "engine/command_line.h"
#include "engine/ffmpegx.h"
#include "engine/job_progress.h"
#include "engine/status_codes.h"
#include "engine/tool_process.h"
#include "util/code_page.h"
#include "util/file_names.h"
#include "util/process_priority.h"
#include "util/text_file.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <limits>

namespace qb::engine {

namespace {

constexpr qint64 kChunkBytes = 256;
constexpr int kTerminateGraceMs = 500;
constexpr int kKillWaitMs = 2000;
constexpr qint64 kSmallestGoodOutput = 1024;

// Slots of the job's temporary files that the filter chain names without a folder.
constexpr std::array<size_t, 5> kFilterReferredSlots {1, 2, 3, 4, 5};

bool isImageFormat(const QString &format)
{
    static const QStringList kFormats {QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("png"),
        QStringLiteral("tif"), QStringLiteral("tiff"), QStringLiteral("bmp")};
    return kFormats.contains(format.toLower());
}

int wholeNumber(double v)
{
    const double t = std::floor(v);
    if (!(t > std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    if (!(t < std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    return static_cast<int>(t);
}

// How many bytes at the end start a UTF-8 character that the next read completes.
qsizetype incompleteUtf8Tail(const QByteArray &bytes)
{
    const qsizetype n = bytes.size();
    for (qsizetype back = 1; back <= 3 && back <= n; ++back) {
        const auto b = static_cast<unsigned char>(bytes[n - back]);
        if ((b & 0xC0) == 0x80)
            continue;
        if (b < 0xC0)
            return 0;
        const qsizetype need = b >= 0xF0 ? 4 : b >= 0xE0 ? 3 : 2;
        return need > back ? back : 0;
    }
    return 0;
}

// The path without its extension (only a dot in the last part counts).
QString withoutExtension(const QString &path)
{
    const qsizetype dot = path.lastIndexOf(u'.');
    const qsizetype slash = path.lastIndexOf(u'/');
    return dot > slash ? path.left(dot) : path;
}

} // namespace

void FFmpegX::StartProcess()
{
    if (m_processing || m_jobActive) {
        raiseStatus(kError, StringContent.StringContent6);
        return;
    }
    m_startTime = now();
    m_endTime.clear();
    if (m_commandLine.isEmpty()) {
        if (m_fileInfo.isEmpty()) {
            raiseStatus(kError, StringContent.StringContent9);
            return;
        }
        if (!m_fileName.endsWith(u':') && !util::FileExists(m_fileName)) {
            raiseStatus(kError, StringContent.StringContent10);
            return;
        }
        if (m_outputDir.isEmpty()) {
            raiseStatus(kInfoString, StringContent.StringContent12);
        } else if (!util::DirExists(m_outputDir)) {
            raiseStatus(kError, StringContent.StringContent11);
            return;
        }
    }
    m_processing = true;

    const bool imageOut = isImageFormat(FileOutput.ForceFormat);
    if (imageOut && sourceIsSupportedImage()) {
        FileOutput.OutputFileName = startOutputFileName();
        ImageConversion({m_fileName}, FileOutput.OutputFileName, FileOutput.ForceFormat);
        if (util::FileExists(FileOutput.OutputFileName)) {
            if (util::GetFileLen(FileOutput.OutputFileName) < 1)
                raiseStatus(kError, StringContent.StringContent15);
            else
                raiseStatus(kComplete, FileOutput.OutputFileName);
        } else {
            raiseStatus(kError, StringContent.StringContent17);
        }
        m_processing = false;
        m_commandLine.clear();
        return;
    }

    // These returns leave Processing set on purpose: the host clears it.
    if (!QFileInfo(m_core).isFile() && m_commandLine.isEmpty() && !imageOut) {
        raiseStatus(kError, StringContent.StringContent7);
        return;
    }
    if (AVS.AVSEnabled) {
        if (!QFileInfo::exists(util::GetWindowsSystemDirectory() + QStringLiteral("/avisynth.dll"))) {
            raiseStatus(kError, StringContent.StringContent18);
            return;
        }
        const bool overlayA
            = (!AVS.AVSSubtitleStringLogo.isEmpty() && AVS.AVSSubtitleEnableLogo) || AVS.AVSEnableSubtitle;
        const bool overlayB = !AVS.AVSSubtitleStringBanner.isEmpty() && AVS.AVSSubtitleEnableBanner;
        if (!(overlayA && overlayB) && !QFileInfo(AVS.AVSVSFilterPath).isFile()) {
            raiseStatus(kError, StringContent.StringContent13);
            return;
        }
    }

    if (imageOut && Job.AllowVideoToImage && Video.VideoWidth >= 1 && Video.VideoHeight >= 1) {
        FileOutput.OutputFileName = startOutputFileName();
        Screenshot(m_fileName, FileOutput.OutputFileName, Video.VideoWidth, Video.VideoHeight, 0);
        m_processing = false;
        m_commandLine.clear();
        return;
    }

    m_jobActive = true;
    if (m_onlyUseExtCommandLine) {
        runCommand(m_commandLine, [this] { finishStartProcess(); });
        return;
    }
    m_cancelRequested = false;
    if (!Job.Twopass) {
        runCommand(composeCommand(0), [this] { finishStartProcess(); });
        return;
    }
    runCommand(composeCommand(1), [this] {
        // The first pass's output is a throw-away.
        if (util::FileExists(FileOutput.OutputFileName))
            QFile::remove(FileOutput.OutputFileName);
        post(&FFmpegX::runPassTwo);
    });
}

void FFmpegX::runPassTwo()
{
    if (m_cancelRequested) {
        finishStartProcess();
        return;
    }
    runCommand(composeCommand(2), [this] { finishStartProcess(); });
}

void FFmpegX::finishStartProcess()
{
    if (FileOutput.ForceFormat.compare(QStringLiteral("psp"), Qt::CaseInsensitive) == 0
        && CoreState.CoreStatus == 1) {
        Screenshot(FileOutput.OutputFileName,
            withoutExtension(FileOutput.OutputFileName) + QStringLiteral(".thm"), 160, 120, 5);
    }
    m_jobActive = false;
    m_commandLine.clear();
}

QString FFmpegX::composeCommand(int pass)
{
    m_twoPassStatus = QString::number(pass);
    m_processing = true;
    const QString command = m_composer ? m_composer(pass) : QString();
    // Not gated: hosts log the commands even when they silence the job.
    Q_EMIT ScriptChange(command);
    return command;
}

QString FFmpegX::startOutputFileName() const
{
    if (!FileOutput.ForceOutputFileName.isEmpty())
        return util::RenameExists(FileOutput.ForceOutputFileName);
    const QFileInfo source(m_fileName);
    const QString folder = !m_outputDir.isEmpty() ? util::cPath(m_outputDir) : util::cPath(source.path());
    const QString base
        = !FileOutput.CustomFileName.isEmpty() ? FileOutput.CustomFileName : source.completeBaseName();
    return util::RenameExists(folder + FileOutput.FileNameAddStringBefore + base
        + FileOutput.FileNameAddStringAfter + u'.' + FileOutput.ForceFormat);
}

bool FFmpegX::sourceIsSupportedImage() const
{
    const QString suffix = QFileInfo(m_fileName).suffix().toLower();
    if (suffix.isEmpty())
        return false;
    const QStringList patterns = Image.ImageSuffixSupported.toLower().split(u';', Qt::SkipEmptyParts);
    const QString wanted = QStringLiteral("*.") + suffix;
    return std::any_of(
        patterns.cbegin(), patterns.cend(), [&](const QString &p) { return p.trimmed() == wanted; });
}

void FFmpegX::post(void (FFmpegX::*step)(), int delayMs)
{
    QTimer::singleShot(delayMs, this, [this, step, generation = m_runGeneration] {
        if (generation == m_runGeneration)
            (this->*step)();
    });
}

void FFmpegX::runCommand(const QString &command, std::function<void()> done)
{
    m_runDone = std::move(done);
    if (m_tempBase.isEmpty() || !QFileInfo::exists(m_tempBase))
        m_tempBase = util::CreateTempFile(util::GetWindowsTempDirectory(), QStringLiteral("qbx"));
    const bool filterFilesUsed = std::any_of(kFilterReferredSlots.cbegin(), kFilterReferredSlots.cend(),
        [this](size_t slot) { return !m_tempFiles[slot].isEmpty(); });
    // The filter chain names its files without a folder, so the tool runs where they are.
    const QString workingDir
        = filterFilesUsed ? QFileInfo(m_tempBase).absolutePath() : QCoreApplication::applicationDirPath();
    m_inputName = AVS.AVSEnabled ? m_tempBase + QStringLiteral(".avs") : m_fileName;

    raiseStatus(kStarting, m_fileName);
    m_status = kProcessing;
    raiseStatus(kProcessing, m_fileName);

    m_pipeOk = 0;
    m_pipeText.clear();
    m_pendingBytes.clear();
    m_toolEnded = false;
    m_chunkSinceTick = false;
    m_wait = Wait::None;
    m_terminateStage = 0;
    m_tool = new ToolProcess;
    if (!m_tool->start(PlanToolLaunch(command), util::NiceForPriorityClass(m_priority), workingDir)) {
        raiseStatus(kError, StringContent.StringContent2);
        closeRun();
        return;
    }
    QProcess *process = &m_tool->process();
    connect(process, &QProcess::readyRead, this, &FFmpegX::onToolOutput);
    connect(process, &QProcess::finished, this, [this] {
        m_toolEnded = true;
        if (m_terminateStage > 0)
            onToolGone();
        else
            onToolOutput();
    });
    m_pipeOk = 1;
    if (m_subclassEnabled)
        m_refreshTimer.start(std::max(0, m_statusRefreshInterval));
    m_inLoop = true;
    roundBegin();
}

void FFmpegX::roundBegin()
{
    if (!m_inLoop)
        return;
    if (m_refresh) {
        // The optional extra yield with its 1 ms pause.
        post(&FFmpegX::roundCheck, 1);
        return;
    }
    roundCheck();
}

void FFmpegX::roundCheck()
{
    if (!m_inLoop)
        return;
    m_wait = Wait::None;
    if (m_cancelRequested) {
        endLoop();
        return;
    }
    if (m_status == kSuspended) {
        // Nothing is read until ResumeApp or CancelProcess wakes the loop.
        m_wait = Wait::Suspended;
        return;
    }
    QProcess &process = m_tool->process();
    if (process.bytesAvailable() > 0) {
        m_pipeOk = 1;
        roundAfterRead(process.read(kChunkBytes));
        return;
    }
    if (m_toolEnded || !m_tool->running()) {
        // The tool has closed its end: this round is the last.
        m_pipeOk = 0;
        roundAfterRead({});
        return;
    }
    m_wait = Wait::Data;
}

void FFmpegX::wake()
{
    if (m_wait != Wait::None)
        post(&FFmpegX::resumeFromWait);
}

void FFmpegX::resumeFromWait()
{
    if (m_wait != Wait::None)
        roundCheck();
}

void FFmpegX::onToolOutput()
{
    if (m_wait == Wait::Data)
        roundCheck();
}

void FFmpegX::roundAfterRead(const QByteArray &bytes)
{
    m_pipeText = decodeChunk(bytes, bytes.isEmpty());
    if (!m_pipeText.isEmpty())
        m_chunkSinceTick = true;
    if (m_allowRaiseEvent)
        Q_EMIT PipeChange(m_pipeText + QStringLiteral("\r\n"));
    if (!m_pipeText.isEmpty() && !m_subclassEnabled)
        progressStep(false);
    // The yield: handlers and the refresh timer run before the chunk is scanned.
    post(&FFmpegX::roundTail);
}

void FFmpegX::roundTail()
{
    if (!m_inLoop)
        return;
    if (m_log)
        logChunk();
    ScanContext context;
    context.TimeStartPoint = Job.TimeStartPoint;
    context.TimeEndPoint = Job.TimeEndPoint;
    context.Duration = m_duration;
    context.FileInfo = m_fileInfo;
    context.CommandLine = m_commandLine;
    context.StringContent14 = StringContent.StringContent14;
    context.StringContent16 = StringContent.StringContent16;
    context.StringContent19 = StringContent.StringContent19;
    context.StringContent20 = StringContent.StringContent20;
    const QString chunk = std::exchange(m_pipeText, QString());
    ScanToolOutput(
        chunk, m_scan, context, [this](int code, const QString &text) { raiseStatus(code, text); });
    if (!m_inLoop)
        return;
    watchPriority();
    if (m_pipeOk == 0) {
        endLoop();
        return;
    }
    post(&FFmpegX::roundBegin);
}

QString FFmpegX::decodeChunk(const QByteArray &bytes, bool final)
{
    QByteArray text = m_pendingBytes + bytes;
    m_pendingBytes.clear();
    if (!final) {
        // A character cut by the 256-byte read waits for its rest instead of turning into garbage.
        const qsizetype tail = incompleteUtf8Tail(text);
        if (tail > 0 && util::IsValidUtf8(QByteArrayView(text).first(text.size() - tail))) {
            m_pendingBytes = text.right(tail);
            text.chop(tail);
        }
    }
    return util::DecodeCodePage(text, 0);
}

void FFmpegX::progressStep(bool fromTimer)
{
    if (!(m_scan.value > 0) && m_scan.FPSSpeed < 1)
        return;
    if (m_scan.Max > 0) {
        const QString remainder = RemainderText(ElapsedMSecs(m_startTime, now()), m_scan.value, m_scan.Max);
        if (!remainder.isEmpty())
            m_remainderInfo = remainder;
    }
    if (fromTimer || !m_subclassEnabled)
        raiseProgress(
            wholeNumber(value()), wholeNumber(Max()), static_cast<int>(m_scan.FPSSpeed), m_pipeOk == 0);
}

void FFmpegX::onRefreshTick()
{
    // A tick reports only when the tool has printed since the last one. (Yields here are whole
    // event-loop turns, so "a chunk is waiting to be scanned" cannot be caught at the instant.)
    if (!m_subclassEnabled || !std::exchange(m_chunkSinceTick, false))
        return;
    progressStep(true);
}

void FFmpegX::logChunk()
{
    if (m_core.isEmpty())
        return;
    QString text = m_pipeText;
    if (!m_inputName.isEmpty())
        text.replace(m_inputName, m_fileName);
    text.replace(QStringLiteral("avs"), QFileInfo(m_fileName).suffix());
    util::WriteText(text + QStringLiteral("\r\n"), withoutExtension(m_core) + QStringLiteral(".log"), true);
}

void FFmpegX::watchPriority()
{
    const std::optional<int> nice = m_tool ? m_tool->nice() : std::nullopt;
    if (!nice)
        return;
    const int actual = util::PriorityClassForNice(*nice);
    if (actual == m_priority)
        return;
    // The position lands in the priority field, so the event repeats every round; hosts rely on
    // the repetition as a sign that the tool could not be given its priority.
    m_priority = wholeNumber(value());
    Q_EMIT PropertyMarkedChanged(QStringLiteral("priority"));
    if (m_allowRaiseEvent)
        Q_EMIT PriorityChanged(actual);
}

void FFmpegX::endLoop()
{
    m_inLoop = false;
    m_wait = Wait::None;
    if (m_cancelRequested) {
        terminateTool();
        return;
    }
    const QString output = FileOutput.OutputFileName;
    if (ImageGrabber.ImageGrabberEnabled && !Video.DisableVideo && util::FileExists(output)
        && util::GetFileLen(output) > 0) {
        WriteContactSheet(output, withoutExtension(output) + QStringLiteral(".Thumb.jpg"));
    }
    closeRun();
}

void FFmpegX::terminateTool()
{
    if (!m_tool->running()) {
        // Gone already (it may have obeyed the key); whatever it left in its group goes too.
        m_tool->signalGroup(SIGKILL);
        raiseStatus(kCanceled, m_fileName);
        closeRun();
        return;
    }
    m_terminateStage = 1;
    m_tool->signalGroup(SIGTERM);
    m_tool->signalGroup(SIGCONT); // a suspended tool only sees the request once it runs
    m_terminateTimer.start(kTerminateGraceMs);
}

void FFmpegX::onTerminateTimeout()
{
    if (m_terminateStage == 1) {
        m_terminateStage = 2;
        m_tool->signalGroup(SIGKILL);
        m_terminateTimer.start(kKillWaitMs);
        return;
    }
    m_terminateStage = 0;
    raiseStatus(kCancelFailed, StringContent.StringContent3 + QString::number(m_tool->pid()));
    closeRun();
}

void FFmpegX::onToolGone()
{
    m_terminateTimer.stop();
    m_terminateStage = 0;
    m_tool->signalGroup(SIGKILL);
    raiseStatus(kCanceled, m_fileName);
    closeRun();
}

void FFmpegX::closeRun()
{
    m_inLoop = false;
    m_wait = Wait::None;
    if (m_tool) {
        disconnect(&m_tool->process(), nullptr, this, nullptr);
        m_tool->deleteLater();
        m_tool = nullptr;
    }
    for (QString &slot : m_tempFiles) {
        if (!slot.isEmpty() && QFileInfo::exists(slot))
            QFile::remove(slot);
        slot.clear();
    }
    m_endTime = now();
    raiseProgress(0, 0, 0, true);
    decideEnd();

    const bool firstPass = m_twoPassStatus == QStringLiteral("1");
    m_scan = ScanState {};
    m_remainderInfo.clear();
    m_outputInfo.clear();
    m_refreshTimer.stop();
    m_processing = false;
    if (!firstPass)
        m_cancelRequested = false;
    m_twoPassStatus = QStringLiteral("0");
    ++m_runGeneration;
    if (auto done = std::exchange(m_runDone, nullptr))
        done();
}

void FFmpegX::decideEnd()
{
    if (m_onlyUseExtCommandLine) {
        // The host judges the outcome of its own command.
        raiseStatus(kComplete, QString());
        return;
    }
    const QString output = FileOutput.OutputFileName;
    if (m_cancelRequested) {
        if (FileOutput.RemoveFileAfterCanceled && util::FileExists(output))
            QFile::remove(output);
        return;
    }
    const QString suffix = FileOutput.SourceSuffix.toLower();
    if (suffix == QStringLiteral("mkv") || suffix == QStringLiteral("webm")) {
        // A three-way cut: the middle piece is the wanted clip.
        const QString base = withoutExtension(output);
        const QString ext = QFileInfo(output).suffix();
        const QString first = base + QStringLiteral("-001.") + ext;
        const QString second = base + QStringLiteral("-002.") + ext;
        const QString third = base + QStringLiteral("-003.") + ext;
        if (QFileInfo::exists(first) && QFileInfo::exists(second)) {
            QFile::remove(first);
            if (QFileInfo::exists(third))
                QFile::remove(third);
            QFile::rename(second, output);
        }
    }
    if (util::FileExists(output)) {
        if (util::GetFileLen(output) < kSmallestGoodOutput) {
            raiseStatus(kError, StringContent.StringContent15);
        } else if (m_twoPassStatus == QStringLiteral("1")) {
            m_status = kProcessing;
            raiseStatus(kInfoString, QStringLiteral("Pass 1 OK"));
        } else {
            raiseStatus(kComplete, output);
        }
    } else if (m_twoPassStatus != QStringLiteral("1")) {
        raiseStatus(kError, StringContent.StringContent17);
    }
}

void FFmpegX::CancelProcess()
{
    if (!m_processing) {
        raiseStatus(kError, StringContent.StringContent5);
        return;
    }
    SendKeyToDos(QStringLiteral("q"));
    m_cancelRequested = true;
    // A tool that is silent or suspended would otherwise keep the loop waiting.
    wake();
}

int FFmpegX::SuspendApp()
{
    if (m_status != kSuspended) {
        m_status = kSuspended;
        if (m_tool && m_tool->running())
            m_tool->signalGroup(SIGSTOP);
    }
    return 0;
}

int FFmpegX::ResumeApp()
{
    int previous = 0;
    if (m_status != kProcessing) {
        if (m_tool && m_tool->running() && m_tool->signalGroup(SIGCONT))
            previous = 1;
        m_status = kProcessing;
        wake();
    }
    return previous;
}

qint64 FFmpegX::SendKeyToDos(const QString &value)
{
    qint64 handle = 0;
    if (!value.isEmpty() && m_tool && m_tool->running()) {
        const char16_t code = value.at(0).unicode();
        // The key travels as its hexadecimal digits read back as a decimal number; a code whose
        // hexadecimal form holds a letter cannot, and nothing is typed.
        const QString hex = QString::number(code, 16);
        const bool digitsOnly = std::all_of(hex.cbegin(), hex.cend(), [](QChar c) { return c.isDigit(); });
        if (digitsOnly && m_tool->process().write(QString(value.at(0)).toUtf8()) > 0)
            handle = m_tool->pid();
    }
    m_pipeOk = handle;
    return handle;
}

bool FFmpegX::ExecuteAndWait(const QString &cmdline, bool ShowWindow)
{
    Q_UNUSED(ShowWindow); // no console windows to show here
    const ToolLaunch launch = PlanDirectLaunch(cmdline);
    ToolProcess tool;
    tool.process().setStandardOutputFile(QProcess::nullDevice());
    if (!tool.start(launch, util::NiceForPriorityClass(util::kPriorityNormal), QString()))
        return false;
    tool.process().closeWriteChannel();
    tool.process().waitForFinished(-1);
    return true;
}

bool FFmpegX::ShellAndWait(const QString &cmdline, bool ShowWindow)
{
    Q_UNUSED(ShowWindow);
    QProcess shell;
    shell.setProcessChannelMode(QProcess::ForwardedChannels);
    shell.setStandardInputFile(QProcess::nullDevice());
    shell.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), cmdline});
    if (!shell.waitForStarted(30000))
        return false; // nothing ran: the caller must not take it as done
    shell.waitForFinished(-1);
    return true;
}

bool FFmpegX::CloseProcess(qint64 lProcessID, int uExitCode)
{
    Q_UNUSED(uExitCode); // a polite close lets the program choose its own code
    // Never 0 or negative: those would address process groups.
    if (lProcessID <= 0 || lProcessID > std::numeric_limits<pid_t>::max())
        return false;
    return ::kill(static_cast<pid_t>(lProcessID), SIGTERM) == 0;
}

} // namespace qb::engine
