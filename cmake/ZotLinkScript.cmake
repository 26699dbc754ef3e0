# -lzotmacguiutils alone gives a program every documented name, though a linker does not
# look into the libraries that a library needs: the development file libzotmacguiutils.so
# is a linker script that names both.  A filter library would need a second symbol table
# of the plain rooms; the script serves GNU ld, gold and lld.  Linkers look beside the
# script first, so a tree may move.

if(ZOT_SHARED)
  set(script "/* GNU ld script: the object classes and the plain rooms below them */\nINPUT(")
  if(ZOT_OBJECTS)
    string(APPEND script " libzotmacguiutils.so.${PROJECT_VERSION_MAJOR}")
  endif()
  string(APPEND script " libzotmacguiutils-core.so.${PROJECT_VERSION_MAJOR} )\n")
  set(ZOT_LINK_SCRIPT "${PROJECT_BINARY_DIR}/link/libzotmacguiutils.so")
  file(CONFIGURE OUTPUT "${ZOT_LINK_SCRIPT}" CONTENT "${script}" @ONLY)

  # The build's own folder serves -lzotmacguiutils as the installed one does.
  if(ZOT_OBJECTS)
    set(link "$<TARGET_FILE_DIR:zotmacguiutils_core>/libzotmacguiutils.so")
    add_custom_command(OUTPUT "${ZOT_LINK_SCRIPT}.stamp"
      COMMAND "${CMAKE_COMMAND}" -E rm -f "${link}"
      COMMAND "${CMAKE_COMMAND}" -E copy "${ZOT_LINK_SCRIPT}" "${link}"
      COMMAND "${CMAKE_COMMAND}" -E touch "${ZOT_LINK_SCRIPT}.stamp"
      DEPENDS zotmacguiutils "${ZOT_LINK_SCRIPT}" VERBATIM)
    add_custom_target(zotmacguiutils_link ALL DEPENDS "${ZOT_LINK_SCRIPT}.stamp")
  else()
    file(GENERATE OUTPUT "$<TARGET_FILE_DIR:zotmacguiutils_core>/libzotmacguiutils.so" INPUT "${ZOT_LINK_SCRIPT}")
  endif()
endif()
