# The libraries of the test programs: googletest, and beacon_test_headers, whose precompiled headers they use.

# GoogleTest with its matchers, without mocks; its own build takes twice as long. Tests compile quicker with -Og; what
# they test does not depend on them.
set(GOOGLETEST /usr/src/googletest CACHE PATH "The sources of GoogleTest")
add_library(googletest_headers INTERFACE)
target_include_directories(googletest_headers SYSTEM INTERFACE
    ${PROJECT_SOURCE_DIR}/tests/googletest # has our gtest/internal/custom
    ${GOOGLETEST}/googletest ${GOOGLETEST}/googletest/include
    ${GOOGLETEST}/googlemock ${GOOGLETEST}/googlemock/include)
target_compile_definitions(googletest_headers INTERFACE GTEST_HAS_PTHREAD=0)
target_compile_options(googletest_headers INTERFACE -Og)
beacon_precompile(beacon_test_headers <gmock/gmock-more-matchers.h> <gtest/gtest.h>)
target_link_libraries(beacon_test_headers PRIVATE googletest_headers)
add_library(googletest STATIC
    ${GOOGLETEST}/googletest/src/gtest-all.cc ${GOOGLETEST}/googletest/src/gtest_main.cc
    ${GOOGLETEST}/googlemock/src/gmock.cc ${GOOGLETEST}/googlemock/src/gmock-internal-utils.cc
    ${GOOGLETEST}/googlemock/src/gmock-matchers.cc)
target_link_libraries(googletest PRIVATE beacon_flags PUBLIC googletest_headers)
target_compile_options(googletest PRIVATE -w)
target_precompile_headers(googletest REUSE_FROM beacon_test_headers)
