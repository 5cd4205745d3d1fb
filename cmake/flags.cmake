# Flags of both builds: Windows by MinGW, and the text rules on the build machine.

# Small, since the add-in mostly waits for calls into other processes; its text rules are compiled for speed. Debug
# information is limited to what names the line of a crash.
set(CMAKE_CXX_FLAGS_RELEASE "-Os -g1")
set(CMAKE_C_FLAGS_RELEASE "-Os -g1")
set(CMAKE_CXX_FLAGS_DEBUG "-Og -g1")
set(CMAKE_C_FLAGS_DEBUG "-Og -g1")

set(BEACON_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Werror)
# Debug information names sources by their paths in the repository, wherever that is. ccache has made the paths
# relative. The last matching option applies.
file(RELATIVE_PATH to_sources ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR})
target_compile_options(beacon_flags INTERFACE ${BEACON_WARNINGS} -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=
    -ffile-prefix-map=${to_sources}= -ffile-prefix-map=${CMAKE_BINARY_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}/=)
