# The version is said once, by project() in the root's CMakeLists.txt. From there it goes into a header for programs that
# tell it (version.h.in), and into the version resource of every DLL and program.

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
