# Everything that only the Windows builds need.

# The headers need this version for rich edit and accessibility. The add-in calls only functions that Windows 2000 has;
# its tests compare its imports with a list.
target_compile_definitions(beacon_flags INTERFACE UNICODE _UNICODE NOMINMAX STRICT WINVER=0x0601 _WIN32_WINNT=0x0601)

# Linked statically, so that a DLL depends on system DLLs only, and without unused functions.
target_compile_options(beacon_flags INTERFACE -ffunction-sections -fdata-sections)
# Without a time stamp, so that the same sources give the same bytes.
set(BEACON_LINK_OPTIONS -static -Wl,--no-insert-timestamp)
target_link_options(beacon_flags INTERFACE ${BEACON_LINK_OPTIONS} -Wl,--gc-sections)
if(BEACON_MACHINE STREQUAL "i686")
    # Office's threads and callbacks guarantee only 4-byte stack alignment.
    target_compile_options(beacon_flags INTERFACE -mstackrealign)
    # stdcall functions have names decorated with @n; the exports must have plain names.
    set(BEACON_DLL_LINK_OPTIONS -Wl,--kill-at -Wl,--enable-stdcall-fixup)
endif()
if(BEACON_HARDEN)
    # MinGW has no sanitizer run-time that could print a message: the program traps, and its symbols name the line. Wine
    # passes identifiers and structures inside a call's buffer, aligned or not.
    target_compile_options(beacon_flags INTERFACE -fsanitize=undefined -fno-sanitize=alignment
        -fsanitize-undefined-trap-on-error -D_GLIBCXX_ASSERTIONS)
    add_library(checked_free STATIC ${CMAKE_CURRENT_LIST_DIR}/checked_free.cpp)
    target_link_libraries(beacon_flags INTERFACE checked_free)
    target_link_options(beacon_flags INTERFACE -Wl,--wrap=free,--wrap=realloc,-u,__wrap_free)
endif()

# GCC 12 reports these falsely where std::wstring is copied, if the library comes out of a precompiled header: it no
# longer recognises the header as a system header.
target_compile_options(beacon_flags INTERFACE
    -Wno-array-bounds -Wno-stringop-overread -Wno-stringop-overflow -Wno-restrict)

# Users get a file without symbols; the symbols are in X.debug beside it. -p keeps the linker's (empty) time stamp.
function(beacon_split_symbols name)
    add_custom_command(TARGET ${name} POST_BUILD VERBATIM
        COMMAND ${CMAKE_OBJCOPY} -p --only-keep-debug $<TARGET_FILE:${name}> $<TARGET_FILE:${name}>.debug
        COMMAND ${CMAKE_STRIP} -p $<TARGET_FILE:${name}>)
endfunction()

# beacon_compile_idl(IDL OUT): compiles an IDL file to OUT.h, OUT_i.c (identifiers) and OUT.tlb.
find_program(WIDL ${BEACON_MACHINE}-w64-mingw32-widl REQUIRED)
find_path(STDOLE_DIR stdole2.tlb REQUIRED NO_CMAKE_FIND_ROOT_PATH
          PATHS /usr/lib/x86_64-linux-gnu/wine/x86_64-windows /usr/lib/wine/x86_64-windows)
function(beacon_compile_idl idl out)
    # widl writes the time into the type library: always the same time, so that two builds give the same bytes.
    set(widl ${CMAKE_COMMAND} -E env TZ=UTC WIDL_TIME_OVERRIDE=946684800
        ${WIDL} $<IF:$<EQUAL:${CMAKE_SIZEOF_VOID_P},8>,--win64,--win32>
        -I ${PROJECT_SOURCE_DIR}/contracts/platform -L ${STDOLE_DIR})
    add_custom_command(
        OUTPUT ${out}.h ${out}_i.c ${out}.tlb
        COMMAND ${widl} -h -o ${out}.h ${idl}
        COMMAND ${widl} -u -o ${out}_i.c ${idl}
        COMMAND ${widl} -t -o ${out}.tlb ${idl}
        DEPENDS ${idl} ${PROJECT_SOURCE_DIR}/contracts/platform/oaidl.idl
        VERBATIM)
endfunction()

# Most compile time is spent in the headers of Windows and of the standard library, so they are precompiled. Sources
# still include what they use: ./dev lint reads them without the precompiled header.
function(beacon_precompile name)
    file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp "")
    add_library(${name} STATIC ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    target_link_libraries(${name} PRIVATE beacon_flags)
    target_precompile_headers(${name} PRIVATE
        <windows.h> <ocidl.h> <comdef.h> <wrl/client.h> <algorithm> <array> <functional> <initializer_list> <memory>
        <optional> <string> <string_view> <utility> <vector> ${ARGN})
endfunction()
beacon_precompile(beacon_headers)

# Header-only libraries of the build system, made visible to the cross compiler without the rest of /usr/include.
find_path(NLOHMANN_JSON nlohmann/json.hpp REQUIRED NO_CMAKE_FIND_ROOT_PATH PATHS /usr/include /usr/local/include)
find_path(CXXOPTS cxxopts.hpp REQUIRED NO_CMAKE_FIND_ROOT_PATH PATHS /usr/include /usr/local/include)
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/include)
file(CREATE_LINK ${NLOHMANN_JSON}/nlohmann ${CMAKE_CURRENT_BINARY_DIR}/include/nlohmann SYMBOLIC)
file(CREATE_LINK ${CXXOPTS}/cxxopts.hpp ${CMAKE_CURRENT_BINARY_DIR}/include/cxxopts.hpp SYMBOLIC)
add_library(beacon_header_libraries INTERFACE)
target_include_directories(beacon_header_libraries SYSTEM INTERFACE ${CMAKE_CURRENT_BINARY_DIR}/include)
