# Precompiled headers, one of the rooms and one of the tests: quenlar_precompile(TARGET KIND) makes use of one, where
# QUENLAR_PRECOMPILE is on. The first target of a kind builds it with its own options, which the others share.

option(QUENLAR_PRECOMPILE "Precompile the headers that most sources include" OFF)

set(quenlar_precompiled_rooms ${CMAKE_CURRENT_LIST_DIR}/precompiled.h)
set(quenlar_precompiled_tests ${PROJECT_SOURCE_DIR}/tests/precompiled.h)

function(quenlar_precompile target kind)
  if(NOT QUENLAR_PRECOMPILE)
    return()
  endif()
  get_property(first GLOBAL PROPERTY quenlar_precompiled_${kind})
  if(first)
    target_precompile_headers(${target} REUSE_FROM ${first})
  else()
    target_precompile_headers(${target} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:${quenlar_precompiled_${kind}}>")
    set_property(GLOBAL PROPERTY quenlar_precompiled_${kind} ${target})
  endif()
endfunction()
