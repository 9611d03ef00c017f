# resource_library(OUTPUT.dll PANES panes.txt)
# resource_library(OUTPUT.dll COMMANDS commands.txt LANGUAGE language [LINE_END crlf])
#
# Adds the rule that makes a resource-only DLL from a text file. A library of commands holds each text in English, too.
find_program(AWK_PROGRAM awk REQUIRED)
set(RESOURCE_LIBRARY_SCRIPTS ${CMAKE_CURRENT_LIST_DIR})

function(resource_library output)
  cmake_parse_arguments(ARG "" "PANES;COMMANDS;LANGUAGE;LINE_END" "" ${ARGN})
  if(ARG_PANES)
    set(script ${RESOURCE_LIBRARY_SCRIPTS}/panes.awk)
  else()
    set(script ${RESOURCE_LIBRARY_SCRIPTS}/commands.awk)
  endif()
  set(source ${ARG_PANES}${ARG_COMMANDS})
  get_filename_component(name ${output} NAME_WE)
  set(scratch ${CMAKE_CURRENT_BINARY_DIR}/${name})
  get_filename_component(folder ${output} DIRECTORY)
  file(MAKE_DIRECTORY ${scratch} ${folder})
  add_custom_command(OUTPUT ${output}
    COMMAND ${AWK_PROGRAM} -v folder=${scratch} -v language=${ARG_LANGUAGE} -v line_end=${ARG_LINE_END} -f ${script}
            ${source} > ${scratch}/library.rc
    COMMAND ${CMAKE_RC_COMPILER} ${scratch}/library.rc ${scratch}/library.o
    COMMAND ${CMAKE_CXX_COMPILER} -shared -nostdlib -Wl,--entry=0 -o ${output} ${scratch}/library.o
    DEPENDS ${source} ${script}
    COMMENT "Compiling resources ${name}"
    VERBATIM)
endfunction()
