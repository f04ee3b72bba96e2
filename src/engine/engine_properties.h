// Property families of the job engine that a host sets before a job. Each is a plain gadget, so one
// routine can list, store and restore any of them by name. This header holds the job, its files and
// the tool; it brings in the media, overlay and picture families, so it is the one to include.
#pragma once

#include "engine/properties_image.h"
#include "engine/properties_media.h"
#include "engine/properties_overlay.h"

#include <QObject>
#include <QString>

namespace qb::engine {

// Where the output goes and what it is called; the source's format as the probe found it.
struct FileOutputFamily
{
    Q_GADGET
    Q_PROPERTY(QString OutputFileName MEMBER OutputFileName)
    Q_PROPERTY(QString ForceOutputFileName MEMBER ForceOutputFileName)
    Q_PROPERTY(QString CustomFileName MEMBER CustomFileName)
    Q_PROPERTY(QString FileNameSuffix MEMBER FileNameSuffix)
    Q_PROPERTY(QString FileNameAddStringBefore MEMBER FileNameAddStringBefore)
    Q_PROPERTY(QString FileNameAddStringAfter MEMBER FileNameAddStringAfter)
    Q_PROPERTY(QString SourceFormat MEMBER SourceFormat STORED false)
    Q_PROPERTY(QString SourceSuffix MEMBER SourceSuffix STORED false)
    Q_PROPERTY(QString ForceFormat MEMBER ForceFormat)
    Q_PROPERTY(bool RemoveFileAfterCanceled MEMBER RemoveFileAfterCanceled)
    Q_PROPERTY(bool Overwrite MEMBER Overwrite)
    Q_PROPERTY(bool UcaseNameSuffix MEMBER UcaseNameSuffix)

public:
    QString OutputFileName;
    QString ForceOutputFileName;
    QString CustomFileName;
    QString FileNameSuffix;
    QString FileNameAddStringBefore;
    QString FileNameAddStringAfter;
    QString SourceFormat;
    QString SourceSuffix;
    QString ForceFormat;
    bool RemoveFileAfterCanceled = true;
    bool Overwrite = false;
    bool UcaseNameSuffix = false;
};

// How a job runs.
struct JobFamily
{
    Q_GADGET
    Q_PROPERTY(int LimitFileSize MEMBER LimitFileSize)
    Q_PROPERTY(QString AdditionalScripts MEMBER AdditionalScripts)
    Q_PROPERTY(QString AdditionalPass1Scripts MEMBER AdditionalPass1Scripts)
    Q_PROPERTY(int MaxThreads MEMBER MaxThreads)
    Q_PROPERTY(double TimeStartPoint MEMBER TimeStartPoint)
    Q_PROPERTY(double TimeEndPoint MEMBER TimeEndPoint)
    Q_PROPERTY(bool TimeStamp MEMBER TimeStamp)
    Q_PROPERTY(bool Shortest MEMBER Shortest)
    Q_PROPERTY(bool Enabled MEMBER Enabled)
    Q_PROPERTY(bool TestMode MEMBER TestMode)
    Q_PROPERTY(bool Twopass MEMBER Twopass)
    Q_PROPERTY(bool AllowVideoToImage MEMBER AllowVideoToImage)
    Q_PROPERTY(bool AllowScreenshotAVS MEMBER AllowScreenshotAVS)
    Q_PROPERTY(bool CopyTimeStamps MEMBER CopyTimeStamps)
    Q_PROPERTY(int Strict MEMBER Strict)

public:
    int LimitFileSize = 0;
    QString AdditionalScripts;
    QString AdditionalPass1Scripts;
    int MaxThreads = 0;
    double TimeStartPoint = 0;
    double TimeEndPoint = 0;
    bool TimeStamp = false;
    bool Shortest = false;
    bool Enabled = false;
    bool TestMode = false;
    bool Twopass = false;
    bool AllowVideoToImage = false;
    bool AllowScreenshotAVS = false;
    bool CopyTimeStamps = false;
    int Strict = 0;
};

// What the tool in Core told about itself; set by the engine, never stored.
struct CoreFamily
{
    Q_GADGET
    Q_PROPERTY(int CoreStatus MEMBER CoreStatus STORED false)
    Q_PROPERTY(QString CoreName MEMBER CoreName STORED false)
    Q_PROPERTY(QString CoreVersion MEMBER CoreVersion STORED false)
    Q_PROPERTY(QString CoreFormats MEMBER CoreFormats STORED false)
    Q_PROPERTY(QString CoreFilters MEMBER CoreFilters STORED false)
    Q_PROPERTY(QString CorePixelformats MEMBER CorePixelformats STORED false)
    Q_PROPERTY(QString CoreVideoCodec MEMBER CoreVideoCodec STORED false)
    Q_PROPERTY(QString CoreAudioCodec MEMBER CoreAudioCodec STORED false)
    Q_PROPERTY(QString CoreEnabled MEMBER CoreEnabled STORED false)
    Q_PROPERTY(QString CoreDisabled MEMBER CoreDisabled STORED false)

public:
    int CoreStatus = 0;
    QString CoreName;
    QString CoreVersion;
    QString CoreFormats;
    QString CoreFilters;
    QString CorePixelformats;
    QString CoreVideoCodec;
    QString CoreAudioCodec;
    QString CoreEnabled;
    QString CoreDisabled;
};

} // namespace qb::engine
