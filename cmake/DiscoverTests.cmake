# Asks a test program for the functions of its classes and writes one add_test line each. CLASSES is a list of CLASS=LABEL.
set(lines "")
foreach(entry IN LISTS CLASSES)
    string(REPLACE "=" ";" entry "${entry}")
    list(GET entry 0 class)
    list(GET entry 1 label)
    execute_process(
        COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen "${PROGRAM}" ${class} -functions
        OUTPUT_VARIABLE functions RESULT_VARIABLE failed OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(failed OR functions STREQUAL "")
        message(FATAL_ERROR "${PROGRAM} does not list the functions of ${class}")
    endif()
    string(REGEX MATCHALL "[A-Za-z0-9_]+\\(\\)" functions "${functions}")
    foreach(function IN LISTS functions)
        string(REPLACE "()" "" function "${function}")
        string(APPEND lines "add_test([==[${class}.${function}]==] \"${PROGRAM}\" ${class} ${function})\n"
            "set_tests_properties([==[${class}.${function}]==] PROPERTIES LABELS ${label} TIMEOUT 120 "
            "ENVIRONMENT \"QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8\")\n")
    endforeach()
endforeach()
file(WRITE "${LISTING}" "${lines}")
