# What makes an executable a Windows program that runs where nothing is installed: one file that
# needs the system's own DLLs only, with an icon, a version and a manifest. Elsewhere nothing.

set(QUILLET_WINDOWS_FILES "${CMAKE_SOURCE_DIR}/packaging/windows")

# quillet_windows_program(TARGET DESCRIPTION [UTF8_ARGUMENTS])
#
# The description is what Explorer and the task manager show. With UTF8_ARGUMENTS the process runs in
# code page UTF-8, so that the command line can name files of any language. Not for programs that
# open ODBC connections: texts for drivers without Unicode calls go through the same code page, and
# those drivers expect the machine's own.
function(quillet_windows_program target description)
    if(NOT WIN32)
        return()
    endif()

    # -static alone leaves the compiler's own libraries as DLLs: CMake switches back to shared ones
    # around the system's.
    target_link_options(${target} PRIVATE -static)
    set_target_properties(${target} PROPERTIES LINK_SEARCH_START_STATIC ON
                                               LINK_SEARCH_END_STATIC ON)

    cmake_parse_arguments(ARG "UTF8_ARGUMENTS" "" "" ${ARGN})
    set(code_page "")
    if(ARG_UTF8_ARGUMENTS)
        set(settings "http://schemas.microsoft.com/SMI/2019/WindowsSettings")
        set(code_page "\n      <activeCodePage xmlns=\"${settings}\">UTF-8</activeCodePage>")
    endif()
    set(manifest "${CMAKE_CURRENT_BINARY_DIR}/${target}.manifest")
    configure_file("${QUILLET_WINDOWS_FILES}/program.manifest" "${manifest}" @ONLY)

    set(program_description "${description}")
    set(program_file "$<TARGET_FILE_NAME:${target}>")
    set(resource "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
    configure_file("${QUILLET_WINDOWS_FILES}/program.rc.in" "${resource}.in" @ONLY)
    file(GENERATE OUTPUT "${resource}" INPUT "${resource}.in" TARGET ${target})
    target_sources(${target} PRIVATE "${resource}")
    # The description is in UTF-8.
    set_source_files_properties(
        "${resource}" PROPERTIES COMPILE_OPTIONS "-c65001"
                                 OBJECT_DEPENDS "${manifest};${QUILLET_WINDOWS_FILES}/quillet.ico")

    get_target_property(has_window ${target} WIN32_EXECUTABLE)
    if(has_window)
        # The second is for runs that nobody looks at (-platform offscreen).
        qt_import_plugins(
            ${target}
            INCLUDE Qt6::QWindowsIntegrationPlugin Qt6::QOffscreenIntegrationPlugin
                    Qt6::QWindowsVistaStylePlugin
            EXCLUDE_BY_TYPE imageformats)
    endif()
endfunction()
