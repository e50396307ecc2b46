# tickwise_add_tests(NAME [UNIT file...] [SERVICE file...] [DESKTOP file...] [SOURCES file...] [LIBRARIES lib...])
#
# One test program, NAME, for the test classes of a folder; a class is named after its file, and its label is that of its list.
# Each test function becomes a CTest test of its own, CLASS.function; under the sanitizers each class runs as one test, because
# starting a process costs more than most functions do. SOURCES are what the classes share.
function(tickwise_add_tests name)
    cmake_parse_arguments(arg "" "" "UNIT;SERVICE;DESKTOP;SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_UNIT} ${arg_SERVICE} ${arg_DESKTOP} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE tickwise_options tickwise_test_program ${arg_LIBRARIES})
    target_precompile_headers(${name} REUSE_FROM tickwise_test_pch)
    target_compile_options(${name} PRIVATE ${TICKWISE_TEST_OPTIONS})
    add_dependencies(tests ${name})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
    target_compile_definitions(${name} PRIVATE TICKWISE_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
    set(classes "")
    foreach(label unit service desktop)
        string(TOUPPER ${label} list)
        foreach(file IN LISTS arg_${list})
            get_filename_component(class "${file}" NAME_WE)
            list(APPEND classes "${class}=${label}")
            if(TICKWISE_SANITIZE)
                add_test(NAME ${class} COMMAND ${name} ${class})
                set_tests_properties(${class} PROPERTIES LABELS ${label} TIMEOUT 300
                    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;ASAN_SYMBOLIZER_PATH=/usr/bin/llvm-symbolizer-14")
            endif()
        endforeach()
    endforeach()
    if(TICKWISE_SANITIZE)
        return()
    endif()
    set(listing "${CMAKE_CURRENT_BINARY_DIR}/${name}_functions.cmake")
    add_custom_command(TARGET ${name} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:${name}> "-DCLASSES=${classes}" -DLISTING=${listing}
            -P "${PROJECT_SOURCE_DIR}/cmake/DiscoverTests.cmake"
        BYPRODUCTS "${listing}" VERBATIM)
    # A program that is not built yet is one test that fails.
    set(tests "${CMAKE_CURRENT_BINARY_DIR}/${name}_tests.cmake")
    file(WRITE "${tests}" "if(EXISTS \"${listing}\")\n  include(\"${listing}\")\nelse()\n  add_test(${name}_is_not_built ${name}_is_not_built)\nendif()\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${tests}")
endfunction()

# tickwise_add_python_tests(NAME LABEL file...): each test method of unittest files becomes a CTest test of its own,
# NAME.file.Class.method (desktop.app.… for tests/desktop/app_test.py). Tests with the label desktop run one at a time. The Python has to
# be the distribution's, because the bindings for D-Bus are among its packages.
find_program(TICKWISE_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)
function(tickwise_add_python_tests name label)
    foreach(script IN LISTS ARGN)
        set(path "${CMAKE_CURRENT_SOURCE_DIR}/${script}")
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${path}")
        file(STRINGS "${path}" lines REGEX "^(class [A-Za-z0-9_]+\\(|    def test_[A-Za-z0-9_]+\\()")
        string(REGEX REPLACE "_test\\.py$" "" group "${script}")
        set(found FALSE)
        foreach(line IN LISTS lines)
            if(line MATCHES "^class ([A-Za-z0-9_]+)")
                set(class "${CMAKE_MATCH_1}")
                continue()
            endif()
            string(REGEX MATCH "test_[A-Za-z0-9_]+" method "${line}")
            set(test "${name}.${group}.${class}.${method}")
            add_test(NAME "${test}" COMMAND "${TICKWISE_PYTHON}" -B "${path}" "${class}.${method}")
            set_tests_properties("${test}" PROPERTIES LABELS ${label} TIMEOUT 120 FAIL_REGULAR_EXPRESSION "skipped="
                ENVIRONMENT "TICKWISE_BUILD_DIR=${PROJECT_BINARY_DIR};PYTHONPATH=${PROJECT_SOURCE_DIR}/tests/desktop")
            if(label STREQUAL desktop)
                set_tests_properties("${test}" PROPERTIES RESOURCE_LOCK desktop)
            endif()
            set(found TRUE)
        endforeach()
        if(NOT found)
            message(FATAL_ERROR "${path} has no test methods")
        endif()
    endforeach()
endfunction()
