# kestrane_core_library(NAME DEPS lib...) builds one core folder as a static
# library of all its .cpp files, linked to QtCore and the given core libraries.
function(kestrane_core_library name)
  cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC Qt6::Core ${ARG_DEPS})
endfunction()

# kestrane_test(NAME SOURCES file... LIBS lib...) builds a GoogleTest program
# and registers its cases with CTest, with the resource folder and a private
# settings and state area in the environment.
function(kestrane_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} kestrane_test_support kestrane_test_main GTest::gtest GTest::gmock)
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
