# Flags for GCC and Clang: MinGW, and the rules of text on the building machine. msvc.cmake has the same for cl.

# Small, since the add-in mostly waits for calls into other processes; its rules of text are compiled for speed. Symbols
# as far as they name the line of a crash.
set(CMAKE_CXX_FLAGS_RELEASE "-Os -g1")
set(CMAKE_C_FLAGS_RELEASE "-Os -g1")
set(CMAKE_CXX_FLAGS_DEBUG "-Og -g1")
set(CMAKE_C_FLAGS_DEBUG "-Og -g1")

set(BEACON_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Werror)
# Debug information names sources as the repository does, wherever that lies; ccache has made their paths relative. The
# last one that fits holds.
file(RELATIVE_PATH to_sources ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR})
target_compile_options(beacon_flags INTERFACE ${BEACON_WARNINGS} -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=
    -ffile-prefix-map=${to_sources}= -ffile-prefix-map=${CMAKE_BINARY_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}/=)
if(NOT WIN32)
    return()
endif()

# Linked statically, so that the DLL needs system DLLs only, and with nothing that is not called.
target_compile_options(beacon_flags INTERFACE -ffunction-sections -fdata-sections)
# The same sources shall give the same bytes.
set(BEACON_LINK_OPTIONS -static -Wl,--no-insert-timestamp)
target_link_options(beacon_flags INTERFACE ${BEACON_LINK_OPTIONS} -Wl,--gc-sections)
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

# Users get a file without its symbols; they stand beside it in a file of their own. With -p both keep the linker's
# time stamp, which is none.
function(beacon_split_symbols name)
    add_custom_command(TARGET ${name} POST_BUILD VERBATIM
        COMMAND ${CMAKE_OBJCOPY} -p --only-keep-debug $<TARGET_FILE:${name}> $<TARGET_FILE:${name}>.debug
        COMMAND ${CMAKE_STRIP} -p $<TARGET_FILE:${name}>)
endfunction()

# beacon_compile_idl(IDL OUT): makes of a file of contracts OUT.h, OUT_i.c (identifiers) and OUT.tlb.
find_program(WIDL ${BEACON_MACHINE}-w64-mingw32-widl REQUIRED)
find_path(STDOLE_DIR stdole2.tlb REQUIRED NO_CMAKE_FIND_ROOT_PATH
          PATHS /usr/lib/x86_64-linux-gnu/wine/x86_64-windows /usr/lib/wine/x86_64-windows)
function(beacon_compile_idl idl out)
    # The compiler writes the time into the type library; this one, so that two builds give the same bytes.
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
