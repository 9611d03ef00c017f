# Making of the menu file: what works on texts only, and what reads libraries and shows the progress.
add_library(ob_mnu STATIC mnuParser.cpp mnu_encoding.cpp mnu_matcher.cpp mnu_menus.cpp mnu_text.cpp
  mnu_writer.cpp)
target_link_libraries(ob_mnu PUBLIC ob_logging)
if(WIN32)
  add_library(ob_mnu_windows STATIC mnuParser_windows.cpp progress_window.cpp)
  target_link_libraries(ob_mnu_windows PUBLIC ob_mnu comctl32 gdi32)
endif()
