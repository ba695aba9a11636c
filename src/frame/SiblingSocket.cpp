#include "frame/SiblingSocket.h"

#include "platform/system/PeerUser.h"

#include <QCoreApplication>
#include <QLocalSocket>
#include <QStandardPaths>
#include <utility>

namespace thntfs {

namespace {

constexpr qint64 kMostLineBytes = 1024;
constexpr int kPatienceMilliseconds = 500;
constexpr const char* kAnswer = "1\n";
constexpr const char* kCloseRecord = "16\n";

// The folder is the user's own. Empty for a name that isn't a plain one, and where there is no such folder.
QString SocketPath(const QString& name) {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    const bool plain = !name.isEmpty() && !name.contains(QLatin1Char('/'));
    return folder.isEmpty() || !plain ? QString() : folder + QLatin1Char('/') + name;
}

} // namespace

SiblingRecord ParseSiblingRecord(const QByteArray& line) {
    const QString text = QString::fromUtf8(line).trimmed();
    const QString number = text.section(QLatin1Char(' '), 0, 0);
    return {number.toUInt(), text.mid(number.size()).trimmed()};
}

SiblingSocket::SiblingSocket(Taker taker)
    : taker_(std::move(taker)) {
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { TakeConnections(); });
}

// One instance a user runs: what stands under the name was left by one that ended badly.
QString SiblingSocket::Listen(const QString& name) {
    if (server_.isListening()) {
        return {};
    }
    const QString path = SocketPath(name);
    if (path.isEmpty()) {
        return QCoreApplication::translate("SiblingSocket", "there is no folder for a socket");
    }
    QLocalServer::removeServer(path);
    return server_.listen(path) ? QString() : server_.errorString();
}

void SiblingSocket::TakeConnections() {
    while (QLocalSocket* socket = server_.nextPendingConnection()) {
        QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        if (!PeerIsThisUser(static_cast<int>(socket->socketDescriptor()))) {
            socket->abort();
            continue;
        }
        QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] { TakeLines(*socket); });
        QObject::connect(socket, &QLocalSocket::readChannelFinished, socket,
                         [this, socket] { TakeLine(*socket); }); // the last one may have no end
        TakeLines(*socket);
    }
}

void SiblingSocket::TakeLines(QLocalSocket& socket) {
    while (socket.canReadLine()) {
        TakeLine(socket);
    }
    if (socket.bytesAvailable() > kMostLineBytes) {
        socket.abort();
    }
}

void SiblingSocket::TakeLine(QLocalSocket& socket) {
    const QByteArray line = socket.bytesAvailable() > 0 ? socket.readLine(kMostLineBytes) : QByteArray();
    if (!line.isEmpty()) {
        taker_(ParseSiblingRecord(line));
        socket.write(kAnswer);
    }
}

void SiblingSocket::TellToClose(const QString& name) {
    const QString path = SocketPath(name);
    if (path.isEmpty()) {
        return;
    }
    QLocalSocket socket;
    socket.connectToServer(path);
    if (socket.waitForConnected(kPatienceMilliseconds) &&
        PeerIsThisUser(static_cast<int>(socket.socketDescriptor()))) {
        socket.write(kCloseRecord);
        socket.waitForBytesWritten(kPatienceMilliseconds);
    }
}

} // namespace thntfs
