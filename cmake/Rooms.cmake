# The rooms of the source tree and what each may use. Dependencies point downwards only, and configuring fails as soon
# as a target links something that its room may not.

set(VANTRO_MAY_USE_platform-core "platform-core")
set(VANTRO_MAY_USE_platform-desktop "platform-core;platform-desktop")
set(VANTRO_MAY_USE_libraries "platform-core;libraries")
set(VANTRO_MAY_USE_service "platform-core;libraries;service")
set(VANTRO_MAY_USE_app "platform-core;platform-desktop;libraries;app")
set(VANTRO_MAY_USE_lab "platform-core;libraries;lab")
set(VANTRO_MAY_USE_tests "platform-core;platform-desktop;libraries;service;app;lab;tests")
set(VANTRO_MAY_USE_bench "platform-core;platform-desktop;libraries;service;app;lab;tests;bench")

# The rooms that know the desktop toolkit.
set(VANTRO_ROOMS_WITH_QT platform-desktop app lab tests bench)

# Puts TARGET into ROOM, with the project's warnings and sanitizers. Its headers are found from the room's folder,
# so that an include names the folder that owns the header: "foundation/Bundle.h", "Model/LabelModel.h".
function(vantro_room target room)
    if(NOT DEFINED VANTRO_MAY_USE_${room})
        message(FATAL_ERROR "${target}: there is no room '${room}'")
    endif()
    set_target_properties(${target} PROPERTIES VANTRO_ROOM ${room})
    set_property(GLOBAL APPEND PROPERTY VANTRO_TARGETS ${target})
    target_link_libraries(${target} PRIVATE vantro_build_options)
endfunction()

function(vantro_check_rooms)
    get_property(targets GLOBAL PROPERTY VANTRO_TARGETS)
    foreach(target IN LISTS targets)
        get_target_property(room ${target} VANTRO_ROOM)
        get_target_property(links ${target} LINK_LIBRARIES)
        foreach(link IN LISTS links)
            if(link MATCHES "^Qt6::" AND NOT room IN_LIST VANTRO_ROOMS_WITH_QT)
                message(FATAL_ERROR "${target} (room ${room}) links ${link}: this room is free of Qt")
            endif()
            if(NOT TARGET ${link})
                continue()
            endif()
            get_target_property(used ${link} VANTRO_ROOM)
            if(used AND NOT used IN_LIST VANTRO_MAY_USE_${room})
                message(FATAL_ERROR "${target} (room ${room}) links ${link} (room ${used}): not allowed from there")
            endif()
        endforeach()
    endforeach()
endfunction()

# Checks every target once the whole tree is known. A library that is only named, never a target of this build, is none
# of the rooms' business.
macro(vantro_check_rooms_at_end)
    cmake_language(DEFER CALL vantro_check_rooms)
endmacro()
