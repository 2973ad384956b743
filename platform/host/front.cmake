# The part of the hosted firmware that faces the user: window, recorder, system font, PNG files.

find_package(PkgConfig REQUIRED)
pkg_check_modules(SDL2 IMPORTED_TARGET sdl2)
if(NOT SDL2_FOUND)
    message(FATAL_ERROR "SDL2 isn't installed (Debian: apt-get install libsdl2-dev)")
endif()

find_path(STB_INCLUDE_DIR stb/stb_image_write.h)
if(NOT STB_INCLUDE_DIR)
    message(FATAL_ERROR "stb isn't installed (Debian: apt-get install libstb-dev)")
endif()

set(VENTARA_SYSTEM_FONT /usr/share/consolefonts/Lat15-TerminusBold16.psf.gz
    CACHE FILEPATH "Console font of 8 by 16 pixels (PSF version 1, gzipped) that the system font is made from")
if(NOT EXISTS ${VENTARA_SYSTEM_FONT})
    message(FATAL_ERROR
        "No console font at ${VENTARA_SYSTEM_FONT} (Debian: apt-get install console-setup-linux, "
        "or set VENTARA_SYSTEM_FONT)")
endif()

find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(SystemFontMaker ${CMAKE_CURRENT_LIST_DIR}/../../tools/make_system_font.py)
set(SystemFontTable ${CMAKE_CURRENT_BINARY_DIR}/font/SystemFontTable.inc)
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/font)
add_custom_command(
    OUTPUT ${SystemFontTable}
    COMMAND ${Python3_EXECUTABLE} ${SystemFontMaker} ${VENTARA_SYSTEM_FONT} ${SystemFontTable}
    DEPENDS ${SystemFontMaker} ${VENTARA_SYSTEM_FONT}
    COMMENT "Making the system font")

target_sources(host PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/Png.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Recorder.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SystemFont.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Window.cpp
    ${SystemFontTable})
target_include_directories(host PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/font)
# System headers: their warnings are not ours to mend.
target_include_directories(host SYSTEM PRIVATE ${STB_INCLUDE_DIR})
target_link_libraries(host PUBLIC PkgConfig::SDL2)
