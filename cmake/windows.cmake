# What every Windows binary has, whichever compiler made it. The headers need the version named below for rich edit and
# accessibility; that the add-in calls only what Windows 2000 has, its tests hold against a list.
target_compile_definitions(beacon_flags INTERFACE UNICODE _UNICODE NOMINMAX STRICT WINVER=0x0601 _WIN32_WINNT=0x0601)

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

# The JSON header. That of the building system is shown to a cross compiler without the rest of /usr/include.
find_path(NLOHMANN_JSON nlohmann/json.hpp REQUIRED NO_CMAKE_FIND_ROOT_PATH PATHS /usr/include /usr/local/include)
add_library(beacon_json INTERFACE)
if(CMAKE_CROSSCOMPILING)
    file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/include)
    file(CREATE_LINK ${NLOHMANN_JSON}/nlohmann ${CMAKE_CURRENT_BINARY_DIR}/include/nlohmann SYMBOLIC)
    target_include_directories(beacon_json SYSTEM INTERFACE ${CMAKE_CURRENT_BINARY_DIR}/include)
else()
    target_include_directories(beacon_json SYSTEM INTERFACE ${NLOHMANN_JSON})
endif()
