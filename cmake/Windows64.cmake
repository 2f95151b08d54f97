# Cross-builds for 64-bit Windows with Debian's g++-mingw-w64-x86-64-posix; Wine runs the programs.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include("${CMAKE_CURRENT_LIST_DIR}/Windows.cmake")
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/wine.sh;${CMAKE_BINARY_DIR}/wine")
