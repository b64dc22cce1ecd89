# The Debian packages: epghost, and epghost-plugin-dev for who builds plug-ins.
#
#   cpack --config build/release/CPackConfig.cmake -B DIRECTORY
set(EPG_PACKAGE_CONTACT "epghost maintainers <root@localhost>" CACHE STRING "Who maintains the packages")

# What belongs below "/" and not below a prefix is in the package alone.
install(FILES ${CMAKE_SOURCE_DIR}/packaging/epghost.toml DESTINATION /etc
    COMPONENT program EXCLUDE_FROM_ALL)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/epghost.service DESTINATION /lib/systemd/system
    COMPONENT program EXCLUDE_FROM_ALL)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/epghost.sysusers DESTINATION /usr/lib/sysusers.d RENAME epghost.conf
    COMPONENT program EXCLUDE_FROM_ALL)
install(FILES ${CMAKE_SOURCE_DIR}/docs/running.md DESTINATION /usr/share/doc/epghost
    COMPONENT program EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME epghost)
set(CPACK_PACKAGE_CONTACT ${EPG_PACKAGE_CONTACT})
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL program development)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME epghost)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION
    "programme guide service with a television around it
A web service that tells companion applications about channels and programmes,
sets reminders and records. It reads XMLTV guides.")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "init-system-helpers, passwd")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS "ca-certificates, tzdata")
set(scripts ${CMAKE_SOURCE_DIR}/packaging/debian)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_CONTROL_EXTRA
    ${scripts}/conffiles ${scripts}/postinst ${scripts}/prerm ${scripts}/postrm)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME epghost-plugin-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "declarations to build plug-ins of a television's web server against
Headers and a CMake package, epghost-plugin. epghost loads such a plug-in.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libboost-dev, libsqlite3-dev")

include(CPack)
