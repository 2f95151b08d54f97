# Builds for 32-bit Linux with Debian's g++-multilib, to run the code of 32-bit systems.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT -m32)
set(CMAKE_CXX_FLAGS_INIT -m32)
# Not every kernel of a 64-bit machine runs 32-bit programs.
execute_process(COMMAND /lib/ld-linux.so.2 --version RESULT_VARIABLE status OUTPUT_QUIET ERROR_QUIET)
if(NOT status EQUAL 0)
  set(CMAKE_CROSSCOMPILING_EMULATOR "qemu-i386;-cpu;max")
endif()
