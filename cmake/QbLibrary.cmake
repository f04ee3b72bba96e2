# Helpers that keep one library per subsystem folder and one test program per test folder.

# qb_add_library(NAME DIR DEPS...): every .cpp in DIR makes the library; DIR's parent is the include root.
function(qb_add_library name)
  cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_library(${name} STATIC ${sources} ${headers})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_DEPS})
  set_target_properties(${name} PROPERTIES AUTOMOC ON POSITION_INDEPENDENT_CODE ON)
endfunction()

# qb_add_test_suite(NAME [WIDGETS] DEPS...): every .cpp in the current folder makes one GoogleTest program.
# WIDGETS: the program runs a QApplication, for tests of widgets (offscreen).
function(qb_add_test_suite name)
  cmake_parse_arguments(ARG "WIDGETS" "" "DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(ARG_WIDGETS)
    set(main ${PROJECT_SOURCE_DIR}/tests/support/test_main_widgets.cpp)
    list(APPEND ARG_DEPS Qt6::Widgets)
  else()
    set(main ${PROJECT_SOURCE_DIR}/tests/support/test_main.cpp)
  endif()
  add_executable(${name} ${sources} ${main})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_DEPS} qb_test_support Qt6::Test GTest::gtest GTest::gmock)
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
