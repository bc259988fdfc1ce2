#include "StoreWriter.h"
#include "config/Folders.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <cstring>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // The crash test starts this program again as the writer it kills.
    if (argc >= 4 && std::strcmp(argv[1], kStoreWriterFlag) == 0)
        return runStoreWriter(argv[2], std::atoi(argv[3]));

    QCoreApplication app(argc, argv);
    // No test may touch the real settings folder or autostart entry.
    QTemporaryDir home;
    SetHomeFolder(home.path());
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
