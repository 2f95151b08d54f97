# The same picture from every compiler: no fused multiply-add, no reassociation, no x87 registers.
if(MSVC)
  add_compile_options(/fp:precise)
else()
  add_compile_options(-ffp-contract=off)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "86|AMD64")
    add_compile_options(-msse2 -mfpmath=sse)
  endif()
endif()
