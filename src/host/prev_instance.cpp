// The rendezvous over a local socket and the parse of a request.
#include "host/prev_instance.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QVersionNumber>

#include <unistd.h>

namespace qb::host {

namespace {

constexpr int kConnectMs = 1000;
constexpr qint64 kLargestRequest = 1 << 20;

// Sends one request: the text in UTF-8, then the end of the connection marks its end.
bool sendRequest(QLocalSocket &socket, const QString &text)
{
    socket.write(text.toUtf8());
    if (!socket.waitForBytesWritten(kConnectMs) && socket.bytesToWrite() > 0)
        return false;
    socket.disconnectFromServer();
    if (socket.state() != QLocalSocket::UnconnectedState)
        socket.waitForDisconnected(kConnectMs);
    return true;
}

} // namespace

clsPrevInstance::clsPrevInstance(const QString &commandLine, QObject *parent)
    : QObject(parent)
    , m_commandLine(commandLine)
{
    if (!commandLine.isEmpty())
        m_commands.append(commandLine);
}

clsPrevInstance::~clsPrevInstance()
{
    if (m_server)
        m_server->close(); // removes the socket file, so the next start finds no one
}

QString clsPrevInstance::RendezvousName()
{
    const QVersionNumber version = QVersionNumber::fromString(QCoreApplication::applicationVersion());
    const QString program = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    return QStringLiteral("%1-%2.%3-%4")
        .arg(program)
        .arg(version.majorVersion())
        .arg(version.minorVersion())
        .arg(::getuid());
}

QString clsPrevInstance::JoinCommandLine(const QStringList &arguments)
{
    QStringList quoted;
    for (const QString &argument : arguments)
        quoted.append(u'"' + argument + u'"');
    return quoted.join(u' ');
}

qint64 clsPrevInstance::PrevInstance(const QString &Identity, const QString &CommandLine)
{
    Q_UNUSED(Identity);
    Q_UNUSED(CommandLine);
    if (m_server)
        return 0;
    const QString name = RendezvousName();
    for (int attempt = 0; attempt < 2; ++attempt) {
        QLocalSocket socket;
        socket.connectToServer(name);
        if (socket.waitForConnected(kConnectMs)) {
            sendRequest(socket, m_commandLine);
            return qint64(::getpid());
        }
        if (listen(name))
            return 0;
        // Someone else became the first instance between our two steps: hand the request to it.
    }
    return 0;
}

bool clsPrevInstance::listen(const QString &name)
{
    auto *server = new QLocalServer(this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server->listen(name)) {
        if (server->serverError() != QAbstractSocket::AddressInUseError) {
            delete server;
            return false;
        }
        // A name that is in use but takes no connection is left by an instance that crashed.
        QLocalSocket probe;
        probe.connectToServer(name);
        if (probe.waitForConnected(kConnectMs)) {
            probe.abort();
            delete server;
            return false;
        }
        QLocalServer::removeServer(name);
        if (!server->listen(name)) {
            delete server;
            return false;
        }
    }
    m_server = server;
    connect(m_server, &QLocalServer::newConnection, this, &clsPrevInstance::onNewConnection);
    return true;
}

void clsPrevInstance::onNewConnection()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::readyRead, socket, [socket] {
            // A request larger than any command line is cut, as a window text would be.
            if (socket->bytesAvailable() > kLargestRequest)
                socket->abort();
        });
        connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
            const QByteArray bytes = socket->readAll().left(kLargestRequest);
            socket->deleteLater();
            onRequest(QString::fromUtf8(bytes).trimmed());
        });
        if (socket->state() == QLocalSocket::UnconnectedState) {
            // It came and went before we looked.
            const QByteArray bytes = socket->readAll().left(kLargestRequest);
            socket->deleteLater();
            onRequest(QString::fromUtf8(bytes).trimmed());
        }
    }
}

void clsPrevInstance::onRequest(const QString &text)
{
    if (m_ready) {
        parseAndRaise(text);
        return;
    }
    if (!text.isEmpty())
        m_commands.append(text);
    Q_EMIT PrevInstance(text, false, {}, {}, {});
}

void clsPrevInstance::setReady(bool ready)
{
    m_ready = ready;
    if (!ready)
        return;
    const QStringList held = std::exchange(m_commands, QStringList());
    for (const QString &command : held)
        parseAndRaise(command);
}

clsPrevInstance::ParsedCommand clsPrevInstance::ParseCommand(const QString &sCommand)
{
    ParsedCommand parsed;
    if (sCommand.isEmpty())
        return parsed;
    for (QString piece : sCommand.split(QStringLiteral("\" \""))) {
        piece.remove(u'"');
        piece = piece.trimmed();
        if (piece.isEmpty())
            continue;
        const QFileInfo info(piece);
        if (info.exists()) {
            if (info.isDir())
                parsed.Folders.append(piece.endsWith(u'/') ? piece : piece + u'/');
            else
                parsed.Files.append(piece);
            continue;
        }
        for (const QString &word : piece.split(u' ', Qt::SkipEmptyParts)) {
            const QString trimmed = word.trimmed();
            if (!trimmed.isEmpty())
                parsed.Parameters.append(trimmed);
        }
    }
    return parsed;
}

void clsPrevInstance::parseAndRaise(const QString &sCommand)
{
    const ParsedCommand parsed = ParseCommand(sCommand);
    Q_EMIT PrevInstance(sCommand, m_ready, parsed.Files, parsed.Folders, parsed.Parameters);
}

} // namespace qb::host
