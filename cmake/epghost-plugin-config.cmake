# The declarations that a plug-in is built against. What they declare is there in the process that loads the
# plug-in; nothing is linked.
include(CMakeFindDependencyMacro)
find_dependency(SQLite3)
find_dependency(Boost 1.74)

include(${CMAKE_CURRENT_LIST_DIR}/epghost-plugin-targets.cmake)
target_include_directories(epghost::plugin INTERFACE ${SQLite3_INCLUDE_DIRS} ${Boost_INCLUDE_DIRS})
