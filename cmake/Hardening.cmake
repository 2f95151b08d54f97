# What Debian builds its packages with: a protected stack, checked calls of the C library, tables that are read-only once
# a program is loaded, and a stack that is never executed. A sanitizer has checks of its own.
if(CMAKE_SYSTEM_NAME STREQUAL Linux AND NOT TESSERET_SANITIZE)
  # Checked calls need optimisation. A compiler may have a default of its own.
  set(TESSERET_HARDENING -fstack-protector-strong "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE>"
                         "$<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>")
  add_compile_options(${TESSERET_HARDENING})
  add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
endif()
