# Flags of every Windows binary. Linked statically, so that the DLL needs system DLLs only; Windows 2000 had no more than
# the ANSI and wide interfaces used here, but the headers need the version named below for rich edit and accessibility.
target_compile_definitions(beacon_flags INTERFACE UNICODE _UNICODE NOMINMAX STRICT WINVER=0x0601 _WIN32_WINNT=0x0601)
target_link_options(beacon_flags INTERFACE -static -Wl,--no-insert-timestamp)
if(BEACON_MACHINE STREQUAL "i686")
    # Office's own threads and callbacks only promise 4-byte stack alignment.
    target_compile_options(beacon_flags INTERFACE -mstackrealign)
    # stdcall exports carry @n decorations; COM asks for the plain names.
    set(BEACON_DLL_LINK_OPTIONS -Wl,--kill-at)
endif()
