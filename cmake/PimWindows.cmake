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

# Gives an executable or library its version resource.
function(pim_add_version target description)
  set(file ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL EXECUTABLE)
    set(suffix .exe)
    set(fileType 0x1L)
  else()
    set(suffix .dll)
    set(fileType 0x2L)
  endif()
  get_target_property(name ${target} OUTPUT_NAME)
  if(NOT name)
    set(name ${target})
  endif()
  string(REPLACE "." "," numbers ${PROJECT_VERSION})
  file(CONFIGURE OUTPUT ${file} CONTENT [[
1 VERSIONINFO
FILEVERSION @numbers@,0
PRODUCTVERSION @numbers@,0
FILEFLAGSMASK 0x3fL
FILEFLAGS 0
FILEOS 0x40004L
FILETYPE @fileType@
BEGIN
    BLOCK "StringFileInfo"
    BEGIN
        BLOCK "040904B0"
        BEGIN
            VALUE "FileDescription", "@description@"
            VALUE "FileVersion", "@PROJECT_VERSION@"
            VALUE "InternalName", "@name@"
            VALUE "OriginalFilename", "@name@@suffix@"
            VALUE "ProductName", "PimStoreBridge"
            VALUE "ProductVersion", "@PROJECT_VERSION@"
        END
    END
    BLOCK "VarFileInfo"
    BEGIN
        VALUE "Translation", 0x0409, 0x04B0
    END
END
]] @ONLY)
  target_sources(${target} PRIVATE ${file})
endfunction()
