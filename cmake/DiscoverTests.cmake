# Asks a Qt Test program for its functions and writes one add_test line each.
execute_process(
    COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen "${PROGRAM}" -functions
    OUTPUT_VARIABLE functions RESULT_VARIABLE failed OUTPUT_STRIP_TRAILING_WHITESPACE)
if(failed OR functions STREQUAL "")
    message(FATAL_ERROR "${PROGRAM} does not list its test functions")
endif()
string(REGEX MATCHALL "[A-Za-z0-9_]+\\(\\)" functions "${functions}")
set(lines "")
foreach(function IN LISTS functions)
    string(REPLACE "()" "" function "${function}")
    string(APPEND lines "add_test([==[${NAME}.${function}]==] \"${PROGRAM}\" \"${function}\")\n"
        "set_tests_properties([==[${NAME}.${function}]==] PROPERTIES LABELS ${LABEL} TIMEOUT 120 "
        "ENVIRONMENT \"QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8\")\n")
endforeach()
file(WRITE "${LISTING}" "${lines}")
