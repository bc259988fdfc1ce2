#include "config/Folders.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryDir>

// Every core test runs with an application object, as sockets and queued
// calls need one, and with a home folder of its own, so that no test reads or
// writes the user's settings. Window tests bring their own main.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication app(argc, argv);
    QTemporaryDir home;
    SetHomeFolder(home.path());
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
