# Installed: the libraries, the public headers under their rooms' names, the CMake
# package and the pkg-config files.

include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/zotmacguiutils")

# As zotmacguiutils::NAME.
function(zot_install name target)
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  install(TARGETS ${target} EXPORT zotmacguiutils ${ARGN})
endfunction()

zot_install(core_static zotmacguiutils_core_archive)
zot_install(static zotmacguiutils_static)
if(ZOT_OBJECTS)
  zot_install(objects_static zotmacguiutils_archive)
endif()
if(ZOT_SHARED)
  zot_install(core zotmacguiutils_core)
  if(ZOT_OBJECTS)
    zot_install(zotmacguiutils zotmacguiutils LIBRARY NAMELINK_SKIP)
  endif()
  install(FILES "${ZOT_LINK_SCRIPT}" DESTINATION "${CMAKE_INSTALL_LIBDIR}")
endif()

install(FILES zotmacguiutils.h "${PROJECT_BINARY_DIR}/include/zotmacguiutils_version.h"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zotmacguiutils")
foreach(kind IN ITEMS C CXX OBJC)
  get_property(headers GLOBAL PROPERTY ZOT_${kind}_HEADERS)
  foreach(header IN LISTS headers)
    cmake_path(GET header PARENT_PATH room)
    install(FILES ${header} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zotmacguiutils/${room}")
  endforeach()
endforeach()

install(EXPORT zotmacguiutils NAMESPACE zotmacguiutils:: DESTINATION ${package_dir}
  FILE zotmacguiutilsTargets.cmake)
configure_package_config_file(cmake/zotmacguiutilsConfig.cmake.in zotmacguiutilsConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(zotmacguiutilsConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/zotmacguiutilsConfig.cmake"
  "${PROJECT_BINARY_DIR}/zotmacguiutilsConfigVersion.cmake" cmake/FindGNUstep.cmake DESTINATION ${package_dir})

set(pc_dir "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH pc_to_prefix "${pc_dir}" "${CMAKE_INSTALL_PREFIX}")
file(RELATIVE_PATH pc_to_include "${pc_dir}" "${CMAKE_INSTALL_FULL_INCLUDEDIR}/zotmacguiutils")
# A client that is offered archives alone has no use for the word private.
set(pc_core_libs "-lzotmacguiutils-core")
set(pc_core_private "-lstdc++ -lm -ldl -pthread")
set(pc_objects_libs "")
set(pc_objects_private "")
if(ZOT_OBJECTS)
  set(pc_objects_libs "-lzotmacguiutils")
  cmake_path(GET GNUstep_OBJC_LIBRARY PARENT_PATH objc_dir)
  set(pc_objects_private "-lgnustep-base -L${objc_dir} -lobjc")
endif()
if(NOT ZOT_SHARED)
  string(APPEND pc_core_libs " ${pc_core_private}")
  if(ZOT_OBJECTS)
    set(pc_objects_libs "-Wl,--whole-archive,-lzotmacguiutils,--no-whole-archive ${pc_objects_private}")
  endif()
endif()
foreach(package IN ITEMS zotmacguiutils zotmacguiutils-core)
  configure_file(cmake/${package}.pc.in ${package}.pc @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${package}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endforeach()

if(PROJECT_IS_TOP_LEVEL)
  add_custom_target(uninstall
    COMMAND "${CMAKE_COMMAND}" -D "MANIFEST=${PROJECT_BINARY_DIR}/install_manifest.txt"
      -P "${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake"
    VERBATIM)
endif()
