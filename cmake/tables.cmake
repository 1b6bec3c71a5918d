# Sources that are made when the program is built: tables out of data that a Debian package brings, and a web page.

find_program(QUENLAR_HOST_COMPILER NAMES c++ g++ REQUIRED)

# Adds <name>.cpp to a room's library. cmake/make_<name>.cpp is a program of the machine that builds, compiled together
# with the sources named (below src/), and run as "make_<name> DATA OUTPUT".
function(quenlar_table target name data)
  set(make ${CMAKE_BINARY_DIR}/tables/make_${name})
  set(table ${CMAKE_BINARY_DIR}/tables/${name}.cpp)
  list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/src/ OUTPUT_VARIABLE sources)
  list(PREPEND sources ${PROJECT_SOURCE_DIR}/cmake/make_${name}.cpp)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/tables)
  add_custom_command(OUTPUT ${make} DEPENDS ${sources} ${PROJECT_SOURCE_DIR}/src/page/${name}.h
                     COMMAND ${QUENLAR_HOST_COMPILER} -std=c++20 -O1 -I${PROJECT_SOURCE_DIR}/src ${sources} -o ${make})
  add_custom_command(OUTPUT ${table} DEPENDS ${make} ${data} COMMAND ${make} ${data} ${table})
  target_sources(${target} PRIVATE ${table})
endfunction()

# Adds the page of an overview, made of the files in src/collection/overview, to the room of collections.
function(quenlar_overview_page target)
  set(folder ${PROJECT_SOURCE_DIR}/src/collection/overview)
  set(make ${PROJECT_SOURCE_DIR}/cmake/make_overview_page.cmake)
  set(page ${CMAKE_BINARY_DIR}/tables/overview_page.cpp)
  file(GLOB parts CONFIGURE_DEPENDS ${folder}/*)
  add_custom_command(OUTPUT ${page} DEPENDS ${make} ${parts}
                     COMMAND ${CMAKE_COMMAND} -DFOLDER=${folder} -DOUTPUT=${page} -P ${make})
  target_sources(${target} PRIVATE ${page})
endfunction()
