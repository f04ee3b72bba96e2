// Property families of the job engine that a host sets before a job. Each is a plain gadget, so one
// routine can list, store and restore any of them by name.
#pragma once

#include <QObject>
#include <QString>

namespace qb::engine {

// Where the output goes and what it is called.
struct FileOutputFamily
{
    Q_GADGET
    Q_PROPERTY(QString OutputFileName MEMBER OutputFileName)
    Q_PROPERTY(QString ForceOutputFileName MEMBER ForceOutputFileName)
    Q_PROPERTY(QString CustomFileName MEMBER CustomFileName)
    Q_PROPERTY(QString FileNameAddStringBefore MEMBER FileNameAddStringBefore)
    Q_PROPERTY(QString FileNameAddStringAfter MEMBER FileNameAddStringAfter)
    Q_PROPERTY(QString SourceSuffix MEMBER SourceSuffix)
    Q_PROPERTY(QString ForceFormat MEMBER ForceFormat)
    Q_PROPERTY(bool RemoveFileAfterCanceled MEMBER RemoveFileAfterCanceled)
    Q_PROPERTY(bool Overwrite MEMBER Overwrite)

public:
    QString OutputFileName;
    QString ForceOutputFileName;
    QString CustomFileName;
    QString FileNameAddStringBefore;
    QString FileNameAddStringAfter;
    QString SourceSuffix;
    QString ForceFormat;
    bool RemoveFileAfterCanceled = true;
    bool Overwrite = false;
};

// How a job runs.
struct JobFamily
{
    Q_GADGET
    Q_PROPERTY(bool Twopass MEMBER Twopass)
    Q_PROPERTY(double TimeStartPoint MEMBER TimeStartPoint)
    Q_PROPERTY(double TimeEndPoint MEMBER TimeEndPoint)
    Q_PROPERTY(bool AllowVideoToImage MEMBER AllowVideoToImage)

public:
    bool Twopass = false;
    double TimeStartPoint = 0;
    double TimeEndPoint = 0;
    bool AllowVideoToImage = false;
};

// What the tool found out about itself.
struct CoreFamily
{
    Q_GADGET
    Q_PROPERTY(int CoreStatus MEMBER CoreStatus STORED false)

public:
    int CoreStatus = 0;
};

// The video side of the source and of the output.
struct VideoFamily
{
    Q_GADGET
    Q_PROPERTY(int VideoWidth MEMBER VideoWidth)
    Q_PROPERTY(int VideoHeight MEMBER VideoHeight)
    Q_PROPERTY(bool DisableVideo MEMBER DisableVideo)
    Q_PROPERTY(QString DefaultVideoStream MEMBER DefaultVideoStream STORED false)
    Q_PROPERTY(QString DefaultAudioStream MEMBER DefaultAudioStream STORED false)
    Q_PROPERTY(QString DefaultSubtitleStream MEMBER DefaultSubtitleStream STORED false)

public:
    int VideoWidth = 0;
    int VideoHeight = 0;
    bool DisableVideo = false;
    QString DefaultVideoStream;
    QString DefaultAudioStream;
    QString DefaultSubtitleStream;
};

// The script engine's switches that a job start checks.
struct AVSFamily
{
    Q_GADGET
    Q_PROPERTY(bool AVSEnabled MEMBER AVSEnabled)
    Q_PROPERTY(bool AVSSubtitleEnableLogo MEMBER AVSSubtitleEnableLogo)
    Q_PROPERTY(bool AVSSubtitleEnableBanner MEMBER AVSSubtitleEnableBanner)
    Q_PROPERTY(QString AVSSubtitleStringLogo MEMBER AVSSubtitleStringLogo)
    Q_PROPERTY(QString AVSSubtitleStringBanner MEMBER AVSSubtitleStringBanner)
    Q_PROPERTY(bool AVSEnableSubtitle MEMBER AVSEnableSubtitle)
    Q_PROPERTY(QString AVSVSFilterPath MEMBER AVSVSFilterPath)

public:
    bool AVSEnabled = false;
    bool AVSSubtitleEnableLogo = false;
    bool AVSSubtitleEnableBanner = false;
    QString AVSSubtitleStringLogo;
    QString AVSSubtitleStringBanner;
    bool AVSEnableSubtitle = false;
    QString AVSVSFilterPath;
};

// Contact sheets written after a job.
struct ImageGrabberFamily
{
    Q_GADGET
    Q_PROPERTY(bool ImageGrabberEnabled MEMBER ImageGrabberEnabled)

public:
    bool ImageGrabberEnabled = false;
};

// Pictures as sources and outputs.
struct ImageFamily
{
    Q_GADGET
    Q_PROPERTY(QString ImageSuffixSupported MEMBER ImageSuffixSupported)

public:
    QString ImageSuffixSupported = QStringLiteral("*.jpg; *.jpeg; *.gif; *.bmp; *.png; *.dib; *.tif; *.tiff");
};

} // namespace qb::engine
