#include "config/Folders.h"

#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// The window tests run on the offscreen platform, with an application object
// that has widgets and a home folder of their own.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir home;
    SetHomeFolder(home.path());
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
