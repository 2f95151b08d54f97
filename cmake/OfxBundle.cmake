# tesseret_ofx_bundle(target): turns a MODULE library into Tesseret.ofx.bundle in the build folder, and installs it.
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
  set(identifier com.orvane.brisant.tesseret)
  set(contents "${PROJECT_BINARY_DIR}/Tesseret.ofx.bundle/Contents")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/Info.plist.in" "${contents}/Info.plist" @ONLY)
  file(MAKE_DIRECTORY "${contents}/Resources")
  configure_file("${PROJECT_SOURCE_DIR}/LICENSE" "${contents}/Resources/LICENSE" COPYONLY)
  tesseret_icons(${target} "${contents}/Resources/${identifier}")
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
    if(arch STREQUAL Linux-x86-64 AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
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
  # Hosts look for bundles in OFX/Plugins below /usr.
  set(installed OFX/Plugins/Tesseret.ofx.bundle/Contents)
  install(TARGETS ${target} LIBRARY DESTINATION "${installed}/${arch}" RUNTIME DESTINATION "${installed}/${arch}")
  install(FILES "${contents}/Info.plist" DESTINATION "${installed}")
  install(DIRECTORY "${contents}/Resources" DESTINATION "${installed}")
endfunction()

# tesseret_icons(target stem): the icon, named after the plug-in's identifier, which is what hosts look for. The first
# PNG has the size that hosts expect; the others are for dense screens.
function(tesseret_icons target stem)
  find_program(RSVG_CONVERT rsvg-convert REQUIRED)
  set(drawing "${PROJECT_SOURCE_DIR}/effect/icon/tesseret.svg")
  configure_file("${drawing}" "${stem}.svg" COPYONLY)
  foreach(size 128 256 512)
    set(picture "${stem}-${size}.png")
    if(size EQUAL 128)
      set(picture "${stem}.png")
    endif()
    add_custom_command(
      OUTPUT "${picture}"
      COMMAND "${RSVG_CONVERT}" --width ${size} --height ${size} --output "${picture}" "${drawing}"
      DEPENDS "${drawing}"
      COMMENT "Drawing the icon with ${size} x ${size} pixels")
    target_sources(${target} PRIVATE "${picture}")
  endforeach()
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
