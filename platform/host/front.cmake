# The part of the hosted firmware that faces the user: window, recorder, PNG files.

find_package(PkgConfig REQUIRED)
pkg_check_modules(SDL2 IMPORTED_TARGET sdl2)
if(NOT SDL2_FOUND)
    message(FATAL_ERROR "SDL2 isn't installed (Debian: apt-get install libsdl2-dev)")
endif()

find_path(STB_INCLUDE_DIR stb/stb_image_write.h)
if(NOT STB_INCLUDE_DIR)
    message(FATAL_ERROR "stb isn't installed (Debian: apt-get install libstb-dev)")
endif()

target_sources(host PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/Png.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Recorder.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Window.cpp)
# System headers: their warnings are not ours to mend.
target_include_directories(host SYSTEM PRIVATE ${STB_INCLUDE_DIR})
target_link_libraries(host PUBLIC PkgConfig::SDL2)
