# On the building machine only the rules of text are built: the same sources, without Windows.
if(BEACON_SANITIZE)
    target_compile_options(beacon_flags INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(beacon_flags INTERFACE -fsanitize=address,undefined)
endif()
if(BEACON_FUZZ)
    target_compile_options(beacon_flags INTERFACE -fsanitize=fuzzer-no-link
        -fno-sanitize-coverage=trace-cmp)
endif()
include(src/text_rules.cmake)
add_library(beacon_text STATIC ${BEACON_TEXT_RULES})
target_link_libraries(beacon_text PUBLIC beacon_flags)
