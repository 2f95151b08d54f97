# Cross-builds for 32-bit Windows with Debian's g++-mingw-w64-i686-posix.
set(CMAKE_SYSTEM_PROCESSOR i686)
include("${CMAKE_CURRENT_LIST_DIR}/Windows.cmake")
