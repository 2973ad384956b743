# The table of the package's font, for the hosted world and for the firmware images alike: sets SystemFontTable, which
# platform/board/SystemFont.cpp includes from SystemFontFolder.
set(VENTARA_SYSTEM_FONT /usr/share/consolefonts/Lat15-TerminusBold16.psf.gz
    CACHE FILEPATH "Console font of 8 by 16 pixels (PSF version 1, gzipped) that the system font is made from")
if(NOT EXISTS ${VENTARA_SYSTEM_FONT})
    message(FATAL_ERROR
        "No console font at ${VENTARA_SYSTEM_FONT} (Debian: apt-get install console-setup-linux, "
        "or set VENTARA_SYSTEM_FONT)")
endif()

find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(SystemFontMaker ${CMAKE_CURRENT_LIST_DIR}/../tools/make_system_font.py)
set(SystemFontFolder ${CMAKE_CURRENT_BINARY_DIR}/font)
set(SystemFontTable ${SystemFontFolder}/SystemFontTable.inc)
file(MAKE_DIRECTORY ${SystemFontFolder})
add_custom_command(
    OUTPUT ${SystemFontTable}
    COMMAND ${Python3_EXECUTABLE} ${SystemFontMaker} ${VENTARA_SYSTEM_FONT} ${SystemFontTable}
    DEPENDS ${SystemFontMaker} ${VENTARA_SYSTEM_FONT}
    COMMENT "Making the system font")
