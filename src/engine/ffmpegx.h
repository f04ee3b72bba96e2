// FFmpegX: the job engine. One long-lived object that drives one outside tool at a time: the host
// sets properties, calls StartProcess and hears back through the signals below. The run is a state
// machine on the host's event loop: nothing blocks while a tool works, and handlers of the signals
// may cancel, suspend, resume or change the priority at any moment.
#pragma once

#include "engine/avisynth_script.h"
#include "engine/console_scan.h"
#include "engine/engine_properties.h"
#include "engine/engine_texts.h"
#include "engine/ffmpeg_composer.h"
#include "engine/job_settings.h"
#include "engine/stream_probe.h"
#include "engine/tool_command.h"
#include "imaging/image_conversion.h"

#include <QDateTime>
#include <QImage>
#include <QObject>
#include <QSettings>
#include <QString>
#include <QTime>
#include <QTimer>
#include <QVariantMap>

#include <array>
#include <functional>
#include <memory>

namespace qb::util {
class FileSearchEngine;
}

namespace qb::subtitle {
struct ConvertArguments;
}

namespace qb::engine {

class FFmpegX : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool Processing READ Processing WRITE setProcessing STORED false)
    Q_PROPERTY(int Status READ Status STORED false)
    Q_PROPERTY(double value READ value WRITE setvalue STORED false)
    Q_PROPERTY(double Max READ Max WRITE setMax STORED false)
    Q_PROPERTY(QString RemainderInfo READ RemainderInfo STORED false)
    Q_PROPERTY(QString OutputInfo READ OutputInfo STORED false)
    Q_PROPERTY(QString TwoPassStatus READ TwoPassStatus STORED false)
    Q_PROPERTY(QString StartTime READ StartTime STORED false)
    Q_PROPERTY(QString EndTime READ EndTime STORED false)
    Q_PROPERTY(double Duration READ Duration STORED false)
    Q_PROPERTY(QString StreamInfo READ StreamInfo STORED false)
    Q_PROPERTY(int StatusRefreshInterval READ StatusRefreshInterval WRITE setStatusRefreshInterval)
    Q_PROPERTY(bool SubclassEnabled READ SubclassEnabled WRITE setSubclassEnabled)
    Q_PROPERTY(bool AllowRaiseEvent READ AllowRaiseEvent WRITE setAllowRaiseEvent)
    Q_PROPERTY(bool OnlyUseExtCommandLine READ OnlyUseExtCommandLine WRITE setOnlyUseExtCommandLine)
    Q_PROPERTY(QString CommandLine READ CommandLine WRITE setCommandLine)
    Q_PROPERTY(bool Refresh READ Refresh WRITE setRefresh)
    Q_PROPERTY(bool Log READ Log WRITE setLog)
    Q_PROPERTY(int priority READ priority WRITE setpriority)
    // The tool before the source, so that a restored source is probed with the restored tool.
    Q_PROPERTY(QString Core READ Core WRITE setCore)
    Q_PROPERTY(QString FileName READ FileName WRITE setFileName)
    Q_PROPERTY(QString FileInfo READ FileInfo)
    Q_PROPERTY(QString OutputDir READ OutputDir WRITE setOutputDir)
    Q_PROPERTY(QString GetWindowsBaseDirectory READ GetWindowsBaseDirectory STORED false)
    Q_PROPERTY(QString GetWindowsSystemDirectory READ GetWindowsSystemDirectory STORED false)
    Q_PROPERTY(QString GetWindowsTempDirectory READ GetWindowsTempDirectory STORED false)

public:
    explicit FFmpegX(QObject *parent = nullptr);
    ~FFmpegX() override;

    // Families of plain properties.
    StringContentFamily StringContent;
    FileOutputFamily FileOutput;
    JobFamily Job;
    CoreFamily CoreState;
    VideoFamily Video;
    AVSFamily AVS;
    ImageGrabberFamily ImageGrabber;
    ImageFamily Image;
    StringChineseFamily StringChinese;
    ImageWatermarkFamily ImageWatermark;
    AVFilterVideoWatermarkFamily AVFilterVideoWatermark;
    AVFilterVideoSubtitleFamily AVFilterVideoSubtitle;
    AVFilterFamily AVFilter;
    MencFamily Menc;
    SubtitleFamily Subtitle;
    MetaDataFamily MetaData;
    x264Family x264;
    AudioFamily Audio;

    // The property bag: every stored property, the object's own and its families', flat under its
    // name. Reading takes what the bag has and what converts to the property's type; the rest keep
    // their values. The own properties go through their setters, and only when they change.
    void WriteProperties(QVariantMap &bag) const;
    void ReadProperties(const QVariantMap &bag);
    // The same in the settings' current group.
    void WriteProperties(QSettings &settings) const;
    void ReadProperties(const QSettings &settings);

    // Job state.
    bool Processing() const { return m_processing; }
    void setProcessing(bool on) { m_processing = on; }
    int Status() const { return m_status; }
    // The position; 0 while the stored position lies above Max.
    double value() const;
    void setvalue(double position) { m_scan.value = position; }
    // The end; 1 while the stored end is below 1.
    double Max() const;
    void setMax(double end) { m_scan.Max = end; }
    QString RemainderInfo() const { return m_remainderInfo; }
    QString OutputInfo() const { return m_outputInfo; }
    QString TwoPassStatus() const { return m_twoPassStatus; }
    QString StartTime() const { return m_startTime; }
    QString EndTime() const { return m_endTime; }
    double Duration() const { return m_duration; }
    QString StreamInfo() const { return m_streamInfo; }

    // Switches.
    int StatusRefreshInterval() const { return m_statusRefreshInterval; }
    void setStatusRefreshInterval(int milliseconds);
    bool SubclassEnabled() const { return m_subclassEnabled; }
    void setSubclassEnabled(bool on) { m_subclassEnabled = on; }
    bool AllowRaiseEvent() const { return m_allowRaiseEvent; }
    void setAllowRaiseEvent(bool on) { m_allowRaiseEvent = on; }
    bool OnlyUseExtCommandLine() const { return m_onlyUseExtCommandLine; }
    void setOnlyUseExtCommandLine(bool on) { m_onlyUseExtCommandLine = on; }
    QString CommandLine() const { return m_commandLine; }
    void setCommandLine(const QString &command) { m_commandLine = command; }
    bool Refresh() const { return m_refresh; }
    void setRefresh(bool on) { m_refresh = on; }
    bool Log() const { return m_log; }
    void setLog(bool on) { m_log = on; }
    // A priority class (64 idle by default); set while a job runs, it applies to the tool at once.
    int priority() const { return m_priority; }
    void setpriority(int priorityClass);

    // The job's source. A "|"-joined list keeps all of it in FileInfo; its first entry is FileName.
    QString FileName() const { return m_fileName; }
    void setFileName(const QString &value);
    // After a probe, its one-line summary; otherwise the value FileName was given.
    QString FileInfo() const { return m_fileSummary.isEmpty() ? m_fileInfo : m_fileSummary; }
    QString OutputDir() const { return m_outputDir; }
    void setOutputDir(const QString &value);
    // The tool; a name that is no file leaves the old one in place.
    QString Core() const { return m_core; }
    void setCore(const QString &path);

    // Knowing the tool and the source. Each runs a tool briefly and waits for it within bounds;
    // none runs while a job does.
    // All the tool printed for Args (its banner without); "" while a job runs.
    QString GetCoreVersion(const QString &Exe, const QString &Args);
    // Probes a source: fills the stream fields and FileInfo, returns the stream text and summary.
    QString GetStreamInfo(const QString &FileName);
    QString GetStreamNumber(const QString &Text) const;
    // One frame of a video at Seconds (-1: a tenth into it), taken by the media tool; null when
    // there is none.
    QImage GetVideoFrame(const QString &SourceFile, double Seconds = -1);
    // Frames of a video into a picture file: one frame at TimePoint (-1: a tenth into it), or a
    // contact sheet of Columns by Rows (-1: from ImageGrabberThumbMatrix), each frame sized by
    // ImageGrabberSize unless Width or Height overrule it, saved in Format (default
    // ImageGrabberFormat). Frames are taken one per event-loop turn, so cancel and suspend act
    // between them; the end is StatusChange 2 with the file, or 3 with StringContent21.
    void Screenshot(const QString &OutputFile, const QString &SourceFile, const QString &Script = {},
        double TimePoint = -1, const QString &Format = {}, int Columns = -1, int Rows = -1, int Width = 0,
        int Height = 0, bool RaiseEvents = true, bool Overwrite = true, bool AllowScreenshotAVS = false);
    // "crop=W:H:X:Y" for the black borders of a video, or "".
    QString GetVideoScreenCropInfo(const QString &FileName);

    // Converts subtitle and lyric files into the format of the destination's extension; the font,
    // offset, watermark, text format and name suffix come from the properties. True when the
    // destination was written.
    bool ConvertSubtitle(const QStringList &src_SubFile, const QString &dst_SubFile, int s_ScreenWidth,
        int s_ScreenHeight, const QString &s_TitleString, const QString &s_BannerString, int s_FontOutline,
        int s_FontShadow, quint8 s_FontAlphaLevel, int s_EffectStyle, double s_EffectSpeed,
        qint32 s_ForeColor, qint32 s_EffectColor, qint32 s_ShadowColor, bool s_Sort, int s_SubtitleAlign,
        bool allowFinishedEvent, bool allowOverwrite, double s_TimeStartPoint, double s_TimeEndPoint,
        int s_InternalCodeConversion, int s_RaiseEventInterval, bool s_SplitMode, bool s_MergeSamePosition);
    // The same with every argument given, as the job engine calls it with its own values.
    bool ff_ConvertSubtitle(const subtitle::ConvertArguments &arguments);

    // The frame server: whether it is installed (its library in the system folder and its source
    // plugin in the plugin folder it registered), and the script of the job's sources, written to
    // ScriptPath and, in TestMode, copied to OutputDir. The composer calls it before the tool
    // starts; it hands back the text written, "" when it could not be written.
    bool CheckAviSynthAvailable() const;
    QString ComposeScript(const QString &FileInfo, const QString &ScriptPath, int OutW, int OutH);

    // The picture forms: QImage for the picture object and the image handle, a whole PNG file for
    // the byte form (a loaded file's bytes as they stand). The loader reads layered-image files,
    // retries a file by its bytes and takes a frame of a video. Failures give false or nothing.
    bool StartUpGDIP(qint64 &lToken);
    void ShutdownGDIP(qint64 &lToken);
    QImage LoadStdPictureFromFile(const QString &FileName);
    bool ConvertImageToStdPicture(const QImage &hImage, QImage &hTargetImage);
    bool ConvertStdPictureToByte(const QImage &hSourceImage, QByteArray &hTargetByte);
    bool ConvertByteToImage(const QByteArray &hSourceByte, QImage &hImage);
    bool ConvertImageToByte(const QImage &hImage, QByteArray &hTargetByte);
    bool DisposeImage(QImage &hImage);
    bool ConvertByteToStdPicture(const QByteArray &hSourceByte, QImage &hTargetImage, qint32 lBackColor);
    bool SaveStdPictureToFile(const QImage &hSourceImage, const QString &FileName,
        const QString &encoderFormat, int lImageQuality, int lTIFF_ColorDepth, int lTIFF_Compression,
        qint32 lGIFTransparencyColor);
    bool SaveImageByteToFile(const QByteArray &hSourceByte, const QString &FileName,
        const QString &encoderFormat, int lImageQuality, int lTIFF_ColorDepth, int lTIFF_Compression,
        qint32 lGIFTransparencyColor);
    QByteArray LoadImageFileToByte(const QString &src_FileName);
    // Sizes in pixels: from the file's header, from the decoded picture (a video's frame too), of a
    // picture, of a byte form.
    bool GetImageSize(const QString &FileName, int &lW, int &lH);
    bool GetImageSize2(const QString &FileName, int &lW, int &lH);
    bool GetImageSizeFromStdPicture(const QImage &hSourceImage, int &lW, int &lH);
    bool GetImageSizeFromByte(const QByteArray &hSourceByte, int &lW, int &lH);

    // Pictures in memory through the core stage of picture conversion (size, tone, blur, cut,
    // placement, frame, torn edge, negative, shadow), in the fixed argument order; bytes are PNG.
    // bExpandEdge and sShadowOffset are taken for the order's sake: the blur has its own edge flag
    // and a shadow lies its own depth away.
    bool ResizeImagefromByte(const QByteArray &hSourceByte, QByteArray &hTargetByte,
        const QString &sTargetSize, int lStyle, int lBorderWidth, const QString &sBorderColor,
        quint8 bBorderAlpha, quint8 bBorderStyle, const QString &sEdgeIndentation, int lBorderIndentation,
        int lImageBrightness, int lImageContrast, bool bImageSharpen, int lRadiusTL, int lRadiusTR,
        int lRadiusBL, int lRadiusBR, int lRadiusStyleTL, int lRadiusStyleTR, int lRadiusStyleBL,
        int lRadiusStyleBR, int lImageBlurRectX, int lImageBlurRectY, int lImageBlurRectW,
        int lImageBlurRectH, int lTornEdge, bool bInvert, bool bImageBlurExpandEdge, int lImageBlurRadius,
        bool bExpandEdge, int CutX, int CutY, int CutW, int CutH, const QString &bBackColor,
        quint8 bBackAlpha, const QString &sShadowDepth, quint8 bShadowAlpha, qint32 lShadowColor,
        const QString &sShadowOffset, qint32 lRadiusStartColor, qint32 lRadiusEndColor,
        quint8 bRadiusStartAlpha, quint8 bRadiusEndAlpha);
    bool ResizeImagefromStdPicture(const QImage &hSourceImage, QImage &hTargetImage,
        const QString &sTargetSize, int lStyle, int lBorderWidth, const QString &sBorderColor,
        quint8 bBorderAlpha, quint8 bBorderStyle, const QString &sEdgeIndentation, int lBorderIndentation,
        int lImageBrightness, int lImageContrast, bool bImageSharpen, int lRadiusTL, int lRadiusTR,
        int lRadiusBL, int lRadiusBR, int lRadiusStyleTL, int lRadiusStyleTR, int lRadiusStyleBL,
        int lRadiusStyleBR, int lImageBlurRectX, int lImageBlurRectY, int lImageBlurRectW,
        int lImageBlurRectH, int lTornEdge, bool bInvert, bool bImageBlurExpandEdge, int lImageBlurRadius,
        bool bExpandEdge, int CutX, int CutY, int CutW, int CutH, const QString &bBackColor,
        quint8 bBackAlpha, const QString &sShadowDepth, quint8 bShadowAlpha, qint32 lShadowColor,
        const QString &sShadowOffset, qint32 lRadiusStartColor, qint32 lRadiusEndColor,
        quint8 bRadiusStartAlpha, quint8 bRadiusEndAlpha);
    // The platform's rotate-and-flip codes 0 to 7.
    bool FlipImagefromStdPicture(const QImage &hSourceImage, QImage &hTargetImage, int lRotateFlip);

    // The command for a pass (0 single, 1 and 2 of two passes): the encoder's own, or the host's
    // template in CommandLine with its macros expanded. It names the output, renders the overlays
    // and converts the subtitles the filter chain burns in, writes the test scripts in TestMode and
    // raises ScriptChange. "" when the tool cannot make the job's format (StartProcess then says
    // why); StartProcess always passes UseFilterScale True.
    QString ComposeCommand(int Pass, bool UseFilterScale);
    // Why the last composition gave no command, "" when it gave one.
    QString Refusal() const { return m_refusal; }
    // The MP4 muxer's language for an index or a word: the word, with its code in code.
    QString ChooseMp4BoxLanguage(const QString &value, QString &code) const;

    // The name of a status code; "" for 10, 11 and anything above 9.
    static QString GetStatusString(int Status);

    // Running.
    void StartProcess();
    void CancelProcess();
    int SuspendApp();
    int ResumeApp();
    // Runs a program (the command split by the command-line rules, no shell) and waits for it.
    bool ExecuteAndWait(const QString &cmdline, bool ShowWindow);
    // Runs a shell command and waits for it.
    bool ShellAndWait(const QString &cmdline, bool ShowWindow);
    // Types the first character of value into the running tool; the tool's id, or 0.
    qint64 SendKeyToDos(const QString &value);
    // Asks a process to close; true when the request was delivered.
    bool CloseProcess(qint64 lProcessID, int uExitCode);

    // Names and folders (forwarded to the utility layer).
    void SearchFileStart(const QString &Start_Dir, const QString &File_Pattern, const QString &Find_String);
    void SearchFileStop();
    bool FileExists(const QString &FileName) const;
    bool DirExists(const QString &path) const;
    bool DirectoryExists(const QString &path) const;
    QString cPath(const QString &path) const;
    bool MakedPath(const QString &path) const;
    QString RenameExists(const QString &FileName) const;
    bool MoveFileTo(const QString &source, const QString &target) const;
    QString CreateTempFile(const QString &folder, const QString &prefix) const;
    qint64 GetFileLen(const QString &FileName) const;
    QString GetWindowsBaseDirectory() const;
    QString GetWindowsSystemDirectory() const;
    QString GetWindowsTempDirectory() const;

    // Seams. The composer turns the job into a command for a pass (0 single, 1 and 2 of a
    // two-pass run); without one the built-in composer makes it (ComposeCommand). A job composer
    // is the pure form: it sees a copy of the job's settings and hands back program and arguments.
    // The interpreter reads the tool's output (today's console scan unless set). The clock gives
    // the local time of day; tests move it across midnight.
    using CommandComposer = std::function<ComposedCommand(int pass)>;
    void setCommandComposer(CommandComposer composer) { m_composer = std::move(composer); }
    void setJobComposer(JobComposer composer);
    void setConsoleInterpreter(ConsoleInterpreter interpreter) { m_interpreter = std::move(interpreter); }
    void setClock(std::function<QTime()> clock) { m_clock = std::move(clock); }

    // The job's settings as a composer sees them.
    JobSettings Settings() const;

    // True from the moment StartProcess hands a job to the tool until the job's very end, between
    // the passes of a two-pass job too, when Processing reads False for a moment.
    bool IsBusy() const { return m_jobActive; }

    // The tool's process id while a job runs, else 0.
    qint64 ProcessId() const;

Q_SIGNALS:
    // The events, in their numbering order.
    void DownloadsProgress(
        qint64 BytesRead, qint64 BytesMax, int Status, const QString &URL, const QString &SaveFileName);
    void DownloadsStatus(const QString &URL, int Status);
    void DownloadsFinished(const QString &URL, const QString &SaveFileName);
    void DownloadBegin(const QString &URL, const QString &SaveFileName);
    void DownloadAllComplete(const QString &URL, const QString &SaveFileName);
    void DownloadsFileStarted(const QString &URL, const QString &SaveFileName);
    void DownloadsFileReadySave(const QString &URL, const QString &SaveFileName);
    void DownloadsFileSaved(const QString &URL, const QString &SaveFileName);
    void DownloadsMIMEType(const QString &MimeType);
    void DownloadsCacheFile(const QString &CacheFileName);
    void ImageProgress(int ProgressValue, int ProgressMax);
    void FileInfoChange();
    void StatusChange(int Status, const QString &StatusText);
    void ProgressChange(int ProgressValue, int ProgressMax, int FPSSpeed, const QString &RemainderInfo,
        const QString &OutputInfo, bool LastStatusText);
    void PriorityChanged(int nPriority);
    void PipeChange(const QString &StatusText);
    void ScriptChange(const QString &StatusText);
    void SearchStart();
    void SearchEnd();
    void SearchFile(qint64 hits, double size, const QString &path);

    // Not an event: a stored property changed by the engine itself, for hosts that persist them.
    void PropertyMarkedChanged(const QString &name);

private:
    struct Round;

    // Gated raises.
    void raiseStatus(int code, const QString &text);
    void raiseProgress(int position, int end, int fps, bool last);

    QString now() const;
    QString startOutputFileName() const;
    bool sourceIsSupportedImage() const;
    ComposedCommand composeCommand(int pass);
    // The built-in composer; sets m_refusal when the tool cannot make the job.
    ComposedCommand composeBuiltIn(int pass, bool useFilterScale);
    FilterFiles prepareFilterFiles(QSize target);
    // A subtitle converted into the script the filter chain burns in; its bare name, or "" after
    // raising the failure.
    QString burnInSubtitle(const QString &source, const QString &target, QSize frame, const QString &font,
        const QString &foreColor, const QString &outlineColor, const QString &shadowColor, int outline,
        int shadow, quint8 alpha, int align);
    void writeTestScripts(const QString &command);
    // Ends a job that cannot start: the reason, and the job's state as before it.
    void refuseJob(const QString &reason);
    void finishStartProcess();
    void runPassTwo();

    // The run, one step per event-loop turn.
    void runCommand(const ComposedCommand &command, std::function<void()> done);
    void post(void (FFmpegX::*step)(), int delayMs = 0);
    void roundBegin();
    void roundCheck();
    void wake();
    void resumeFromWait();
    void roundAfterRead(const QString &text, bool last);
    void roundTail();
    void onToolOutput();
    void progressStep(bool fromTimer);
    void onRefreshTick();
    void logChunk(const QString &text);
    void watchPriority();
    void endLoop();
    void onToolGone();
    void onTerminateFailed();
    void closeRun();
    void decideEnd();

    // The tool's kind, version and capabilities from its banner.
    void detectCore(const QString &banner);
    void ReadCoreCapabilities(const QString &separator);
    // The probe's findings into the public fields.
    void publishFacts(const StreamFacts &facts);

    // Overlay documents for the filter chain and for the script path; neither reports a failure.
    void WriteWatermarkScript(const QString &FileName, int width, int height, bool advanced);
    void WriteAvsSubtitleFile(const QString &FileName);
    // What the script refers to on disk, converted and written into the job's temporary slots.
    ScriptAttachments scriptAttachments();
    // Converts a subtitle for the script path into target; "" after raising the failure.
    QString convertForScript(const QString &source, const QString &target);

    // How the picture loader tells and reads a video: by the video suffixes, a frame a tenth in.
    imaging::ConversionHooks pictureHooks();
    // The image branch: the files converted (several stitched) into output by the image families.
    bool ImageConversion(const QStringList &files, const QString &output, const QString &format);
    // The sheet in the making, one frame per event-loop turn; done runs after its end.
    struct SheetWork;
    void startSheet(const QString &output, const QString &sourceFile, const QString &script, double timePoint,
        const QString &format, int columns, int rows, int width, int height, bool raise, bool overwrite,
        bool allowScript, std::function<void()> done);
    void postSheetStep(int delayMs);
    void sheetStep();
    void finishSheet(bool framesTaken);
    // Length and picture size of a source from the player tool, within the short-run bounds.
    std::optional<MediaGraphFacts> quickGraph(const QString &file);

    ScanState m_scan;
    bool m_processing = false;
    int m_status = 0;
    bool m_cancelRequested = false;
    QString m_remainderInfo;
    QString m_outputInfo;
    QString m_twoPassStatus = QStringLiteral("0");
    QString m_startTime;
    QString m_endTime;
    double m_duration = 0;
    QString m_streamInfo;
    StreamFacts m_source; // what the last probe found, the private source fields included
    QString m_fileSummary;
    bool m_converting = false;
    int m_statusRefreshInterval = 500;
    bool m_subclassEnabled = false;
    bool m_allowRaiseEvent = true;
    bool m_onlyUseExtCommandLine = false;
    QString m_commandLine;
    bool m_refresh = false;
    bool m_log = false;
    int m_priority = 64;
    QString m_fileName;
    QString m_fileInfo;
    QString m_outputDir;
    QString m_core;

    // The job's files.
    QString m_tempBase;
    std::array<QString, 9> m_tempFiles;
    QString m_inputName;
    FilterFiles m_filterFiles; // what the first pass prepared, for the second
    QString m_probedFile; // the file the last probe read completely, and its time then
    QDateTime m_probedModified;
    QString m_refusal;
    QString m_composedText;

    bool m_jobActive = false;
    std::unique_ptr<Round> m_round; // the tool run of the pass under way
    std::unique_ptr<SheetWork> m_sheet; // the frames being taken for a picture
    QTimer m_refreshTimer;

    CommandComposer m_composer;
    ConsoleInterpreter m_interpreter;
    std::function<QTime()> m_clock;
    util::FileSearchEngine *m_search = nullptr;
};

} // namespace qb::engine
