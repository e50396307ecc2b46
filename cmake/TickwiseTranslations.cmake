# tickwise_add_translations(TARGET): compiles every resources/<language>.lproj/Localizable.ts by its ids and embeds the
# result as :/<language>.lproj/Localizable.qm.
function(tickwise_add_translations target)
    foreach(language en zh-Hans zh-Hant)
        set(source "${PROJECT_SOURCE_DIR}/Tickwise/resources/${language}.lproj/Localizable.ts")
        set(compiled "${CMAKE_CURRENT_BINARY_DIR}/${language}.lproj/Localizable.qm")
        add_custom_command(
            OUTPUT "${compiled}"
            COMMAND ${CMAKE_COMMAND} -E make_directory "${CMAKE_CURRENT_BINARY_DIR}/${language}.lproj"
            COMMAND Qt6::lrelease -silent -idbased "${source}" -qm "${compiled}"
            DEPENDS "${source}"
            VERBATIM)
        set_source_files_properties("${compiled}" PROPERTIES QT_RESOURCE_ALIAS "${language}.lproj/Localizable.qm")
        list(APPEND tables "${compiled}")
    endforeach()
    qt_add_resources(${target} "${target}_translations" PREFIX "/" FILES ${tables})
endfunction()
