// clsCAB: lists, describes and unpacks the files of a Microsoft cabinet through libmspack.
#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>

namespace qb::cabinet {

// Every service opens the cabinet named by CabName, walks its files in stored order and closes
// it again. Failures never throw: the service returns its failure result and raises RaiseError
// (Source "CabFile", a system error number and its text). What libmspack says on the way (it
// never prints) is raised as kErrLibraryMessage, a note before any failure it leads to.
//
// FileFound's DateTime shows the stored (zone-less) date and time; an extracted file's time is
// the instant it names in the local zone, a time skipped by daylight saving moved forward by the
// gap and a repeated time taken at its second occurrence, as other extractors do.
//
// All signals are raised on the caller's thread, inside the walk. A handler must not start
// another service on the same object; such a call returns the failure result at once.
// BeforeExtract carries a reference: connect it with Qt::DirectConnection.
class clsCAB : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString CabName READ CabName WRITE setCabName)

public:
    explicit clsCAB(QObject *parent = nullptr);
    ~clsCAB() override;

    QString CabName() const { return m_cabName; }
    void setCabName(const QString &name) { m_cabName = name; }

    // Code page of names stored without the UTF-8 flag (936 unless set).
    int legacyCodePage() const { return m_legacyCodePage; }
    void setLegacyCodePage(int codePage) { m_legacyCodePage = codePage; }

    // The number of files in the cabinet; 0 on a failure.
    long FileCount();

    // Extracts every file whose whole name equals FileToExtract (case-insensitively; "" matches
    // all) to FixPath(OutputPath or the cabinet's folder) + (OutputFile or the stored name).
    // A stored name that would land outside that folder is skipped with RaiseError 123.
    // True when the walk finished.
    bool Extract(const QString &FileToExtract, const QString &OutputPath, const QString &OutputFile);

    // Raises FileFound for every file, or for the first whose whole name equals the filter.
    bool GetInfo(const QString &FileToInvestigate);

    // The catalogue of every file, or of the first whose whole name equals the filter.
    QString GetXML(const QString &FileToInvestigate);

    bool MakePath(const QString &strPath);
    QString FixPath(const QString &strPath);
    void SplitFile(const QString &strFull, QString &strPath, QString &strFile);

Q_SIGNALS:
    void FileFound(const QString &FileName, const QDateTime &DateTime, qint64 Size, const QString &Path);
    void BeforeExtract(const QString &FileName, bool &Cancel);
    void AfterExtract(const QString &FileName);
    void RaiseError(long Number, const QString &Source, const QString &Description);

private:
    struct Member
    {
        QString fullName;
        QDateTime dateTime;
        qint64 size = 0;
        const void *handle = nullptr; // the mscabd_file, valid during the walk
    };
    class Session;

    // Opens the cabinet and calls visit for each file until it returns false. False (after
    // RaiseError) when CabName is empty or the cabinet cannot be opened.
    template<typename Visit>
    bool walk(Visit &&visit);
    bool openSession(Session &session);
    void extractOne(Session &session, const Member &member, const QString &folder, const QString &outputFile);
    void raise(long number, const QString &description);
    // Raises what libmspack said during the session's last call, as kErrLibraryMessage.
    void raiseMessages(Session &session);

    QString m_cabName;
    int m_legacyCodePage = 936;
    bool m_busy = false;
    // State of one Extract walk.
    QString m_cabCanonical;
    QString m_madeFolder;
};

} // namespace qb::cabinet
