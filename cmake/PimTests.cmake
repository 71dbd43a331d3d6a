# Settings of the test programs.

# Tests are compiled often and run once: they do without the optimiser, and what nearly all of them
# include (more of it may follow the target) is compiled ahead. The code under test keeps its options.
function(pim_test_options target)
  # The second option lets a compiler cache see through the headers compiled ahead.
  target_compile_options(${target} PRIVATE -Og
    $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>
    $<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>)
  target_precompile_headers(${target} PRIVATE
    ${ARGN} <gmock/gmock.h> <gtest/gtest.h>
    <cstdint> <functional> <map> <memory> <optional> <string> <vector>)
endfunction()

# Two CTest entries NAME_0 and NAME_1 side by side, half of a program's tests each, in prefixes of
# their own, since the tests register the server. TZ: what clients show and stores write depends on it.
# pim_add_halves(NAME program [CONFIGURATION name] [TIMEOUT seconds] [ENVIRONMENT VARIABLE=value ...])
function(pim_add_halves name program)
  cmake_parse_arguments(arg "" "CONFIGURATION;TIMEOUT" "ENVIRONMENT" ${ARGN})
  foreach(half 0 1)
    add_test(NAME ${name}_${half} COMMAND ${program} CONFIGURATIONS ${arg_CONFIGURATION})
    set_tests_properties(${name}_${half} PROPERTIES TIMEOUT ${arg_TIMEOUT} COST 1000
      ENVIRONMENT "GTEST_TOTAL_SHARDS=2;GTEST_SHARD_INDEX=${half};TZ=CET-1CEST,M3.5.0,M10.5.0/3;\
WINEPREFIX=${CMAKE_BINARY_DIR}/../wine-prefix-${program}-${half};${arg_ENVIRONMENT}")
  endforeach()
endfunction()
