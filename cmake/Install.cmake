# What "cmake --install" puts where, below any prefix. The component "program" is the set, "development" what one
# builds plug-ins with.
include(CMakePackageConfigHelpers)

set_target_properties(epgset EpgSQLPlugin PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS epghost RUNTIME DESTINATION bin COMPONENT program)
install(TARGETS epgset EpgSQLPlugin LIBRARY DESTINATION lib COMPONENT program)
# What the set serves as files, put together by set/web and set/upnp.
install(DIRECTORY ${CMAKE_BINARY_DIR}/share/epghost DESTINATION share COMPONENT program)
install(FILES ${CMAKE_BINARY_DIR}/share/man/man1/epghost.1.gz DESTINATION share/man/man1 COMPONENT program)

# find_package(epghost-plugin) gives epghost::plugin, a target with the declarations in host/.
add_library(epghost_plugin INTERFACE)
set_target_properties(epghost_plugin PROPERTIES EXPORT_NAME plugin)
target_include_directories(epghost_plugin INTERFACE $<INSTALL_INTERFACE:include/epghost>)
target_compile_features(epghost_plugin INTERFACE cxx_std_20)

set(package lib/cmake/epghost-plugin)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/host DESTINATION include/epghost COMPONENT development)
install(TARGETS epghost_plugin EXPORT epghost-plugin COMPONENT development)
install(EXPORT epghost-plugin NAMESPACE epghost:: FILE epghost-plugin-targets.cmake
    DESTINATION ${package} COMPONENT development)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/epghost-plugin-config-version.cmake
    COMPATIBILITY SameMinorVersion ARCH_INDEPENDENT)
install(FILES ${CMAKE_SOURCE_DIR}/cmake/epghost-plugin-config.cmake
    ${CMAKE_BINARY_DIR}/epghost-plugin-config-version.cmake
    DESTINATION ${package} COMPONENT development)
