# The libraries that the program uses, found on the system. Header-only ones serve the Windows build too, through
# links to their own folders alone, so that no other header of the build machine is seen by the cross compiler.

find_package(Threads REQUIRED)

add_library(quenlar_headers INTERFACE)
add_library(quenlar_zlib INTERFACE)
if(WIN32)
  set(private ${CMAKE_BINARY_DIR}/include)
  file(MAKE_DIRECTORY ${private})
  foreach(name boost CLI nlohmann fmt)
    file(CREATE_LINK /usr/include/${name} ${private}/${name} SYMBOLIC)
  endforeach()
  target_include_directories(quenlar_headers SYSTEM INTERFACE ${private})
  # zlib as a static library, so that the programs need no other DLL than the system's.
  find_library(QUENLAR_ZLIB NAMES libz.a REQUIRED)
  target_link_libraries(quenlar_zlib INTERFACE ${QUENLAR_ZLIB})
  # SQLite as one C file, of the version that Linux links.
  execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/sqlite.sh ${CMAKE_BINARY_DIR}/sqlite COMMAND_ERROR_IS_FATAL ANY)
  add_library(quenlar_sqlite STATIC ${CMAKE_BINARY_DIR}/sqlite/sqlite3.c)
  target_include_directories(quenlar_sqlite SYSTEM PUBLIC ${CMAKE_BINARY_DIR}/sqlite)
  target_compile_definitions(quenlar_sqlite PRIVATE SQLITE_DQS=0 SQLITE_OMIT_LOAD_EXTENSION SQLITE_DEFAULT_MEMSTATUS=0)
  target_compile_options(quenlar_sqlite PRIVATE -w)
  add_library(quenlar_win32_libraries INTERFACE)
  target_link_libraries(quenlar_win32_libraries INTERFACE winhttp iphlpapi advapi32 shell32 comdlg32 comctl32 gdi32
                                                          user32 ole32 ws2_32 uxtheme sensapi crypt32 normaliz bcrypt)
  add_compile_definitions(UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00 WINVER=0x0A00)
  add_link_options(-static)
else()
  find_package(ZLIB REQUIRED)
  target_link_libraries(quenlar_zlib INTERFACE ZLIB::ZLIB)
  find_package(SQLite3 REQUIRED)
  add_library(quenlar_sqlite INTERFACE)
  target_link_libraries(quenlar_sqlite INTERFACE SQLite::SQLite3)
  find_package(CURL REQUIRED)
  find_package(OpenSSL REQUIRED)
  find_library(QUENLAR_IDN2 NAMES idn2 REQUIRED)
  find_library(QUENLAR_DEFLATE NAMES deflate REQUIRED)
  find_library(QUENLAR_ISAL NAMES isal REQUIRED)
  find_library(QUENLAR_BROTLI NAMES brotlidec REQUIRED)
  find_library(QUENLAR_ZSTD NAMES zstd REQUIRED)
  add_library(quenlar_posix_libraries INTERFACE)
  target_link_libraries(quenlar_posix_libraries INTERFACE CURL::libcurl OpenSSL::SSL OpenSSL::Crypto ${QUENLAR_IDN2}
                                                          ${QUENLAR_DEFLATE} ${QUENLAR_ISAL} ${QUENLAR_BROTLI}
                                                          ${QUENLAR_ZSTD} Threads::Threads)
endif()
add_library(quenlar_fmt STATIC cmake/fmt.cpp)
if(WIN32)
  target_include_directories(quenlar_fmt SYSTEM PRIVATE ${private})
endif()
target_link_libraries(quenlar_headers INTERFACE quenlar_fmt)

# GoogleTest from its source package, built with this project's compiler.
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
foreach(target gtest gmock)
  target_compile_options(${target} PRIVATE -w -O0)
endforeach()
