cmake_minimum_required(VERSION 3.25)

# Writes HEADER with the commit that SOURCE is at, unless it says so already.
execute_process(COMMAND git -C ${SOURCE} describe --always --dirty --exclude=*
  OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  set(commit "unknown")
endif()
file(CONFIGURE OUTPUT ${HEADER} CONTENT [[
#pragma once

inline constexpr char kBuildCommit[] = "@commit@";
]] @ONLY)
