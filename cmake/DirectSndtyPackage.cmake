# What a host gets from `cmake --install`: the DLLs and programs in bin, the import libraries
# in lib, dsty.h and the C++ headers in include, and a CMake package in lib/cmake/DirectSndty
# with the targets DirectSndty::dsty (the C interface) and DirectSndty::DirectSndty (the C++
# classes); and a version resource in every DLL. `cpack -G ZIP` packs the same tree.
include(CMakePackageConfigHelpers)

set(DSTY_VERSION_PATCH ${PROJECT_VERSION_PATCH})
if(NOT DSTY_VERSION_PATCH)
  set(DSTY_VERSION_PATCH 0)
endif()

# Gives `target` a version resource saying what it is.
function(dsty_version_resource target description)
  set(DSTY_VERSION_NAME ${target})
  set(DSTY_VERSION_DESCRIPTION ${description})
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(DSTY_VERSION_FILETYPE VFT_APP)
    set(DSTY_VERSION_FILE ${target}.exe)
  else()
    set(DSTY_VERSION_FILETYPE VFT_DLL)
    get_target_property(prefix ${target} PREFIX)
    if(prefix STREQUAL "prefix-NOTFOUND")
      set(prefix lib)
    endif()
    set(DSTY_VERSION_FILE ${prefix}${target}.dll)
  endif()
  set(rc ${CMAKE_BINARY_DIR}/version/${target}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/VersionInfo.rc.in ${rc} @ONLY)
  target_sources(${target} PRIVATE ${rc})
endfunction()

function(dsty_install_package)
  install(TARGETS dsty DirectSndty SndDataty WaveFilety mfcsubset EXPORT DirectSndtyTargets
    RUNTIME DESTINATION bin
    LIBRARY DESTINATION bin
    ARCHIVE DESTINATION lib
    INCLUDES DESTINATION include)
  install(FILES ${PROJECT_SOURCE_DIR}/DirectSndty/capi/dsty.h DESTINATION include)
  # The C++ headers keep their tree, the companions' and the MFC subset's included.
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/DirectSndty/ DESTINATION include/DirectSndty
    FILES_MATCHING PATTERN "*.h"
    PATTERN "capi" EXCLUDE
    PATTERN "src" EXCLUDE)
  install(FILES ${DSTY_RUNTIME_DLLS} DESTINATION bin)
  install(EXPORT DirectSndtyTargets NAMESPACE DirectSndty:: DESTINATION lib/cmake/DirectSndty)
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/DirectSndtyConfig.cmake.in
    ${CMAKE_BINARY_DIR}/DirectSndtyConfig.cmake INSTALL_DESTINATION lib/cmake/DirectSndty)
  write_basic_package_version_file(${CMAKE_BINARY_DIR}/DirectSndtyConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
  install(FILES ${CMAKE_BINARY_DIR}/DirectSndtyConfig.cmake ${CMAKE_BINARY_DIR}/DirectSndtyConfigVersion.cmake
    DESTINATION lib/cmake/DirectSndty)

  set(CPACK_GENERATOR ZIP PARENT_SCOPE)
  set(CPACK_PACKAGE_NAME DirectSndty PARENT_SCOPE)
  set(CPACK_PACKAGE_FILE_NAME DirectSndty-${PROJECT_VERSION}-win64 PARENT_SCOPE)
  set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF PARENT_SCOPE)
endfunction()
