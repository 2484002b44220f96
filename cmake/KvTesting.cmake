# kv_add_test(<name> SOURCES <files...> LIBS <targets...> [GUI])
#
# One executable per tested class, registered with CTest. Every test runs
# offscreen with its own throw-away settings and socket folders so that tests
# never touch the user's configuration and can run in parallel.
function(kv_add_test name)
    cmake_parse_arguments(T "GUI" "TIMEOUT" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${T_SOURCES})
    target_link_libraries(${name} PRIVATE Qt5::Test ${T_LIBS})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
    add_test(NAME ${name} COMMAND ${name})
    if(NOT T_TIMEOUT)
        set(T_TIMEOUT 120)
    endif()
    # Instrumented code runs several times slower; the limits are for hangs, not speed. The
    # few bounds a test puts on how fast something must happen (KV_TEST_TIME_SCALE times
    # their milliseconds) stretch the same way.
    set(time_scale 1)
    if(KV_SANITIZE)
        set(time_scale 3)
    endif()
    math(EXPR T_TIMEOUT "${T_TIMEOUT} * ${time_scale}")
    target_compile_definitions(${name} PRIVATE KV_TEST_TIME_SCALE=${time_scale})
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${T_TIMEOUT}
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;KLIPVANE_TEST_BIN_DIR=${CMAKE_RUNTIME_OUTPUT_DIRECTORY};KLIPVANE_SOURCE_DIR=${PROJECT_SOURCE_DIR}")
endfunction()
