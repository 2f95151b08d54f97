# The targets GTest::gtest, gtest_main and gmock: the packaged ones, or for another system than the build machine's
# those of Debian's sources (package googletest), built with the same compiler.
if(CMAKE_CROSSCOMPILING)
  find_path(GOOGLETEST_SOURCE googlemock/CMakeLists.txt PATHS /usr/src/googletest NO_DEFAULT_PATH
                                                              NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  # Without our warnings: the sources are not ours.
  function(add_googletest)
    set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
    set(INSTALL_GTEST OFF)
    add_subdirectory("${GOOGLETEST_SOURCE}" "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
    foreach(target gtest gtest_main gmock)
      target_compile_options(${target} PRIVATE -w)
    endforeach()
  endfunction()
  add_googletest()
else()
  find_package(GTest REQUIRED)
endif()
