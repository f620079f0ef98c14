# SPDX-License-Identifier: MIT
# Warnings are errors in our own code; third-party headers come in as SYSTEM.
function(tessary_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()

# A GoogleTest executable registered with CTest. Extra arguments are sources;
# LIBS names the libraries it links; GUI makes Qt run on the offscreen platform.
function(tessary_test name)
  cmake_parse_arguments(T "GUI" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  tessary_warnings(${name})
  target_link_libraries(${name} PRIVATE ${T_LIBS} GTest::gtest GTest::gmock)
  if(NOT T_GUI)
    target_link_libraries(${name} PRIVATE GTest::gtest_main)  # GUI tests bring their own main
  endif()
  target_compile_definitions(${name} PRIVATE
    TESSARY_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
    TESSARY_SHARED_DIR="${CMAKE_SOURCE_DIR}/../shared")
  set(env "TESSARY_LOG_LEVEL=0")
  if(T_GUI)
    list(APPEND env "QT_QPA_PLATFORM=offscreen")
  endif()
  gtest_discover_tests(${name}
    DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "${env}" TIMEOUT 300)
endfunction()
