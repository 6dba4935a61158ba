# One static library per folder.
function(quillet_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_library(quillet_${name} STATIC ${ARG_SOURCES})
    add_library(quillet::${name} ALIAS quillet_${name})
    target_link_libraries(quillet_${name} PUBLIC quillet::flags ${ARG_LINKS})
endfunction()

# One test program per room: its GoogleTest cases are registered with CTest one by one.
function(quillet_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_executable(test_${name} ${ARG_SOURCES})
    target_link_libraries(test_${name} PRIVATE quillet::flags ${ARG_LINKS} GTest::gmock_main)
    include(GoogleTest)
    gtest_discover_tests(test_${name} TEST_PREFIX "${name}." PROPERTIES TIMEOUT 180
                         DISCOVERY_TIMEOUT 60)
endfunction()
