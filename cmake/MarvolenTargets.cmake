# Target helpers: one library a folder, with one set of warnings for all of them.

# What every target of ours is compiled with.
add_library(marvolen_options INTERFACE)
target_include_directories(marvolen_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(marvolen_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>)
if(MARVOLEN_SANITIZE)
  target_compile_options(marvolen_options INTERFACE
    -fsanitize=${MARVOLEN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(marvolen_options INTERFACE -fsanitize=${MARVOLEN_SANITIZE})
endif()

# What targets that see Qt add: its strict mode, and its headers as system headers.
add_library(marvolen_qt_options INTERFACE)
target_link_libraries(marvolen_qt_options INTERFACE marvolen_options)
target_compile_definitions(marvolen_qt_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CONTEXTLESS_CONNECT
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_FOREACH QT_NO_KEYWORDS
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)

# marvolen_core_library(NAME SOURCES ... [LINK ...]): a library without Qt.
function(marvolen_core_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC marvolen_options ${ARG_LINK})
endfunction()

# marvolen_qt_library(NAME SOURCES ... [LINK ...]): a library on top of Qt.
function(marvolen_qt_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC marvolen_qt_options ${ARG_LINK})
  set_target_properties(${name} PROPERTIES AUTOMOC ON AUTORCC ON)
endfunction()

# Every test program whose cases run more than one thread; what ThreadSanitizer looks at.
add_custom_target(marvolen_threaded_tests)

# marvolen_test(NAME SOURCES ... [LINK ...] [QT] [THREADS]): a GoogleTest program, each case a CTest
# test. With QT its main() runs a QApplication on the offscreen platform; with THREADS its cases
# carry the label "threads".
function(marvolen_test name)
  cmake_parse_arguments(ARG "QT;THREADS" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE marvolen_options ${ARG_LINK} GTest::gtest)
  # A test runs once for every time it is compiled; what it tests is optimised as for users.
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O1>)
  if(ARG_QT)
    target_link_libraries(${name} PRIVATE marvolen_test_qt_main marvolen_qt_options)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
  else()
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  set(labels "")
  if(ARG_THREADS)
    add_dependencies(marvolen_threaded_tests ${name})
    set(labels LABELS threads)
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300 ${labels})
  # A property that is a list doesn't survive discovery, so it is set when CTest reads the result.
  set(environment_file ${CMAKE_CURRENT_BINARY_DIR}/${name}_environment.cmake)
  file(WRITE ${environment_file}
"foreach(test IN LISTS ${name}_TESTS)
  set_tests_properties(\"\${test}\" PROPERTIES ENVIRONMENT \"${MARVOLEN_TEST_ENVIRONMENT}\")
endforeach()
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${environment_file})
endfunction()
