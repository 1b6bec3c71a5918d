# The programs: the command line everywhere, the window on Windows.

if(WIN32)
  add_executable(quenlar-cli src/cli/main_win32.cpp)
  target_link_libraries(quenlar-cli PRIVATE quenlar_cli ${quenlar_os})
  include(cmake/window.cmake)
else()
  add_executable(quenlar src/cli/main_posix.cpp)
  target_link_libraries(quenlar PRIVATE quenlar_cli ${quenlar_os})
endif()
