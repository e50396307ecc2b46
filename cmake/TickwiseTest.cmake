# tickwise_add_tests(NAME [UNIT file...] [SERVICE file...] [DESKTOP file...] [SOURCES file...] [LIBRARIES lib...])
#
# One test program, NAME, for the test classes of a folder; a class is named after its file, and its label is that of its list.
# Each test function becomes a CTest test of its own, CLASS.function; under the sanitizers each class runs as one test, because
# starting a process costs more than most functions do. SOURCES are what the classes share.
function(tickwise_add_tests name)
    cmake_parse_arguments(arg "" "" "UNIT;SERVICE;DESKTOP;SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_UNIT} ${arg_SERVICE} ${arg_DESKTOP} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE tickwise_options tickwise_test_program ${arg_LIBRARIES})
    target_precompile_headers(${name} REUSE_FROM tickwise_pch)
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
                    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
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
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${listing}")
endfunction()
