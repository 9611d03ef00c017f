# The version is said once, by project() in the root's CMakeLists.txt. From there it goes into a header for programs that
# tell it (version.h.in), and into the version resource of every DLL and program.

# windres hands its arguments to a shell without proper quotes. So it gets no more of them than it needs, and all relative
# to the build folder: then the checkout's own folder may have any name.
set(CMAKE_RC_COMPILE_OBJECT
  "<CMAKE_COMMAND> -E copy <SOURCE> <OBJECT>.rc" "<CMAKE_RC_COMPILER> -O coff <OBJECT>.rc <OBJECT>")
file(RELATIVE_PATH ORBIKON_ICON_FILE ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR}/packaging/orbikon.ico)

# orbikon_resource(TARGET DESCRIPTION [MANIFEST]): version resource; a program gets the icon, too, and its manifest.
function(orbikon_resource target description)
  string(REPLACE "." "," ORBIKON_VERSION_NUMBERS "${PROJECT_VERSION}")
  set(ORBIKON_DESCRIPTION "${description}")
  set(ORBIKON_ORIGINAL_NAME $<TARGET_FILE_NAME:${target}>)
  get_target_property(type ${target} TYPE)
  set(ORBIKON_FILE_TYPE VFT_DLL)
  set(ORBIKON_ICON "")
  if(type STREQUAL EXECUTABLE)
    set(ORBIKON_FILE_TYPE VFT_APP)
    set(ORBIKON_ICON "1 ICON \"${ORBIKON_ICON_FILE}\"")
  endif()
  set(manifest ${ARGN})
  set(ORBIKON_MANIFEST "")
  if(manifest)
    cmake_path(ABSOLUTE_PATH manifest BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
    file(RELATIVE_PATH relative ${CMAKE_BINARY_DIR} ${manifest})
    set(ORBIKON_MANIFEST "1 24 \"${relative}\"")
  endif()
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${resource}.in @ONLY)
  file(GENERATE OUTPUT ${resource} INPUT ${resource}.in TARGET ${target})
  target_sources(${target} PRIVATE ${resource})
  set_source_files_properties(${resource} PROPERTIES
    GENERATED ON OBJECT_DEPENDS "${PROJECT_SOURCE_DIR}/packaging/orbikon.ico;${manifest}")
endfunction()
