# tickwise_add_test(NAME source... [LABEL label] [LIBRARIES lib...]): one Qt Test program. Each of its test functions becomes
# a CTest test of its own, NAME.function; under the sanitizers the program runs as one test, because starting a process
# costs more than most functions do.
include(ProcessorCount)

function(tickwise_add_test name)
    cmake_parse_arguments(arg "" "LABEL" "LIBRARIES" ${ARGN})
    if(NOT arg_LABEL)
        set(arg_LABEL unit)
    endif()
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE tickwise_options Qt6::Test tickwise_test_support ${arg_LIBRARIES})
    target_precompile_headers(${name} REUSE_FROM tickwise_pch)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
    target_compile_definitions(${name} PRIVATE TICKWISE_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
    if(TICKWISE_SANITIZE)
        add_test(NAME ${name} COMMAND ${name})
        set_tests_properties(${name} PROPERTIES LABELS ${arg_LABEL} TIMEOUT 300
            ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
        return()
    endif()
    set(listing "${CMAKE_CURRENT_BINARY_DIR}/${name}_tests.cmake")
    add_custom_command(TARGET ${name} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:${name}> -DNAME=${name} -DLABEL=${arg_LABEL} -DLISTING=${listing}
            -P "${PROJECT_SOURCE_DIR}/cmake/DiscoverTests.cmake"
        BYPRODUCTS "${listing}" VERBATIM)
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${listing}")
endfunction()
