#include "preview/PictureDecoder.h"
#include "shell/Boxes.h"
#include "shell/DesktopHost.h"

#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// The tests' windows have no screen, unless THNTFS_TEST_PLATFORM names another platform plugin, and their
// settings and data are not those of whoever runs them. As the
// program does, they decode pictures by calling themselves.
int main(int argc, char** argv) {
    if (thntfs::IsDecoderCall(argc, argv)) {
        thntfs::RunDecoder(argv);
    }
    qputenv("QT_QPA_PLATFORM",
            qEnvironmentVariable("THNTFS_TEST_PLATFORM", QStringLiteral("offscreen")).toUtf8());
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir home;
    for (const char* place : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
        qputenv(place, home.path().toUtf8());
    }
    if (!qEnvironmentVariableIsSet("DBUS_SYSTEM_BUS_ADDRESS")) { // this machine's disk service isn't asked
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
    }
    const QApplication application(argc, argv);
    thntfs::PrepareBoxes();
    thntfs::SetHost(&thntfs::TheDesktopHost());
    return RUN_ALL_TESTS();
}
