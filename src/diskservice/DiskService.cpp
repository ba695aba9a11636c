#include "diskservice/DiskService.h"

#include "diskservice/ServiceNames.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QThread>
#include <QVariantMap>
#include <algorithm>
#include <iterator>

namespace thntfs {

namespace {

constexpr int kAnswerMilliseconds = 600000; // somebody looks for a password
constexpr int kLookMilliseconds = 10;

struct ErrorMeaning {
    const char* Ending; ///< of the error's name
    ErrorCode Code;
};

constexpr ErrorMeaning kMeanings[] = {
    {"UDisks2.Error.NotAuthorizedDismissed", kErrorCancelled},
    {"UDisks2.Error.NotAuthorizedCanObtain", kErrorPrivilegeNotHeld},
    {"UDisks2.Error.NotAuthorized", kErrorPrivilegeNotHeld},
    {"UDisks2.Error.DeviceBusy", kErrorSharingViolation},
    {"DBus.Error.AccessDenied", kErrorPrivilegeNotHeld},
    {"DBus.Error.ServiceUnknown", kErrorAccessDenied},
    {"DBus.Error.NameHasNoOwner", kErrorAccessDenied},
    {"DBus.Error.UnknownMethod", kErrorAccessDenied}, // of a service too old for this
    {"DBus.Error.NoReply", kErrorServiceNotActive},
    {"DBus.Error.Timeout", kErrorServiceNotActive},
    {"DBus.Error.TimedOut", kErrorServiceNotActive},
    {"DBus.Error.Disconnected", kErrorServiceNotActive},
};

// A disk that is in use is a failure among others for the service: the system's words tell it.
ErrorCode CodeOf(const QString& name, const QString& words) {
    const auto* meaning =
        std::find_if(std::begin(kMeanings), std::end(kMeanings),
                     [&](const ErrorMeaning& known) { return name.endsWith(QLatin1String(known.Ending)); });
    if (meaning != std::end(kMeanings)) {
        return meaning->Code;
    }
    if (name.contains(QLatin1String("DBus.Error.Spawn"))) {
        return kErrorAccessDenied;
    }
    return words.contains(QLatin1String("resource busy")) ? kErrorSharingViolation : kErrorGeneralFailure;
}

DiskAnswer AnswerTo(const QDBusMessage& reply) {
    return {{}, CodeOf(reply.errorName(), reply.errorMessage()), reply.errorMessage().toStdString()};
}

/// One call of a method of the service; an error message where it failed.
class ServiceCall {
public:
    explicit ServiceCall(const std::function<bool()>& mayGoOn)
        : mayGoOn_(mayGoOn) {}

    QDBusMessage Make(const QString& path, const char* interface, const char* method,
                      const QVariantList& words) {
        QDBusMessage message = QDBusMessage::createMethodCall(kServiceName, path, QLatin1String(interface),
                                                              QLatin1String(method));
        message.setArguments(words);
        message.setInteractiveAuthorizationAllowed(true);
        const QDBusPendingCall call = QDBusConnection::systemBus().asyncCall(message, kAnswerMilliseconds);
        while (!call.isFinished()) {
            if (!mayGoOn_()) {
                stopped_ = true;
                return {};
            }
            QThread::msleep(kLookMilliseconds);
        }
        return call.reply();
    }

    [[nodiscard]] bool WasStopped() const { return stopped_; }

private:
    const std::function<bool()>& mayGoOn_;
    bool stopped_ = false;
};

/// The object that stands for a disk, empty where the service knows none.
QString ObjectIn(const QDBusMessage& resolved) {
    const auto objects = qdbus_cast<QList<QDBusObjectPath>>(resolved.arguments().value(0));
    return objects.isEmpty() ? QString() : objects.first().path();
}

DiskAnswer DiskIn(const QDBusMessage& opened) {
    const auto handle = qdbus_cast<QDBusUnixFileDescriptor>(opened.arguments().value(0));
    FileDescriptor disk = DuplicateOf(handle.fileDescriptor());
    const ErrorCode code = disk.IsOpen() ? kErrorNone : kErrorGeneralFailure;
    return {std::move(disk), code};
}

} // namespace

DiskAnswer OpenByDiskService(const std::string& devicePath, DiskUse use,
                             const std::function<bool()>& mayGoOn) {
    if (!QDBusConnection::systemBus().isConnected()) {
        return {};
    }
    ServiceCall call(mayGoOn);
    const QVariantMap device{{QStringLiteral("path"), QString::fromStdString(devicePath)}};
    const QDBusMessage resolved =
        call.Make(kServicePath + QStringLiteral("/Manager"), "org.freedesktop.UDisks2.Manager",
                  "ResolveDevice", {device, QVariantMap()});
    if (call.WasStopped()) {
        return {{}, kErrorCancelled};
    }
    if (resolved.type() != QDBusMessage::ReplyMessage) {
        return AnswerTo(resolved);
    }
    const QString object = ObjectIn(resolved);
    if (object.isEmpty()) {
        return {};
    }
    const QString mode = use == DiskUse::Reading ? QStringLiteral("r") : QStringLiteral("rw");
    const QVariantMap options{{QStringLiteral("flags"), OpenFlagsOf(use)}};
    const QDBusMessage opened =
        call.Make(object, "org.freedesktop.UDisks2.Block", "OpenDevice", {mode, options});
    if (call.WasStopped()) {
        return {{}, kErrorCancelled};
    }
    return opened.type() == QDBusMessage::ReplyMessage ? DiskIn(opened) : AnswerTo(opened);
}

bool DiskServiceStands() {
    const QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected()) {
        return false;
    }
    const QDBusConnectionInterface& names = *bus.interface();
    return names.isServiceRegistered(kServiceName).value() ||
           names.activatableServiceNames().value().contains(kServiceName);
}

} // namespace thntfs
