# Third-party code, as targets. scripts/setup puts the sources under ${PIM_DEPS_DIR}, pinned by
# version and checksum; GoogleTest comes from its Debian source package.

if(NOT EXISTS ${PIM_DEPS_DIR}/.complete)
  message(FATAL_ERROR "Dependencies are missing. Run scripts/setup first (./run and ./test do it).")
endif()

set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(GOOGLETEST_VERSION 1.12.1)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
if(NOT TARGET GTest::gmock_main)
  add_library(GTest::gmock_main ALIAS gmock_main)
endif()

# TinyXML (category XML, calendar settings). STL mode is what Debian's patched source expects.
add_library(tinyxml STATIC
  ${PIM_DEPS_DIR}/tinyxml/tinyxml.cpp
  ${PIM_DEPS_DIR}/tinyxml/tinyxmlparser.cpp
  ${PIM_DEPS_DIR}/tinyxml/tinyxmlerror.cpp)
target_include_directories(tinyxml SYSTEM PUBLIC ${PIM_DEPS_DIR}/tinyxml)
target_compile_definitions(tinyxml PUBLIC TIXML_USE_STL)

if(WIN32)
  # SQLite (embedded store). Built once, without what the store does not use.
  add_library(sqlite3 STATIC EXCLUDE_FROM_ALL ${PIM_DEPS_DIR}/sqlite/sqlite3.c)
  target_include_directories(sqlite3 SYSTEM PUBLIC ${PIM_DEPS_DIR}/sqlite)
  target_compile_definitions(sqlite3 PRIVATE SQLITE_THREADSAFE=1 SQLITE_DQS=0 SQLITE_OMIT_LOAD_EXTENSION
    SQLITE_DEFAULT_MEMSTATUS=0)
  target_compile_options(sqlite3 PRIVATE -w)
endif()

# Header-only libraries of the client and the tools.
add_library(cli11 INTERFACE)
target_include_directories(cli11 SYSTEM INTERFACE ${PIM_DEPS_DIR}/include)
add_library(nlohmann_json INTERFACE)
target_include_directories(nlohmann_json SYSTEM INTERFACE ${PIM_DEPS_DIR}/include)
