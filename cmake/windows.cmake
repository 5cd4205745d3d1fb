# Flags of every Windows binary. Linked statically, so that the DLL needs system DLLs only, and with nothing that is not
# called. The headers need the version named below for rich edit and accessibility; that the add-in calls only what
# Windows 2000 has, its tests hold against a list.
target_compile_definitions(beacon_flags INTERFACE UNICODE _UNICODE NOMINMAX STRICT WINVER=0x0601 _WIN32_WINNT=0x0601)
target_compile_options(beacon_flags INTERFACE -ffunction-sections -fdata-sections)
target_link_options(beacon_flags INTERFACE -static -Wl,--no-insert-timestamp -Wl,--gc-sections)
if(BEACON_MACHINE STREQUAL "i686")
    # Office's own threads and callbacks only promise 4-byte stack alignment.
    target_compile_options(beacon_flags INTERFACE -mstackrealign)
    # stdcall functions carry @n decorations; the lists of exports and COM have the plain names.
    set(BEACON_DLL_LINK_OPTIONS -Wl,--kill-at -Wl,--enable-stdcall-fixup)
endif()
if(BEACON_HARDEN)
    # MinGW has no library that would say what was wrong: the program traps, and its symbols name the line. Wine hands
    # over identifiers and structures where they lie in a call's buffer, aligned or not.
    target_compile_options(beacon_flags INTERFACE -fsanitize=undefined -fno-sanitize=alignment
        -fsanitize-undefined-trap-on-error -D_GLIBCXX_ASSERTIONS)
endif()

# GCC 12 sees these where its own texts are copied; out of a precompiled header it no longer knows that as the
# library's.
target_compile_options(beacon_flags INTERFACE
    -Wno-array-bounds -Wno-stringop-overread -Wno-stringop-overflow -Wno-restrict)

# Nearly all of a compiler's time goes into the headers of Windows and of the standard library; they are compiled once.
# Sources name what they use all the same: ./dev lint reads them without this.
function(beacon_precompile name)
    file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp "")
    add_library(${name} STATIC ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    target_link_libraries(${name} PRIVATE beacon_flags)
    target_precompile_headers(${name} PRIVATE
        <windows.h> <ocidl.h> <comdef.h> <wrl/client.h> <algorithm> <array> <functional> <initializer_list> <memory>
        <optional> <string> <string_view> <utility> <vector> ${ARGN})
endfunction()
beacon_precompile(beacon_headers)

# The JSON header is the building system's own; only its folder is shown to the cross compiler, not all of /usr/include.
find_path(NLOHMANN_JSON nlohmann/json.hpp REQUIRED NO_CMAKE_FIND_ROOT_PATH PATHS /usr/include /usr/local/include)
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/include)
file(CREATE_LINK ${NLOHMANN_JSON}/nlohmann ${CMAKE_CURRENT_BINARY_DIR}/include/nlohmann SYMBOLIC)
add_library(beacon_json INTERFACE)
target_include_directories(beacon_json SYSTEM INTERFACE ${CMAKE_CURRENT_BINARY_DIR}/include)
