// Starting a job and running its tool: checks, the read loop as steps on the event loop, cancel,
// suspend and resume, and how a job is judged when its tool has ended.
#include "engine/command_line.h"
#include "engine/ffmpegx.h"
#include "engine/ffmpegx_round.h"
#include "engine/ffmpegx_sheet.h"
#include "engine/job_progress.h"
#include "engine/status_codes.h"
#include "engine/stream_probe.h"
#include "engine/tool_run.h"
#include "engine/wait_for_tool.h"
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

// Synchronous helpers wait at most this long; a helper that needs more is ended.
constexpr int kHelperWaitMs = 10 * 60 * 1000;
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
        // One frame at the start; Processing ends with the picture.
        m_commandLine.clear();
        Screenshot(FileOutput.OutputFileName, m_fileName, {}, 0, FileOutput.ForceFormat, 1, 1,
            Video.VideoWidth, Video.VideoHeight);
        return;
    }

    m_jobActive = true;
    if (m_onlyUseExtCommandLine) {
        runCommand(m_commandLine, [this] { finishStartProcess(); });
        return;
    }
    m_cancelRequested = false;
    const ComposedCommand first = composeCommand(Job.Twopass ? 1 : 0);
    if (!m_refusal.isEmpty()) {
        refuseJob(m_refusal);
        return;
    }
    if (!Job.Twopass) {
        runCommand(first, [this] { finishStartProcess(); });
        return;
    }
    runCommand(first, [this] {
        // The first pass's output is a throw-away.
        if (util::FileExists(FileOutput.OutputFileName))
            QFile::remove(FileOutput.OutputFileName);
        QTimer::singleShot(0, this, &FFmpegX::runPassTwo);
    });
}

void FFmpegX::runPassTwo()
{
    if (m_cancelRequested) {
        finishStartProcess();
        return;
    }
    const ComposedCommand second = composeCommand(2);
    if (!m_refusal.isEmpty()) {
        refuseJob(m_refusal);
        return;
    }
    runCommand(second, [this] { finishStartProcess(); });
}

void FFmpegX::refuseJob(const QString &reason)
{
    raiseStatus(kError, reason);
    m_jobActive = false;
    m_processing = false;
    m_commandLine.clear();
}

void FFmpegX::finishStartProcess()
{
    const auto end = [this] {
        m_jobActive = false;
        m_commandLine.clear();
        // The encoder's notes from the first pass of a two-pass job.
        if (!m_tempBase.isEmpty()) {
            for (const char *suffix : {"-0.log", "-0.log.mbtree", "-0.log.temp", "-0.log.mbtree.temp"})
                QFile::remove(m_tempBase + QLatin1String(suffix));
        }
    };
    if (FileOutput.ForceFormat.compare(QStringLiteral("psp"), Qt::CaseInsensitive) == 0
        && CoreState.CoreStatus == 1) {
        // The player's thumbnail: one frame at five seconds, 160 by 120, as JPEG.
        startSheet(withoutExtension(FileOutput.OutputFileName) + QStringLiteral(".thm"),
            FileOutput.OutputFileName, {}, 5, QStringLiteral("jpg"), 1, 1, 160, 120, false, true, false, end);
        return;
    }
    end();
}

ComposedCommand FFmpegX::composeCommand(int pass)
{
    m_refusal.clear();
    m_twoPassStatus = QString::number(pass);
    m_processing = true;
    ComposedCommand command = m_composer ? m_composer(pass) : composeBuiltIn(pass, true);
    m_processing = true;
    // Not gated: hosts log the commands even when they silence the job.
    if (m_refusal.isEmpty())
        Q_EMIT ScriptChange(command.text);
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
    return HasListedSuffix(m_fileName, Image.ImageSuffixSupported);
}

FFmpegX::~FFmpegX()
{
    // Whatever still runs of the job stops now, not on a later turn.
    if (m_round)
        delete std::exchange(m_round->run, nullptr);
    // The job's temporary files go with it, those of a script composed outside a job too.
    for (const QString &slot : m_tempFiles) {
        if (!slot.isEmpty())
            QFile::remove(slot);
    }
    if (!m_tempBase.isEmpty())
        QFile::remove(m_tempBase);
}

void FFmpegX::setpriority(int priorityClass)
{
    if (priorityClass == m_priority)
        return;
    m_priority = priorityClass;
    Q_EMIT PropertyMarkedChanged(QStringLiteral("priority"));
    if (m_processing && m_round)
        m_round->run->setPriorityClass(priorityClass);
}

qint64 FFmpegX::ProcessId() const
{
    return m_round && m_round->run->running() ? m_round->run->pid() : 0;
}

void FFmpegX::post(void (FFmpegX::*step)(), int delayMs)
{
    if (!m_round)
        return;
    ToolRun *run = m_round->run;
    QTimer::singleShot(delayMs, run, [this, step, run] {
        if (m_round && m_round->run == run)
            (this->*step)();
    });
}

void FFmpegX::runCommand(const ComposedCommand &command, std::function<void()> done)
{
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

    m_round = std::make_unique<Round>(new ToolRun);
    m_round->done = std::move(done);
    ToolRun *run = m_round->run;
    if (!run->start(command.launch, m_priority, workingDir)) {
        raiseStatus(kError, StringContent.StringContent2);
        closeRun();
        return;
    }
    connect(run, &ToolRun::outputReady, this, &FFmpegX::onToolOutput);
    connect(run, &ToolRun::finished, this, &FFmpegX::onToolOutput);
    connect(run, &ToolRun::terminated, this, &FFmpegX::onToolGone);
    connect(run, &ToolRun::terminateFailed, this, &FFmpegX::onTerminateFailed);
    m_round->pipeOk = 1;
    if (m_subclassEnabled)
        m_refreshTimer.start(std::max(0, m_statusRefreshInterval));
    m_round->inLoop = true;
    roundBegin();
}

void FFmpegX::roundBegin()
{
    if (!m_round || !m_round->inLoop)
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
    if (!m_round || !m_round->inLoop)
        return;
    Round &round = *m_round;
    round.wait = Round::Wait::None;
    if (m_cancelRequested) {
        endLoop();
        return;
    }
    if (m_status == kSuspended) {
        // Nothing is read until ResumeApp or CancelProcess wakes the loop.
        round.wait = Round::Wait::Suspended;
        return;
    }
    if (round.run->hasOutput()) {
        round.pipeOk = 1;
        roundAfterRead(round.run->read(), false);
        return;
    }
    if (round.run->ended()) {
        // The tool has closed its end: this round is the last.
        round.pipeOk = 0;
        roundAfterRead(round.run->readRest(), true);
        return;
    }
    round.wait = Round::Wait::Data;
}

void FFmpegX::wake()
{
    if (m_round && m_round->wait != Round::Wait::None)
        post(&FFmpegX::resumeFromWait);
}

void FFmpegX::resumeFromWait()
{
    if (m_round->wait != Round::Wait::None)
        roundCheck();
}

void FFmpegX::onToolOutput()
{
    if (m_round && m_round->wait == Round::Wait::Data)
        roundCheck();
}

void FFmpegX::roundAfterRead(const QString &text, bool last)
{
    Q_UNUSED(last); // the last read's result is already in pipeOk
    m_round->pipeText = text;
    if (!text.isEmpty())
        m_round->chunkSinceTick = true;
    if (m_allowRaiseEvent)
        Q_EMIT PipeChange(text + QStringLiteral("\r\n"));
    if (!text.isEmpty() && !m_subclassEnabled)
        progressStep(false);
    // The yield: handlers and the refresh timer run before the chunk is scanned.
    post(&FFmpegX::roundTail);
}

void FFmpegX::roundTail()
{
    if (!m_round->inLoop)
        return;
    const QString chunk = std::exchange(m_round->pipeText, QString());
    if (m_log)
        logChunk(chunk);
    ScanContext context;
    context.TimeStartPoint = Job.TimeStartPoint;
    context.TimeEndPoint = Job.TimeEndPoint;
    context.Duration = m_duration;
    context.FileInfo = m_fileInfo;
    context.CommandLine = m_commandLine;
    context.timePositionsOnly
        = !m_composer && !m_onlyUseExtCommandLine && m_commandLine.isEmpty() && CoreState.CoreStatus == 1;
    context.StringContent14 = StringContent.StringContent14;
    context.StringContent16 = StringContent.StringContent16;
    context.StringContent19 = StringContent.StringContent19;
    context.StringContent20 = StringContent.StringContent20;
    const ToolRun *run = m_round->run;
    const auto raise = [this](int code, const QString &text) { raiseStatus(code, text); };
    if (m_interpreter)
        m_interpreter(chunk, m_scan, context, raise);
    else
        ScanToolOutput(chunk, m_scan, context, raise);
    // A handler may have ended the job, or even started the next one.
    if (!m_round || m_round->run != run || !m_round->inLoop)
        return;
    watchPriority();
    if (m_round->pipeOk == 0) {
        endLoop();
        return;
    }
    post(&FFmpegX::roundBegin);
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
        raiseProgress(wholeNumber(value()), wholeNumber(Max()), static_cast<int>(m_scan.FPSSpeed),
            !m_round || m_round->pipeOk == 0);
}

void FFmpegX::onRefreshTick()
{
    // A tick reports only when the tool has printed since the last one. (Yields here are whole
    // event-loop turns, so "a chunk is waiting to be scanned" cannot be caught at the instant.)
    if (!m_subclassEnabled || !m_round || !std::exchange(m_round->chunkSinceTick, false))
        return;
    progressStep(true);
}

void FFmpegX::logChunk(const QString &chunk)
{
    if (m_core.isEmpty())
        return;
    QString text = chunk;
    if (!m_inputName.isEmpty())
        text.replace(m_inputName, m_fileName);
    text.replace(QStringLiteral("avs"), QFileInfo(m_fileName).suffix());
    util::WriteText(text + QStringLiteral("\r\n"), withoutExtension(m_core) + QStringLiteral(".log"), true);
}

void FFmpegX::watchPriority()
{
    const std::optional<int> actual = m_round->run->priorityClass();
    if (!actual || *actual == m_priority)
        return;
    // The position lands in the priority field, so the event repeats every round; hosts rely on
    // the repetition as a sign that the tool could not be given its priority.
    m_priority = wholeNumber(value());
    Q_EMIT PropertyMarkedChanged(QStringLiteral("priority"));
    if (m_allowRaiseEvent)
        Q_EMIT PriorityChanged(*actual);
}

void FFmpegX::endLoop()
{
    m_round->inLoop = false;
    m_round->wait = Round::Wait::None;
    if (m_cancelRequested) {
        // Ends in onToolGone or onTerminateFailed, at once when the tool has gone already.
        m_round->run->terminate();
        return;
    }
    const QString output = FileOutput.OutputFileName;
    if (ImageGrabber.ImageGrabberEnabled && !Video.DisableVideo && util::FileExists(output)
        && util::GetFileLen(output) > 0) {
        startSheet(withoutExtension(output) + QStringLiteral(".Thumb.jpg"), output, {}, -1,
            QStringLiteral("jpg"), -1, -1, 0, 0, false, true, Job.AllowScreenshotAVS, [this] { closeRun(); });
        return;
    }
    closeRun();
}

void FFmpegX::onToolGone()
{
    raiseStatus(kCanceled, m_fileName);
    closeRun();
}

void FFmpegX::onTerminateFailed()
{
    raiseStatus(kCancelFailed, StringContent.StringContent3 + QString::number(m_round->run->pid()));
    closeRun();
}

void FFmpegX::closeRun()
{
    std::function<void()> done = m_round ? std::exchange(m_round->done, nullptr) : nullptr;
    m_round.reset();
    for (QString &slot : m_tempFiles) {
        if (!slot.isEmpty() && QFileInfo::exists(slot))
            QFile::remove(slot);
        slot.clear();
    }
    m_endTime = now();
    raiseProgress(0, 0, 0, true);
    decideEnd();

    // The job's reported fields start over for the next pass or job.
    const bool firstPass = m_twoPassStatus == QStringLiteral("1");
    m_scan = ScanState {};
    m_remainderInfo.clear();
    m_outputInfo.clear();
    m_refreshTimer.stop();
    m_processing = false;
    if (!firstPass)
        m_cancelRequested = false;
    m_twoPassStatus = QStringLiteral("0");
    if (done)
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
        if (m_round)
            m_round->run->suspend();
    }
    return 0;
}

int FFmpegX::ResumeApp()
{
    int previous = 0;
    if (m_status != kProcessing) {
        if (m_round && m_round->run->resume())
            previous = 1;
        m_status = kProcessing;
        wake();
    }
    return previous;
}

qint64 FFmpegX::SendKeyToDos(const QString &value)
{
    qint64 handle = 0;
    if (!value.isEmpty() && m_round && m_round->run->running()) {
        const char16_t code = value.at(0).unicode();
        // The key travels as its hexadecimal digits read back as a decimal number; a code whose
        // hexadecimal form holds a letter cannot, and nothing is typed.
        const QString hex = QString::number(code, 16);
        const bool digitsOnly = std::all_of(hex.cbegin(), hex.cend(), [](QChar c) { return c.isDigit(); });
        if (digitsOnly && m_round->run->write(QString(value.at(0)).toUtf8()))
            handle = m_round->run->pid();
    }
    if (m_round)
        m_round->pipeOk = handle;
    return handle;
}

bool FFmpegX::ExecuteAndWait(const QString &cmdline, bool ShowWindow)
{
    Q_UNUSED(ShowWindow); // no console windows to show here
    return WaitForTool(PlanDirectLaunch(cmdline), {kHelperWaitMs, 0}, ToolRun::Output::Discard).started;
}

bool FFmpegX::ShellAndWait(const QString &cmdline, bool ShowWindow)
{
    Q_UNUSED(ShowWindow);
    const ToolLaunch shell {QStringLiteral("/bin/sh"), {QStringLiteral("-c"), cmdline}, true};
    // Nothing ran when the shell could not start: the caller must not take it as done.
    return WaitForTool(shell, {kHelperWaitMs, 0}, ToolRun::Output::Forward).started;
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
