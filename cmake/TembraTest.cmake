# GoogleTest, and tembra_test() which builds a test program and registers its cases with ctest.

# Debian ships the sources beside the library; a cross build has only those.
if(CMAKE_CROSSCOMPILING)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  foreach(library gtest gmock) # compiled each time, and not what takes the time of a test
    target_compile_options(${library} PRIVATE -O0)
  endforeach()
else()
  find_package(GTest REQUIRED)
endif()

# What builds them: all, or those labelled `threads`.
add_custom_target(tests)
add_custom_target(thread_tests)

# Everything a test leaves behind, and every token, lies in the build tree.
set(TEMBRA_TEST_TMP_DIR ${CMAKE_BINARY_DIR}/test-tmp)
file(MAKE_DIRECTORY ${TEMBRA_TEST_TMP_DIR}/tokens)

# What every test finds in its environment. TEMBRA_BIN_DIR is where the libraries and the tool lie.
# Thread-local blocks of libraries that are loaded at run time are left to the leak checker's look
# at the heap: where one begins 16 bytes into a page it takes what lies before it for a header.
set(TEMBRA_TEST_ENVIRONMENT
  TMPDIR=${TEMBRA_TEST_TMP_DIR}
  TEMBRA_SOFT_TOKEN_DIR=${TEMBRA_TEST_TMP_DIR}/tokens
  TEMBRA_KEY_PROV_LOG_PATH=${TEMBRA_TEST_TMP_DIR}/trace.log
  TEMBRA_KEY_PROV_REGISTRY=${TEMBRA_TEST_TMP_DIR}/none.reg
  TEMBRA_BIN_DIR=${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
  ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1:intercept_tls_get_addr=0
  LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/leak_suppressions.txt:print_suppressions=0
  UBSAN_OPTIONS=print_stacktrace=1
  TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1)
if(WIN32)
  list(APPEND TEMBRA_TEST_ENVIRONMENT TEMP=${TEMBRA_TEST_TMP_DIR} TMP=${TEMBRA_TEST_TMP_DIR})
endif()
if(CMAKE_CROSSCOMPILING_EMULATOR) # finds the DLLs, also when ctest only asks for a program's cases
  list(PREPEND CMAKE_CROSSCOMPILING_EMULATOR
    ${CMAKE_COMMAND} -E env WINEPATH=${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
endif()

# tembra_test(name SOURCES file… [LIBS target…] [LABELS label…] [TIMEOUT seconds] [WHOLE])
#
# Every case becomes a ctest test in a process of its own, since the provider keeps some state (the
# open trace, the settings) for the life of the process. WHOLE runs the program as one test. The
# program brings its own main() or gets GoogleMock's from LIBS: pass GTest::gmock_main, which is the
# default when LIBS names no GTest target.
function(tembra_test name)
  cmake_parse_arguments(arg "WHOLE" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  if(NOT arg_LIBS MATCHES "GTest::")
    list(APPEND arg_LIBS GTest::gmock_main)
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBS} GTest::gmock)
  tembra_warnings(${name})
  # GoogleTest's assertions are if statements themselves.
  target_compile_options(${name} PRIVATE -Wno-dangling-else)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${TEMBRA_TEST_BIN_DIR})
  add_dependencies(tests ${name})
  if(threads IN_LIST arg_LABELS)
    add_dependencies(thread_tests ${name})
  endif()
  if(arg_WHOLE)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}"
      COST ${arg_TIMEOUT} # the longest begin first
      ENVIRONMENT "${TEMBRA_TEST_ENVIRONMENT}")
  else()
    gtest_discover_tests(${name} TEST_PREFIX ${name}. DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60)
    # The cases are known only when ctest runs, and the properties are lists, which cannot be handed
    # to the discovery: a file that ctest reads after it gives them.
    set(file ${CMAKE_CURRENT_BINARY_DIR}/${name}_properties.cmake)
    file(CONFIGURE OUTPUT ${file} @ONLY CONTENT [[
if(@name@_TESTS)
  set_tests_properties(${@name@_TESTS} PROPERTIES TIMEOUT @arg_TIMEOUT@
    LABELS "@arg_LABELS@" ENVIRONMENT "@TEMBRA_TEST_ENVIRONMENT@")
endif()
]])
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${file})
  endif()
endfunction()
