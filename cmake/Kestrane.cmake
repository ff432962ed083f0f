# kestrane_common_headers(TARGET [header...]) precompiles the Qt and standard
# headers nearly every file of ours includes: the two builds of the test
# command spend most of their time parsing them again for every file.
option(KESTRANE_PCH "Precompile the common headers" ON)
function(kestrane_common_headers target)
  if(KESTRANE_PCH)
    target_precompile_headers(${target} PRIVATE
      <QString> <QStringList> <QList> <QObject> <QVariant> <QFileInfo> <QDir> <QFile> <QUrl> <QTimer>
      <functional> <memory> ${ARGN})
  endif()
endfunction()

# kestrane_core_library(NAME DEPS lib...) builds one core folder as a static
# library of all its .cpp files, linked to QtCore and the given core libraries.
function(kestrane_core_library name)
  cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC Qt6::Core ${ARG_DEPS})
  kestrane_common_headers(${name})
endfunction()

# kestrane_test(NAME SOURCES file... LIBS lib...) builds a GoogleTest program
# and registers its cases with CTest, with the resource folder and a private
# settings and state area in the environment.
function(kestrane_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} kestrane_test_support kestrane_test_main GTest::gtest GTest::gmock)
  kestrane_common_headers(${name} <gtest/gtest.h>)
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES
      TIMEOUT ${ARG_TIMEOUT}
      LABELS "${ARG_LABELS}"
      ENVIRONMENT "KESTRANE_RESOURCES=${KESTRANE_RESOURCE_DIR};KESTRANE_TEST_DATA=${PROJECT_SOURCE_DIR}/tests/data;QT_QPA_PLATFORM=offscreen;KESTRANE_LOG_QUIET=1")
endfunction()
