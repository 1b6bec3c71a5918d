# The window: Quenlar.exe with its dialogs, icon, manifest and version.

file(GLOB window_sources CONFIGURE_DEPENDS ui/win32/*.cpp ui/win32/*.h)
enable_language(RC)
set(version_numbers ${PROJECT_VERSION_MAJOR},${PROJECT_VERSION_MINOR},${PROJECT_VERSION_PATCH},0)
add_executable(Quenlar WIN32 ${window_sources} ui/win32/quenlar.rc)
set_source_files_properties(
  ui/win32/quenlar.rc
  PROPERTIES COMPILE_DEFINITIONS
             "QUENLAR_VERSION_NUMBERS=${version_numbers};QUENLAR_VERSION_TEXT=\\\"${PROJECT_VERSION}\\\""
             INCLUDE_DIRECTORIES "${PROJECT_SOURCE_DIR};${PROJECT_SOURCE_DIR}/ui/win32"
             OBJECT_DEPENDS
             "${PROJECT_SOURCE_DIR}/ui/win32/quenlar.ico;${PROJECT_SOURCE_DIR}/ui/win32/quenlar.manifest;${PROJECT_SOURCE_DIR}/ui/win32/resource.h")
target_link_libraries(Quenlar PRIVATE quenlar_app ${quenlar_os})
# wWinMain is the entry; the console subsystem is not wanted.
target_link_options(Quenlar PRIVATE -municode)
