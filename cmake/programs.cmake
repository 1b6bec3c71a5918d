# The programs: the command line everywhere, the window on Windows.

if(WIN32)
  if(EXISTS ${PROJECT_SOURCE_DIR}/cli/main_win32.cpp)
    add_executable(quenlar-cli cli/main_win32.cpp)
    target_link_libraries(quenlar-cli PRIVATE quenlar_cli ${quenlar_os})
  endif()
  if(EXISTS ${PROJECT_SOURCE_DIR}/ui/win32/main_win32.cpp)
    include(cmake/window.cmake)
  endif()
elseif(EXISTS ${PROJECT_SOURCE_DIR}/cli/main_posix.cpp)
  add_executable(quenlar cli/main_posix.cpp)
  target_link_libraries(quenlar PRIVATE quenlar_cli ${quenlar_os})
endif()
