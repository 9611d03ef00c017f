# The version is said once, by project() in the root's CMakeLists.txt. From there it goes into a header for programs that
# tell it, and into the version resource of every DLL and program.

# The header changes only with the commit that is built.
set(ORBIKON_BUILD_INFO ${CMAKE_BINARY_DIR}/generated/build_info)
add_custom_target(orbikon_build_info
  COMMAND ${CMAKE_COMMAND} -DSOURCE=${PROJECT_SOURCE_DIR} -DVERSION=${PROJECT_VERSION}
          -DHEADER=${ORBIKON_BUILD_INFO}/build_info.h -P ${PROJECT_SOURCE_DIR}/cmake/build_info.cmake
  BYPRODUCTS ${ORBIKON_BUILD_INFO}/build_info.h
  VERBATIM)

# orbikon_build_info(TARGET): lets the target include "build_info.h" (kVersion, kBuildCommit).
function(orbikon_build_info target)
  add_dependencies(${target} orbikon_build_info)
  target_include_directories(${target} PRIVATE ${ORBIKON_BUILD_INFO})
endfunction()

# orbikon_resource(TARGET DESCRIPTION): version resource; a program gets the icon, too.
function(orbikon_resource target description)
  string(REPLACE "." "," ORBIKON_VERSION_NUMBERS "${PROJECT_VERSION}")
  set(ORBIKON_DESCRIPTION "${description}")
  set(ORBIKON_ORIGINAL_NAME $<TARGET_FILE_NAME:${target}>)
  get_target_property(type ${target} TYPE)
  set(ORBIKON_FILE_TYPE VFT_DLL)
  set(ORBIKON_ICON "")
  if(type STREQUAL EXECUTABLE)
    set(ORBIKON_FILE_TYPE VFT_APP)
    set(ORBIKON_ICON "1 ICON \"${PROJECT_SOURCE_DIR}/packaging/orbikon.ico\"")
  endif()
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${resource}.in @ONLY)
  file(GENERATE OUTPUT ${resource} INPUT ${resource}.in TARGET ${target})
  target_sources(${target} PRIVATE ${resource})
  set_source_files_properties(${resource} PROPERTIES
    GENERATED ON OBJECT_DEPENDS ${PROJECT_SOURCE_DIR}/packaging/orbikon.ico)
endfunction()
