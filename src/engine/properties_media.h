// Property families of the media streams: video, audio and subtitles as the probe found them and as
// the output gets them, with the tags and the encoder choices that go along.
#pragma once

#include "engine/properties_defaults.h"

#include <QObject>
#include <QString>

namespace qb::engine {

// The video side: what the probe found in the source and what the output gets.
struct VideoFamily
{
    Q_GADGET
    Q_PROPERTY(QString VideoStreamInfo MEMBER VideoStreamInfo STORED false)
    Q_PROPERTY(int VideoStreamCount MEMBER VideoStreamCount STORED false)
    Q_PROPERTY(int PadBorder MEMBER PadBorder)
    Q_PROPERTY(QString DefaultVideoStream MEMBER DefaultVideoStream STORED false)
    Q_PROPERTY(QString DefaultAudioStream MEMBER DefaultAudioStream STORED false)
    // The source's size, from the probe like the stream fields.
    Q_PROPERTY(int VideoWidth MEMBER VideoWidth STORED false)
    Q_PROPERTY(int VideoHeight MEMBER VideoHeight STORED false)
    Q_PROPERTY(QString VideoCodec MEMBER VideoCodec)
    Q_PROPERTY(double VideoAspect MEMBER VideoAspect)
    Q_PROPERTY(QString VideoSize MEMBER VideoSize)
    Q_PROPERTY(int VideoBitRate MEMBER VideoBitRate)
    Q_PROPERTY(int VideoVBR MEMBER VideoVBR)
    Q_PROPERTY(double FrameRate MEMBER FrameRate)
    Q_PROPERTY(QString VideoSuffixSupported MEMBER VideoSuffixSupported)
    Q_PROPERTY(bool Deinterlace MEMBER Deinterlace)
    Q_PROPERTY(bool DisableVideo MEMBER DisableVideo)
    Q_PROPERTY(bool VideoAutoCrop MEMBER VideoAutoCrop)
    Q_PROPERTY(int VideoCropTop MEMBER VideoCropTop)
    Q_PROPERTY(int VideoCropBottom MEMBER VideoCropBottom)
    Q_PROPERTY(int VideoCropLeft MEMBER VideoCropLeft)
    Q_PROPERTY(int VideoCropRight MEMBER VideoCropRight)
    Q_PROPERTY(int VideoPadTop MEMBER VideoPadTop)
    Q_PROPERTY(int VideoPadBottom MEMBER VideoPadBottom)
    Q_PROPERTY(int VideoPadLeft MEMBER VideoPadLeft)
    Q_PROPERTY(int VideoPadRight MEMBER VideoPadRight)
    Q_PROPERTY(QString VideoPadColor MEMBER VideoPadColor)
    Q_PROPERTY(bool MultiVideoTrackSupport MEMBER MultiVideoTrackSupport)
    Q_PROPERTY(QString VideoPixelformats MEMBER VideoPixelformats)

public:
    QString VideoStreamInfo;
    int VideoStreamCount = 0;
    int PadBorder = 0;
    QString DefaultVideoStream;
    QString DefaultAudioStream;
    int VideoWidth = 0;
    int VideoHeight = 0;
    QString VideoCodec;
    double VideoAspect = 0;
    QString VideoSize;
    int VideoBitRate = 0;
    int VideoVBR = 0;
    double FrameRate = 0;
    QString VideoSuffixSupported = QStringLiteral(
        "*.webm; *.ogv; *.rmvb; *.rm; *.avi; *.mp4; *.3gp; *.264; *.h264; *.avc; *.dat; *.qt; *.mov; *.mpg; "
        "*.mpeg; *.m1v; *.wmv; *.asf; *.mkv; *.flv; *.pmp; *.divx; *.3gp2; *.3g2; *.3gpp; *.fli; *.flc; "
        "*.m4v; *.dv; *.ogm; *.dsm; *.vob; *.cin; *.ts; *.trp; *.mts; *.m2ts; *.tp; *.trp; *.ts");
    bool Deinterlace = false;
    bool DisableVideo = false;
    bool VideoAutoCrop = false;
    int VideoCropTop = 0;
    int VideoCropBottom = 0;
    int VideoCropLeft = 0;
    int VideoCropRight = 0;
    int VideoPadTop = 0;
    int VideoPadBottom = 0;
    int VideoPadLeft = 0;
    int VideoPadRight = 0;
    QString VideoPadColor = DefaultColorText();
    bool MultiVideoTrackSupport = false;
    QString VideoPixelformats;
};

// The audio side of the source and of the output.
struct AudioFamily
{
    Q_GADGET
    Q_PROPERTY(QString AudioStreamInfo MEMBER AudioStreamInfo STORED false)
    Q_PROPERTY(int AudioStreamCount MEMBER AudioStreamCount STORED false)
    Q_PROPERTY(QString AudioCodec MEMBER AudioCodec)
    Q_PROPERTY(int AudioBitRate MEMBER AudioBitRate)
    Q_PROPERTY(int AudioQuality MEMBER AudioQuality)
    Q_PROPERTY(int AudioSampleRate MEMBER AudioSampleRate)
    Q_PROPERTY(int AudioVolume MEMBER AudioVolume)
    Q_PROPERTY(int AudioChannels MEMBER AudioChannels)
    Q_PROPERTY(QString AudioSuffixSupported MEMBER AudioSuffixSupported)
    Q_PROPERTY(bool DisableAudio MEMBER DisableAudio)
    Q_PROPERTY(bool MultiAudioTrackSupport MEMBER MultiAudioTrackSupport)
    Q_PROPERTY(QString AudioReplaceFileName MEMBER AudioReplaceFileName)
    Q_PROPERTY(double AudioStreamDelay MEMBER AudioStreamDelay)

public:
    QString AudioStreamInfo;
    int AudioStreamCount = 0;
    QString AudioCodec;
    int AudioBitRate = 0;
    int AudioQuality = 0;
    int AudioSampleRate = 0;
    int AudioVolume = 0;
    int AudioChannels = 0;
    QString AudioSuffixSupported
        = QStringLiteral("*.mp3; *.wma; *.mp2; *.ac3; *.ogg; *.wav; *.aac; *.dts; *.aiff; *.au; *.ram; *.ra; "
                         "*.cda; *.amr; *.m4a; *.mmf; *.awb; *.flac; *.ape; *.mpc");
    bool DisableAudio = false;
    bool MultiAudioTrackSupport = false;
    QString AudioReplaceFileName;
    double AudioStreamDelay = 0;
};

// Subtitle streams, the switches that carry them, and the converter's settings.
struct SubtitleFamily
{
    Q_GADGET
    Q_PROPERTY(QString SubtitleStreamInfo MEMBER SubtitleStreamInfo STORED false)
    Q_PROPERTY(int SubtitleStreamCount MEMBER SubtitleStreamCount STORED false)
    Q_PROPERTY(QString DefaultSubtitleStream MEMBER DefaultSubtitleStream STORED false)
    Q_PROPERTY(QString SubtitleCodec MEMBER SubtitleCodec)
    Q_PROPERTY(QString SubtitleLanguage MEMBER SubtitleLanguage)
    Q_PROPERTY(QString SubtitleFourccTag MEMBER SubtitleFourccTag)
    Q_PROPERTY(QString SubtitleBitstreamFilter MEMBER SubtitleBitstreamFilter)
    Q_PROPERTY(bool DisableSubtitle MEMBER DisableSubtitle)
    Q_PROPERTY(int SubtitleEncodeFormat MEMBER SubtitleEncodeFormat)
    Q_PROPERTY(bool MultiSubtitleTrackSupport MEMBER MultiSubtitleTrackSupport)
    Q_PROPERTY(bool SubtitleConvertFormated MEMBER SubtitleConvertFormated)
    Q_PROPERTY(QString SubtitleConvertFont MEMBER SubtitleConvertFont)
    Q_PROPERTY(QString SubtitleWatermarkText MEMBER SubtitleWatermarkText)
    Q_PROPERTY(double SubtitleWatermarkTextStartPoint MEMBER SubtitleWatermarkTextStartPoint)
    Q_PROPERTY(double SubtitleWatermarkTextEndPoint MEMBER SubtitleWatermarkTextEndPoint)
    Q_PROPERTY(double SubtitleTimeOffset MEMBER SubtitleTimeOffset)
    Q_PROPERTY(QString CoreSubtitleCodec MEMBER CoreSubtitleCodec STORED false)
    Q_PROPERTY(QString SubtitleSuffixSupported MEMBER SubtitleSuffixSupported)

public:
    QString SubtitleStreamInfo;
    int SubtitleStreamCount = 0;
    QString DefaultSubtitleStream;
    QString SubtitleCodec;
    QString SubtitleLanguage;
    QString SubtitleFourccTag;
    QString SubtitleBitstreamFilter;
    bool DisableSubtitle = false;
    int SubtitleEncodeFormat = 0;
    bool MultiSubtitleTrackSupport = false;
    bool SubtitleConvertFormated = false;
    QString SubtitleConvertFont = DefaultFontText();
    QString SubtitleWatermarkText;
    double SubtitleWatermarkTextStartPoint = 0;
    double SubtitleWatermarkTextEndPoint = 0;
    double SubtitleTimeOffset = 0;
    QString CoreSubtitleCodec;
    QString SubtitleSuffixSupported
        = QStringLiteral("*.ssa; *.srt; *.ass; *.lrc; *.ksc; *.krc; *.smi; *.sami; *.snc; *.qly; *.utf; "
                         "*.stl; *.vsf; *.dks; *.txt; *.stxt");
};

// Subtitles that the other encoder (tool kind 2) draws itself.
struct MencFamily
{
    Q_GADGET
    Q_PROPERTY(bool MencEnableSubtitle MEMBER MencEnableSubtitle)
    Q_PROPERTY(QString MencOverallSubtitle MEMBER MencOverallSubtitle)
    Q_PROPERTY(bool MencEnableSubtitleFormat MEMBER MencEnableSubtitleFormat)
    Q_PROPERTY(QString MencSubtitleFontFileName MEMBER MencSubtitleFontFileName)
    Q_PROPERTY(int MencSubtitleFontSize MEMBER MencSubtitleFontSize)
    Q_PROPERTY(int MencSubtitleAlign MEMBER MencSubtitleAlign)

public:
    bool MencEnableSubtitle = false;
    QString MencOverallSubtitle;
    bool MencEnableSubtitleFormat = false;
    QString MencSubtitleFontFileName;
    int MencSubtitleFontSize = 0;
    int MencSubtitleAlign = 0;
};

// Tags written into the output container.
struct MetaDataFamily
{
    Q_GADGET
    Q_PROPERTY(QString MetaData_Title MEMBER MetaData_Title)
    Q_PROPERTY(QString MetaData_Author MEMBER MetaData_Author)
    Q_PROPERTY(QString MetaData_Copyright MEMBER MetaData_Copyright)
    Q_PROPERTY(QString MetaData_Composer MEMBER MetaData_Composer)
    Q_PROPERTY(QString MetaData_Comment MEMBER MetaData_Comment)
    Q_PROPERTY(QString MetaData_Description MEMBER MetaData_Description)

public:
    QString MetaData_Title;
    QString MetaData_Author;
    QString MetaData_Copyright;
    QString MetaData_Composer;
    QString MetaData_Comment;
    QString MetaData_Description;
};

// The H.264 encoder's choices; 0 leaves each to the encoder.
struct x264Family
{
    Q_GADGET
    Q_PROPERTY(int x264QualityMode MEMBER x264QualityMode)
    Q_PROPERTY(int x264Profile MEMBER x264Profile)
    Q_PROPERTY(int x264Preset MEMBER x264Preset)
    Q_PROPERTY(int x264Tune MEMBER x264Tune)
    Q_PROPERTY(double x264Level MEMBER x264Level)
    Q_PROPERTY(int x264Refs MEMBER x264Refs)

public:
    int x264QualityMode = 0;
    int x264Profile = 0;
    int x264Preset = 0;
    int x264Tune = 0;
    double x264Level = 0;
    int x264Refs = 0;
};

} // namespace qb::engine
