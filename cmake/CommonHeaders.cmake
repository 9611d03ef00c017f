# What most sources of workbench and tools include is compiled once for Windows, which saves a third of their build. It is
# for speed alone: each source names its headers all the same. The plug-in's own sources do without.
set(headers <windows.h> <algorithm> <array> <atomic> <chrono> <cmath> <filesystem> <functional> <map> <memory> <mutex>
  <optional> <sstream> <stdexcept> <string> <thread> <vector>)
file(CONFIGURE OUTPUT no_source.cpp CONTENT "")
add_library(common_headers OBJECT ${CMAKE_CURRENT_BINARY_DIR}/no_source.cpp)
target_link_libraries(common_headers PRIVATE orbikon_options)
target_precompile_headers(common_headers PRIVATE ${headers})
foreach(target workbench_control workbench_device workbench_monkey workbench_pipes creo_host_core panel_core tour
               ob_doctor ob_probe_core ob_seat orbikon_doctor orbikon_probe)
  target_precompile_headers(${target} REUSE_FROM common_headers)
  # Of its own library GCC 12 keeps quiet, but not when it comes precompiled, and it is wrong there.
  target_compile_options(${target} PRIVATE
    -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread)
endforeach()
target_precompile_headers(creo_host PRIVATE ${headers})  # its own, as it is compiled with UNICODE
