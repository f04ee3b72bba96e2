// clsPrevInstance: one running instance per program, version and user. A later start hands its
// command line to the first one over a local socket and ends; the first one raises PrevInstance
// with the command cut into files, folders and other words. Requests that arrive before the host
// is ready are held back and delivered, in order, when Ready turns True.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class QLocalServer;
class QLocalSocket;

namespace qb::host {

class clsPrevInstance : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool Ready READ Ready WRITE setReady)

public:
    // commandLine: this process's own command line as one text (see JoinCommandLine); held back
    // as the first request when it is not empty.
    explicit clsPrevInstance(const QString &commandLine, QObject *parent = nullptr);
    ~clsPrevInstance() override;

    // Looks for a running instance of this program and version for this user. Found: hands it this
    // process's command line (even an empty one) and returns a non-zero value; the caller should
    // end. Not found: this instance becomes the one others find, and 0 is returned. Identity and
    // CommandLine are not used: the rendezvous is always named from the program, and the text
    // sent is always this process's own, so that two versions run side by side.
    qint64 PrevInstance(const QString &Identity, const QString &CommandLine);

    bool Ready() const { return m_ready; }
    void setReady(bool ready);

    // The rendezvous name: executable name, major and minor version, and the user.
    static QString RendezvousName();

    // A request cut into what exists (files, and folders with a trailing "/") and the words of
    // what does not.
    struct ParsedCommand
    {
        QStringList Files;
        QStringList Folders;
        QStringList Parameters;
    };
    static ParsedCommand ParseCommand(const QString &sCommand);

    // Arguments as one text: each in double quotes, joined by blanks, so that the split at
    // quote-blank-quote gives them back.
    static QString JoinCommandLine(const QStringList &arguments);

    // Arguments that name an existing entry relative to workingFolder, made absolute there, so
    // that the instance receiving them finds the caller's files and not its own; other words stay.
    static QStringList AbsoluteArguments(const QStringList &arguments, const QString &workingFolder);

    // The most a request may carry; a longer one is cut there, as a window text would be.
    static constexpr qint64 kLargestRequest = 1 << 20;

Q_SIGNALS:
    void PrevInstance(const QString &sCommand, bool bReady, const QStringList &Files,
        const QStringList &Folders, const QStringList &Parameters);

private:
    void onNewConnection();
    void onRequest(const QByteArray &bytes);
    void parseAndRaise(const QString &sCommand);
    bool listen(const QString &name);

    QString m_commandLine;
    QLocalServer *m_server = nullptr;
    QStringList m_commands;
    bool m_ready = false;
};

} // namespace qb::host
