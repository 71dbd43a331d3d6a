# Settings of the test programs.

# Tests are compiled often and run once: they do without the optimiser, and what nearly all of them
# include (more of it may follow the target) is compiled ahead. The code under test keeps its options.
function(pim_test_options target)
  if(NOT WIN32)
    return()
  endif()
  # The second option lets a compiler cache see through the headers compiled ahead.
  target_compile_options(${target} PRIVATE -Og -fpch-preprocess)
  target_precompile_headers(${target} PRIVATE
    ${ARGN} <gmock/gmock.h> <gtest/gtest.h>
    <cstdint> <functional> <map> <memory> <optional> <string> <vector>)
endfunction()
