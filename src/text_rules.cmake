# The rules of text: functions of values without any Windows header, so that they also build natively.
set(BEACON_TEXT_RULES
    ${CMAKE_CURRENT_LIST_DIR}/support/numbers.cpp
    ${CMAKE_CURRENT_LIST_DIR}/support/string_values.cpp
    ${CMAKE_CURRENT_LIST_DIR}/extract/class_paths.cpp
    ${CMAKE_CURRENT_LIST_DIR}/engine/encoders.cpp
    ${CMAKE_CURRENT_LIST_DIR}/engine/message_formats.cpp
    ${CMAKE_CURRENT_LIST_DIR}/engine/control_verbs.cpp
    ${CMAKE_CURRENT_LIST_DIR}/toolbar/bitmap_file.cpp
    ${CMAKE_CURRENT_LIST_DIR}/observe/body_text.cpp
    ${CMAKE_CURRENT_LIST_DIR}/observe/clean_body_text.cpp
    ${CMAKE_CURRENT_LIST_DIR}/observe/item_text.cpp
    ${CMAKE_CURRENT_LIST_DIR}/observe/thresholds.cpp
)

# Compiled for speed where the rest is for size; precompiled headers hold for one choice only.
set_source_files_properties(${BEACON_TEXT_RULES} PROPERTIES
    COMPILE_OPTIONS $<$<CONFIG:Release>:-O2> SKIP_PRECOMPILE_HEADERS ON)
