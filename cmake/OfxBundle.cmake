# tesseret_ofx_bundle(target): turns a MODULE library into Tesseret.ofx.bundle in the build folder.
function(tesseret_ofx_bundle target)
  if(WIN32)
    if(CMAKE_SIZEOF_VOID_P EQUAL 8)
      set(arch Win64)
    else()
      set(arch Win32)
    endif()
  elseif(APPLE)
    set(arch MacOS)
  elseif(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(arch Linux-x86-64)
  else()
    set(arch Linux-x86)
  endif()
  set(contents "${PROJECT_BINARY_DIR}/Tesseret.ofx.bundle/Contents")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/Info.plist.in" "${contents}/Info.plist" @ONLY)
  file(MAKE_DIRECTORY "${contents}/Resources")
  configure_file("${PROJECT_SOURCE_DIR}/LICENSE" "${contents}/Resources/LICENSE" COPYONLY)
  set_target_properties(
    ${target} PROPERTIES OUTPUT_NAME Tesseret PREFIX "" SUFFIX ".ofx"
                         LIBRARY_OUTPUT_DIRECTORY "${contents}/${arch}"
                         RUNTIME_OUTPUT_DIRECTORY "${contents}/${arch}"
                         LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/exports.map")
  # Static runtimes: a host brings its own C++ library, possibly an older one. Under a sanitizer the
  # program's own serve: a static one keeps its emergency memory when it is unloaded.
  if(MINGW)
    target_link_options(${target} PRIVATE -static)
  elseif(NOT MSVC AND NOT TESSERET_SANITIZE)
    target_link_options(${target} PRIVATE -static-libgcc -static-libstdc++)
    if(CMAKE_SYSTEM_NAME STREQUAL Linux AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
      tesseret_older_glibc(${target})
    endif()
  endif()
  if(NOT WIN32 AND NOT APPLE)
    target_link_options(${target} PRIVATE
                        "LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map"
                        "LINKER:-z,now")
    # A sanitizer's runtime comes from the program that loads the plug-in.
    if(NOT TESSERET_SANITIZE)
      target_link_options(${target} PRIVATE "LINKER:--no-undefined")
    endif()
  endif()
endfunction()

# tesseret_older_glibc(target): the static runtime refers to the C library of the build machine. What the
# plug-in does not use of it is left out, and the rest is redirected to old versions of its functions.
function(tesseret_older_glibc target)
  target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/platform/OlderGlibc.cpp")
  # Before glibc 2.34 threads and loading are in libraries of their own. A newer glibc has only empty ones,
  # without the links that -lpthread and -ldl would need.
  target_link_options(${target} PRIVATE LINKER:--gc-sections)
  target_link_libraries(
    ${target} PRIVATE -Wl,--push-state,--no-as-needed -l:libpthread.so.0 -l:libdl.so.2
                      -Wl,--pop-state)
endfunction()
