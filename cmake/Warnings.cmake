# What every target of the project is built with.
add_library(vantro_build_options INTERFACE)
target_compile_options(vantro_build_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

# Where sources are compiled together, names of one file are seen from another one. That each is right by itself is told
# by the builds that compile one at a time.
if(CMAKE_UNITY_BUILD)
    target_compile_options(vantro_build_options INTERFACE
        -Wno-shadow $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()

if(VANTRO_SANITIZE)
    target_compile_options(vantro_build_options INTERFACE
        -fsanitize=${VANTRO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(vantro_build_options INTERFACE -fsanitize=${VANTRO_SANITIZE})
endif()
if(VANTRO_SANITIZE MATCHES "address" AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # g++ defines it by itself.
    target_compile_definitions(vantro_build_options INTERFACE __SANITIZE_ADDRESS__)
endif()
if(VANTRO_SANITIZE MATCHES "thread")
    target_sources(vantro_build_options INTERFACE
        $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:${CMAKE_CURRENT_LIST_DIR}/ThreadSanitizer.cpp>)
endif()

# g++ 12 sees overlapping copies in plain additions of strings once it optimises (its bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(vantro_build_options INTERFACE -Wno-restrict)
endif()

# clang sees that libstdc++ 12's stable_sort() takes its memory from a function that the library itself calls deprecated.
# g++, which builds the same code, says what else is.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(vantro_build_options INTERFACE -Wno-deprecated-declarations)
endif()
