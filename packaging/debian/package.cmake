# quillet-headoffice as a Debian package: what is installed where, and what cpack makes of it. Elsewhere
# nothing.
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux")
    return()
endif()

include(GNUInstallDirs)
set(files "${CMAKE_CURRENT_LIST_DIR}")
set(documents "${CMAKE_BINARY_DIR}/packaging/debian")

# The changelog names the version that is built, or the package would have another one than its news.
file(STRINGS "${files}/changelog" newest LIMIT_COUNT 1)
if(NOT newest MATCHES "^quillet-headoffice \\(${PROJECT_VERSION}-([0-9]+)\\)")
    message(FATAL_ERROR "packaging/debian/changelog does not begin with ${PROJECT_VERSION}")
endif()
set(release "${CMAKE_MATCH_1}")

install(TARGETS quillet-headoffice RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT headoffice)
install(FILES "${files}/headoffice.conf" DESTINATION /etc/quillet COMPONENT headoffice)
install(FILES "${files}/quillet-headoffice.service" DESTINATION /lib/systemd/system
        COMPONENT headoffice)
install(FILES "${files}/copyright" "${files}/README.md"
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/quillet-headoffice COMPONENT headoffice)
install(
    CODE "foreach(pair quillet-headoffice.8:quillet-headoffice.8 changelog:changelog.Debian)
              string(REPLACE \":\" \";\" pair \"\${pair}\")
              list(GET pair 0 from)
              list(GET pair 1 to)
              file(MAKE_DIRECTORY \"${documents}\")
              execute_process(COMMAND gzip -9nc \"${files}/\${from}\"
                              OUTPUT_FILE \"${documents}/\${to}.gz\" COMMAND_ERROR_IS_FATAL ANY)
          endforeach()"
    COMPONENT headoffice)
install(FILES "${documents}/quillet-headoffice.8.gz" DESTINATION ${CMAKE_INSTALL_MANDIR}/man8
        COMPONENT headoffice)
install(FILES "${documents}/changelog.Debian.gz"
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/quillet-headoffice COMPONENT headoffice)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillet)
set(CPACK_PACKAGE_VENDOR Quillet)
set(CPACK_PACKAGE_CONTACT "Quillet developers <developers@quillet.example>")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_SOURCE_DIR}/build/packages")
set(CPACK_COMPONENTS_ALL headoffice)
set(CPACK_STRIP_FILES ON)
# Some of it goes to /etc and /lib, the rest below /usr.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_RELEASE "${release}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_HEADOFFICE_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_HEADOFFICE_PACKAGE_NAME quillet-headoffice)
set(CPACK_DEBIAN_HEADOFFICE_PACKAGE_SECTION net)
set(CPACK_DEBIAN_HEADOFFICE_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_HEADOFFICE_PACKAGE_CONTROL_EXTRA
    "${files}/control/conffiles;${files}/control/postinst;${files}/control/prerm;${files}/control/postrm")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "head office's server that restaurant counters query")
set(CPACK_COMPONENT_HEADOFFICE_DESCRIPTION
    "Answers the remote data calls of restaurant counters over HTTP: queries of the
head office's MariaDB or MySQL database, and the few commands by which counters
report to it.
.
Who may call, for which databases, and what may be written is told in
/etc/quillet/headoffice.conf. As installed, it answers this machine only.")
if(NOT TARGET quillet::db_mariadb) # then it reaches them through the ODBC driver manager
    set(CPACK_DEBIAN_HEADOFFICE_PACKAGE_RECOMMENDS odbc-mariadb)
endif()
set(CPACK_DEBIAN_HEADOFFICE_PACKAGE_SUGGESTS mariadb-server)
include(CPack)
