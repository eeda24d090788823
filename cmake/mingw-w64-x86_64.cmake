# Cross build for 64-bit Windows with mingw-w64 (posix threads). CTest runs the
# test programs under Wine through the crosscompiling emulator.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(TARNI_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${TARNI_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TARNI_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${TARNI_MINGW_PREFIX}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${TARNI_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Static runtime: the executables run under Wine without copying mingw DLLs.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run.sh)
add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00)
