// The main function of a test program that plugs in virtual tokens.

#include <gtest/gtest.h>

#include "tokens/Preload.h"

int main(int argc, char** argv)
{
    vantro::lab::reexecuteUnderPreload(argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
