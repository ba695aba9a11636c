// Against a made-up disk service on a bus of its own. The real one is tried by tests/system.

#include "diskservice/DiskService.h"

#include "diskservice/DiskWatch.h"
#include "support/RunProgram.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTest>
#include <gtest/gtest.h>

namespace thntfs::test {
namespace {

const QString kDisksPath = QStringLiteral("/org/freedesktop/UDisks2");

/// A service that does as a test tells it, and the bus that this process takes for the system's.
class DiskServiceTest : public testing::Test, protected QDBusVirtualObject {
protected:
    void SetUp() override {
        Daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                     QStringLiteral("--print-address")});
        if (!Daemon.waitForReadyRead()) {
            GTEST_SKIP() << "there is no dbus-daemon here";
        }
        const QByteArray address = Daemon.readLine().trimmed();
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
        QDBusConnection bus =
            QDBusConnection::connectToBus(QString::fromLatin1(address), QStringLiteral("service"));
        bus.registerVirtualObject(kDisksPath, this, QDBusConnection::SubPath);
        bus.registerService(QStringLiteral("org.freedesktop.UDisks2"));
    }
    void TearDown() override {
        Daemon.kill();
        Daemon.waitForFinished();
    }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        Asked = message;
        if (message.member() == QStringLiteral("ResolveDevice")) {
            QList<QDBusObjectPath> objects;
            if (qdbus_cast<QVariantMap>(message.arguments().value(0)).value(QStringLiteral("path")) ==
                Known) {
                objects.append(QDBusObjectPath(kDisksPath + QStringLiteral("/block_devices/known")));
            }
            return bus.send(message.createReply(QVariant::fromValue(objects)));
        }
        if (Error == "silence") {
            return true;
        }
        if (Error == "nothing") {
            return bus.send(message.createReply());
        }
        return bus.send(Error.isEmpty()
                            ? message.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(Descriptor)))
                            : message.createErrorReply(QLatin1String(Error), Words));
    }

    DiskAnswer Open(
        DiskUse use = DiskUse::Reading, const std::function<bool()>& mayGoOn = [] { return true; }) {
        return OpenByDiskService("/dev/known", use, [&] {
            QCoreApplication::processEvents();
            return Asked.member() != QStringLiteral("OpenDevice") || mayGoOn();
        });
    }

    QProcess Daemon;
    QString Known = QStringLiteral("/dev/known");
    QDBusMessage Asked;
    QByteArray Error;
    QString Words = QStringLiteral("Its words");
    int Descriptor = 0;
};

TEST_F(DiskServiceTest, DisksAreToldOnceABurstAndComeOpenOrRefused) {
    int told = 0;
    const DiskWatch watch([&told] { ++told; });
    const auto tell = [](const char* interface, const char* signal) {
        QDBusConnection(QStringLiteral("service"))
            .send(QDBusMessage::createSignal(kDisksPath, QLatin1String(interface), QLatin1String(signal)));
    };
    for (const char* signal : {"InterfacesAdded", "InterfacesRemoved", "SomethingElse"}) {
        tell("org.freedesktop.DBus.ObjectManager", signal);
        tell("org.freedesktop.DBus.ObjectManager", signal);
        QTest::qWait(500);
    }
    EXPECT_EQ(told, 2);
    tell("org.freedesktop.DBus.Properties", "PropertiesChanged");
    EXPECT_TRUE(QTest::qWaitFor([&told] { return told == 3; }));
    EXPECT_TRUE(DiskServiceStands());
    const ScratchFolder scratch;
    std::FILE* file = std::fopen((scratch / "disk").c_str(), "w");
    Descriptor = fileno(file);
    for (const auto& [use, mode] : {std::pair{DiskUse::Reading, "r"}, {DiskUse::WritingOver, "rw"}}) {
        const DiskAnswer answer = Open(use);
        ASSERT_EQ(answer.Code, kErrorNone) << answer.Reason;
        EXPECT_EQ(std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(answer.Disk.Get())),
                  scratch / "disk");
        EXPECT_EQ(Asked.path(), kDisksPath + QStringLiteral("/block_devices/known"));
        EXPECT_EQ(Asked.arguments().at(0).toString(), QLatin1String(mode));
        EXPECT_EQ(qdbus_cast<QVariantMap>(Asked.arguments().at(1)).value(QStringLiteral("flags")).toInt(),
                  OpenFlagsOf(use));
    }
    std::fclose(file);
    const std::pair<const char*, ErrorCode> cases[] = {
        {"UDisks2.Error.NotAuthorizedCanObtain", kErrorPrivilegeNotHeld},
        {"UDisks2.Error.NotAuthorizedDismissed", kErrorCancelled},
        {"UDisks2.Error.DeviceBusy", kErrorSharingViolation},
        {"DBus.Error.UnknownMethod", kErrorAccessDenied},
        {"UDisks2.Error.Failed", kErrorGeneralFailure}};
    for (const auto& [error, code] : cases) {
        Error = QByteArray("org.freedesktop.") + error;
        const DiskAnswer answer = Open();
        EXPECT_EQ(answer.Code, code) << error;
        EXPECT_EQ(answer.Reason, "Its words");
    }
    Words = QStringLiteral("Error opening it: Device or resource busy");
    EXPECT_EQ(Open().Code, kErrorSharingViolation);
    Error = "nothing";
    EXPECT_EQ(Open().Code, kErrorGeneralFailure);
    Error = "silence";
    EXPECT_EQ(Open(DiskUse::Reading, [] { return false; }).Code, kErrorCancelled)
        << "the user has had enough";
    Known.clear();
    EXPECT_EQ(Open().Code, kErrorAccessDenied) << "the service knows no such disk";
    Known = QStringLiteral("/dev/known");
    const auto leave = [] {
        QDBusConnection::disconnectFromBus(QStringLiteral("service"));
        return true;
    };
    EXPECT_EQ(Open(DiskUse::Reading, leave).Code, kErrorServiceNotActive) << "it ends while it is asked";
    EXPECT_EQ(Open().Code, kErrorAccessDenied) << "there is none to ask";
    EXPECT_FALSE(DiskServiceStands());
}

} // namespace
} // namespace thntfs::test
