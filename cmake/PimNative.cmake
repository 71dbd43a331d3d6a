# Settings and helpers of the native build of the pure code.

if(PIM_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(PIM_COVERAGE)
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()
if(PIM_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
