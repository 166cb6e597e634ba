// Preloaded into the program that signs in. libpam looks for modules in one folder of the machine; here the login
// module alone comes from another, which the environment names, and the lab needs to change nothing of the machine's.

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <linux/limits.h>

#include "VantroStandaloneNames.h"

// It stands in for the C library's.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" void* dlopen(const char* path, int flags) noexcept
{
    using Dlopen = void* (*)(const char*, int);
    const auto next = reinterpret_cast<Dlopen>(dlsym(RTLD_NEXT, "dlopen"));
    const char* const folder = getenv("VANTRO_LAB_PAM_MODULES");
    const char* const name = path != nullptr ? strrchr(path, '/') : nullptr;
    if (folder == nullptr || name == nullptr || vantro::names::pamModule != name + 1) {
        return next(path, flags);
    }
    char own[PATH_MAX];
    const int length = snprintf(own, sizeof own, "%s%s", folder, name);
    return length > 0 && static_cast<size_t>(length) < sizeof own ? next(own, flags) : nullptr;
}
