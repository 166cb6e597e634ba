// The main function of a test program that plugs in virtual tokens.

#include <cstdio>
#include <cstdlib>

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
    const int result = RUN_ALL_TESTS();
    // As the tool itself ends: its threads run to the very end, and nothing that they use may be destroyed before them.
    std::fflush(nullptr);
    std::quick_exit(result);
}
