# Flags for cl and clang-cl on Windows, in place of gnu.cmake's. docs/building.md says how far they have been tried.

# The program's own copy of the run-time library; symbols in X.pdb beside X.dll.
set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
set(CMAKE_MSVC_DEBUG_INFORMATION_FORMAT Embedded)
set(CMAKE_POLICY_DEFAULT_CMP0091 NEW) # both hold for GoogleTest, too
set(CMAKE_POLICY_DEFAULT_CMP0141 NEW)
set(CMAKE_CXX_FLAGS_RELEASE "/O1")
set(CMAKE_C_FLAGS_RELEASE "/O1")

# Warnings are no errors here, since nobody has seen all of cl's.
set(BEACON_WARNINGS /W4)
target_compile_options(beacon_flags INTERFACE ${BEACON_WARNINGS}
    $<$<COMPILE_LANGUAGE:CXX>:/permissive-> $<$<COMPILE_LANGUAGE:CXX>:/Zc:__cplusplus> /utf-8)
set(BEACON_LINK_OPTIONS /DEBUG /INCREMENTAL:NO /Brepro)
target_link_options(beacon_flags INTERFACE ${BEACON_LINK_OPTIONS} /OPT:REF /OPT:ICF)

# Microsoft publishes MAPI's headers apart from Windows' own.
find_path(MAPI_HEADERS mapidefs.h REQUIRED)
target_include_directories(beacon_flags SYSTEM INTERFACE ${MAPI_HEADERS})

function(beacon_split_symbols name)
    # The linker has done it.
endfunction()

# As in gnu.cmake, by Windows' own compiler and files.
find_program(MIDL midl REQUIRED)
function(beacon_compile_idl idl out)
    cmake_path(GET out PARENT_PATH folder)
    cmake_path(GET out FILENAME name)
    add_custom_command(
        OUTPUT ${out}.h ${out}_i.c ${out}.tlb
        COMMAND ${MIDL} /nologo /env $<IF:$<EQUAL:${CMAKE_SIZEOF_VOID_P},8>,x64,win32> /out ${folder}
                /h ${name}.h /iid ${name}_i.c /tlb ${name}.tlb ${idl}
        DEPENDS ${idl}
        VERBATIM)
endfunction()
