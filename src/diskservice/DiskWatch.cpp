#include "diskservice/DiskWatch.h"

#include "diskservice/ServiceNames.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>

namespace thntfs {

namespace {

constexpr int kBurstMilliseconds = 300; // a disk comes with its partitions

} // namespace

// A service that doesn't run yet is started by the first call that it gets.
DiskWatch::DiskWatch(const std::function<void()>& tell) {
    burst_.setSingleShot(true);
    burst_.setInterval(kBurstMilliseconds);
    connect(&burst_, &QTimer::timeout, this, tell);
    if (!QDBusConnection::systemBus().isConnected()) {
        return;
    }
    Listen(kServicePath, "org.freedesktop.DBus.ObjectManager", "InterfacesAdded");
    Listen(kServicePath, "org.freedesktop.DBus.ObjectManager", "InterfacesRemoved");
    Listen({}, "org.freedesktop.DBus.Properties", "PropertiesChanged");
    QDBusConnection::systemBus().asyncCall(QDBusMessage::createMethodCall(
        kServiceName, kServicePath, QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping")));
}

void DiskWatch::Listen(const QString& path, const char* interface, const char* signal) {
    QDBusConnection::systemBus().connect(kServiceName, path, QLatin1String(interface), QLatin1String(signal),
                                         this, SLOT(NoteChange()));
}

void DiskWatch::NoteChange() {
    if (!burst_.isActive()) {
        burst_.start();
    }
}

} // namespace thntfs
