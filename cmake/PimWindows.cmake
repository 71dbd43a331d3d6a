# Settings and helpers of the Windows build.

# What every Windows object file needs. Hardening flags are the usual ones of the toolchain.
add_library(pim_windows INTERFACE)
target_compile_definitions(pim_windows INTERFACE
  UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN STRICT _WIN32_WINNT=0x0601 WINVER=0x0601 NTDDI_VERSION=0x06010000)
target_compile_options(pim_windows INTERFACE -fstack-protector-strong)
target_link_options(pim_windows INTERFACE -static -fstack-protector-strong
  -Wl,--dynamicbase -Wl,--nxcompat -Wl,--high-entropy-va)
target_link_libraries(pim_windows INTERFACE ole32 oleaut32 uuid shlwapi shell32 advapi32)

find_program(WIDL NAMES x86_64-w64-mingw32-widl REQUIRED)
set(WIDL_INCLUDES /usr/include/wine/wine/windows)
set(WIDL_LIBRARIES /usr/lib/x86_64-linux-gnu/wine/x86_64-windows)
set(WIDL_COMMAND ${WIDL} -I${WIDL_INCLUDES} -L${WIDL_LIBRARIES})

# Compiles an interface definition into <name>.tlb, <name>.h and <name>_i.c under
# ${CMAKE_BINARY_DIR}/generated.
function(pim_compile_idl idl)
  get_filename_component(name ${idl} NAME_WE)
  get_filename_component(source ${idl} ABSOLUTE)
  set(out ${CMAKE_BINARY_DIR}/generated)
  file(MAKE_DIRECTORY ${out})
  add_custom_command(
    OUTPUT ${out}/${name}.tlb ${out}/${name}.h ${out}/${name}_i.c
    COMMAND ${WIDL_COMMAND} -t -o ${out}/${name}.tlb ${source}
    COMMAND ${WIDL_COMMAND} -h -o ${out}/${name}.h ${source}
    COMMAND ${WIDL_COMMAND} -u -o ${out}/${name}_i.c ${source}
    DEPENDS ${source}
    COMMENT "Compiling ${name}.idl"
    VERBATIM)
endfunction()
