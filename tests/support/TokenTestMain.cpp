// The main function of a test program that plugs in virtual tokens.

#include <gtest/gtest.h>

#include "emulation/Preload.h"
#include "support/TestProcess.h"

int main(int argc, char** argv)
{
    vantro::lab::reexecuteUnderPreload(argv);
    testing::InitGoogleTest(&argc, argv);
    vantro::tests::endTests(RUN_ALL_TESTS());
}
