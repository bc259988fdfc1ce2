#include <gtest/gtest.h>

#include <QCoreApplication>

// Every core test runs with an application object, as sockets and queued
// calls need one; window tests bring their own in their folder.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
