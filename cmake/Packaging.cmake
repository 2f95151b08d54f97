# Installation of what belongs to no target, and packages of all that is installed: `cpack` in the build folder.
install(FILES LICENSE DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/tesseret" RENAME copyright)
install(FILES CHANGELOG.md DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/tesseret")

set(CPACK_PACKAGE_NAME tesseret)
set(CPACK_PACKAGE_VENDOR Orvane)
set(CPACK_PACKAGE_CONTACT Orvane)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION "Covers regions of pictures with texture that is cut into blocks and joined along the seams of least\n\
difference: an OFX plug-in for compositing applications, a command line and a viewer.")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGE_FILE_NAME "tesseret-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR DEB TGZ)
endif()
# Packages hold what was built; tests are no part of them.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
