#pragma once

#include <QLocalServer>
#include <QObject>
#include <cstdint>
#include <functional>

class QLocalSocket;

namespace thntfs {

/// A record's number and text; docs/formats/sibling-tool.md has its form.
struct SiblingRecord {
    std::uint32_t Number = 0; ///< 0 for a line that is no record
    QString Text;
};

/// A line, with or without its end, as a record.
SiblingRecord ParseSiblingRecord(const QByteArray& line);

/// Where programs of this user meet: takes records at a local socket and answers each with 1. Other users'
/// programs aren't heard.
class SiblingSocket {
public:
    using Taker = std::function<void(const SiblingRecord& record)>;

    explicit SiblingSocket(Taker taker);

    /// Listens under a name, from then on. Gives what failed, empty for nothing; again where it listens
    /// already.
    QString Listen(const QString& name);
    void Close() { server_.close(); }

    /// Tells the program that listens under a name to close, if there is one. Waits for it a second at most.
    static void TellToClose(const QString& name);

private:
    void TakeConnections();
    void TakeLines(QLocalSocket& socket);
    void TakeLine(QLocalSocket& socket);

    Taker taker_;
    QLocalServer server_;
};

} // namespace thntfs
