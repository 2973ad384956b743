# clang and lld for images that UEFI firmware loads: PE32+, x86-64, no system below.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

find_program(VENTARA_CLANG NAMES clang++-14 clang++ REQUIRED)
find_program(VENTARA_CLANG_C NAMES clang-14 clang REQUIRED)
set(CMAKE_CXX_COMPILER ${VENTARA_CLANG})
set(CMAKE_C_COMPILER ${VENTARA_CLANG_C})
set(CMAKE_ASM_COMPILER ${VENTARA_CLANG_C})

# A program for this target needs an entry point of its own, which the compiler check doesn't have.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
# The firmware's stack belongs to its interrupt handlers too (no red zone), and nothing commits stack pages (no probes).
set(VENTARA_FIRMWARE_FLAGS
    "--target=x86_64-unknown-windows -ffreestanding -mno-red-zone -mno-stack-arg-probe -fshort-wchar -fno-stack-protector -fno-asynchronous-unwind-tables")
set(CMAKE_C_FLAGS_INIT "${VENTARA_FIRMWARE_FLAGS}")
set(CMAKE_ASM_FLAGS_INIT "--target=x86_64-unknown-windows")
set(CMAKE_CXX_FLAGS_INIT "${VENTARA_FIRMWARE_FLAGS} -fno-exceptions -fno-rtti -fno-threadsafe-statics")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-nostdlib -fuse-ld=lld-link")
