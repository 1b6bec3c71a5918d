# The window: Quenlar.exe with its dialogs, icon, manifest and version.

set(window_sources src/forms/win32/main_win32.cpp src/forms/win32/quenlar.rc)
enable_language(RC)
set(version_numbers ${PROJECT_VERSION_MAJOR},${PROJECT_VERSION_MINOR},${PROJECT_VERSION_PATCH},0)
configure_file(${PROJECT_SOURCE_DIR}/src/forms/win32/quenlar.manifest.in ${CMAKE_BINARY_DIR}/quenlar.manifest @ONLY)
add_executable(Quenlar WIN32 ${window_sources})
set_source_files_properties(
  src/forms/win32/quenlar.rc
  PROPERTIES COMPILE_DEFINITIONS
             "QUENLAR_NAME=\\\"${QUENLAR_NAME}\\\";QUENLAR_VERSION_NUMBERS=${version_numbers};QUENLAR_VERSION_TEXT=\\\"${PROJECT_VERSION}\\\""
             INCLUDE_DIRECTORIES "${PROJECT_SOURCE_DIR}/src;${PROJECT_SOURCE_DIR}/src/forms/win32;${CMAKE_BINARY_DIR}"
             OBJECT_DEPENDS
             "${PROJECT_SOURCE_DIR}/src/forms/win32/quenlar.ico;${CMAKE_BINARY_DIR}/quenlar.manifest;${PROJECT_SOURCE_DIR}/src/forms/win32/resource.h;${PROJECT_SOURCE_DIR}/src/ui/win32/dialog_items.h")
# The same over an interface table that costs nothing, for bench/window.sh.
add_executable(Quenlar_idle WIN32 EXCLUDE_FROM_ALL ${window_sources}
                                                   tests/window/bench/interface_table.cpp)
foreach(program Quenlar Quenlar_idle)
  target_link_libraries(${program} PRIVATE quenlar_forms_win32 ${quenlar_os})
  # wWinMain is the entry; the console subsystem is not wanted.
  target_link_options(${program} PRIVATE -municode)
endforeach()
