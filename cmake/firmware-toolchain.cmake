# clang and lld, for images that no system runs: see platform/firmware/CMakeLists.txt, which names the target.
#
# The target isn't told to CMake here, because CMake would then take the compiler for another one, whose dependency files
# and system include folders it doesn't know how to ask for.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

find_program(VENTARA_CLANGXX NAMES clang++-14 clang++ REQUIRED)
find_program(VENTARA_CLANG NAMES clang-14 clang REQUIRED)
set(CMAKE_CXX_COMPILER ${VENTARA_CLANGXX})
set(CMAKE_ASM_COMPILER ${VENTARA_CLANG})
# There is nothing that a trial program could be linked with.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
