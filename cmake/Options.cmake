# What all targets have in common: warnings, the sanitizers that a preset asks for, and the plain file name as
# __FILE__ (the log's file column and its file filter must agree on every tool chain).
option(ORBIKON_TESTS "Build the tests" ON)
option(ORBIKON_BENCH "Build the benchmarks (native)" OFF)
option(ORBIKON_FUZZ "Build the fuzzers (native, clang)" OFF)
set(ORBIKON_SANITIZE "" CACHE STRING "Value for -fsanitize=, empty for none")

add_library(orbikon_options INTERFACE)
target_include_directories(orbikon_options INTERFACE ${PROJECT_SOURCE_DIR} ${CMAKE_BINARY_DIR}/include)
configure_file(${CMAKE_CURRENT_LIST_DIR}/version.h.in ${CMAKE_BINARY_DIR}/include/generated/version.h @ONLY)
target_compile_options(orbikon_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Wold-style-cast
  -Woverloaded-virtual -Wcast-align -Wformat=2 -Werror)
foreach(folder OB_Daemon/src config driver toolkit common_sources common_sources/mnu)
  target_compile_options(orbikon_options INTERFACE -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/${folder}/=)
endforeach()

# Of debug information the lines alone, which is what stack traces need: the whole of it takes a third of the build's time.
add_compile_options($<$<CONFIG:Debug,RelWithDebInfo>:-g1>)

# A header that says which commit is built, and changes only with it. What includes it depends on this target.
set(ORBIKON_BUILD_COMMIT ${CMAKE_BINARY_DIR}/include/generated/build_commit.h)
add_custom_target(orbikon_build_commit
  COMMAND ${CMAKE_COMMAND} -DSOURCE=${PROJECT_SOURCE_DIR} -DHEADER=${ORBIKON_BUILD_COMMIT}
          -P ${PROJECT_SOURCE_DIR}/cmake/build_commit.cmake
  BYPRODUCTS ${ORBIKON_BUILD_COMMIT}
  VERBATIM)

if(ORBIKON_SANITIZE)
  add_compile_options(-fsanitize=${ORBIKON_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ORBIKON_SANITIZE})
endif()

if(ORBIKON_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
  add_link_options(-fsanitize=address,undefined)
endif()

if(WIN32)
  set(ORBIKON_DRIVER_LIBRARY obk_ctrlr_64)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(ORBIKON_DRIVER_LIBRARY obk_ctrlr_32)
    # Creo and Windows guarantee 4-byte stack alignment only, so every function that needs more aligns its own frame.
    # SSE arithmetic keeps results independent of the precision that the host sets in the x87 control word.
    add_compile_options(-mstackrealign -march=pentium4 -mfpmath=sse)
  endif()
  add_compile_definitions(WINVER=0x0601 _WIN32_WINNT=0x0601 WIN32_LEAN_AND_MEAN NOMINMAX)
  # Two builds of a commit give the same bytes: no time stamps, no paths of this machine.
  add_compile_options(-fdebug-prefix-map=${PROJECT_SOURCE_DIR}=. -fdebug-prefix-map=${CMAKE_BINARY_DIR}=build)
  add_link_options(-Wl,--no-insert-timestamp)
  # Compiler, C++ and thread run-times are linked in: nothing but Windows' own libraries is imported.
  add_link_options(-static -static-libgcc -static-libstdc++)
else()
  find_package(Threads REQUIRED)
  target_link_libraries(orbikon_options INTERFACE Threads::Threads)
endif()
