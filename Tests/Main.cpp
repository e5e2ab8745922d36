#include "Tests/ExpectedLog.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    kestrio::installLogGuard();
    return RUN_ALL_TESTS();
}
