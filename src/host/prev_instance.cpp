// The rendezvous over a local socket and the parse of a request.
#include "host/prev_instance.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QVersionNumber>

#include <memory>
#include <utility>

#include <unistd.h>

namespace qb::host {

namespace {

constexpr int kConnectMs = 1000;

// A cut can end inside a UTF-8 character; its lead bytes would become a replacement character.
QByteArray withoutCutCharacter(QByteArray bytes)
{
    qsizetype lead = bytes.size();
    while (lead > 0 && lead > bytes.size() - 4 && (uchar(bytes[lead - 1]) & 0xC0) == 0x80)
        --lead;
    if (lead == 0)
        return bytes;
    const uchar first = uchar(bytes[lead - 1]);
    const qsizetype length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
    if (bytes.size() - (lead - 1) < length)
        bytes.truncate(lead - 1);
    return bytes;
}

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

QStringList clsPrevInstance::AbsoluteArguments(const QStringList &arguments, const QString &workingFolder)
{
    const QDir here(workingFolder);
    QStringList result;
    result.reserve(arguments.size());
    for (const QString &argument : arguments) {
        // Not cleaned: "link/.." must keep meaning what it meant to the caller.
        const QString absolute = here.absoluteFilePath(argument);
        const bool isRelativePath = !argument.isEmpty() && QDir::isRelativePath(argument);
        result.append(isRelativePath && QFileInfo::exists(absolute) ? absolute : argument);
    }
    return result;
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
        auto received = std::make_shared<QByteArray>();
        auto delivered = std::make_shared<bool>(false);
        // Reads up to the limit; whatever came, cut or whole, is delivered once.
        const auto take = [socket, received] {
            const qint64 room = kLargestRequest - received->size();
            if (room > 0)
                received->append(socket->read(room));
            return received->size() >= kLargestRequest;
        };
        const auto deliver = [this, socket, received, delivered] {
            if (std::exchange(*delivered, true))
                return;
            socket->deleteLater();
            onRequest(*received);
        };
        connect(socket, &QLocalSocket::readyRead, this, [socket, take, deliver] {
            if (take()) {
                deliver();
                socket->abort();
            }
        });
        connect(socket, &QLocalSocket::disconnected, this, [take, deliver] {
            take();
            deliver();
        });
        if (socket->state() == QLocalSocket::UnconnectedState) {
            // It came and went before we looked.
            take();
            deliver();
        }
    }
}

void clsPrevInstance::onRequest(const QByteArray &bytes)
{
    const QString text
        = QString::fromUtf8(bytes.size() >= kLargestRequest ? withoutCutCharacter(bytes) : bytes).trimmed();
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
