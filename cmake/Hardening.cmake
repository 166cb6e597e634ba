# What Debian builds its own packages with, for the optimised build: checks of the C library and the stack, and nothing
# that the dynamic linker leaves writable.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT VANTRO_SANITIZE)
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong -fstack-clash-protection)
    add_link_options(-Wl,-z,relro -Wl,-z,now)
endif()
