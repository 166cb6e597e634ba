// The main function of a test program that plugs in virtual tokens.

#include <gtest/gtest.h>

#include "tokens/Preload.h"

/// OpenSSL keeps a state for each thread that goes with the thread, and the emulation's threads run to the end.
extern "C" const char* __lsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier): the sanitizer's name
extern "C" const char* __lsan_default_suppressions()  // NOLINT(bugprone-reserved-identifier): the sanitizer's name
{
    return "leak:CRYPTO_zalloc\n";
}

int main(int argc, char** argv)
{
    vantro::lab::reexecuteUnderPreload(argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
