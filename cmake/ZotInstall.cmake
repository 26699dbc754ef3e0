# Installed: the shared library, the public headers under their rooms' names,
# the CMake package and the pkg-config file.

include(CMakePackageConfigHelpers)

install(TARGETS zotmacguiutils EXPORT zotmacguiutils)
install(FILES zotmacguiutils.h DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zotmacguiutils")
foreach(kind IN ITEMS C CXX OBJC)
  get_property(headers GLOBAL PROPERTY ZOT_${kind}_HEADERS)
  foreach(header IN LISTS headers)
    cmake_path(GET header PARENT_PATH room)
    install(FILES ${header} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zotmacguiutils/${room}")
  endforeach()
endforeach()

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/zotmacguiutils")
install(EXPORT zotmacguiutils NAMESPACE zotmacguiutils:: DESTINATION ${package_dir}
  FILE zotmacguiutilsTargets.cmake)
configure_package_config_file(cmake/zotmacguiutilsConfig.cmake.in zotmacguiutilsConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(zotmacguiutilsConfigVersion.cmake COMPATIBILITY SameMajorVersion)
set(pc_dir "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH pc_to_prefix "${pc_dir}" "${CMAKE_INSTALL_PREFIX}")
file(RELATIVE_PATH pc_to_include "${pc_dir}" "${CMAKE_INSTALL_FULL_INCLUDEDIR}/zotmacguiutils")
configure_file(cmake/zotmacguiutils.pc.in zotmacguiutils.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/zotmacguiutilsConfig.cmake"
  "${PROJECT_BINARY_DIR}/zotmacguiutilsConfigVersion.cmake" DESTINATION ${package_dir})
install(FILES "${PROJECT_BINARY_DIR}/zotmacguiutils.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
