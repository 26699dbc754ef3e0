# Removes what the last installation from this build folder wrote: the target uninstall.
# Folders stay, since other software may use them.

if(NOT EXISTS "${MANIFEST}")
  message(FATAL_ERROR "Nothing was installed from here: there is no ${MANIFEST}")
endif()
file(STRINGS "${MANIFEST}" installed)
foreach(file IN LISTS installed)
  set(file "$ENV{DESTDIR}${file}")
  if(EXISTS "${file}" OR IS_SYMLINK "${file}")
    message(STATUS "Removing ${file}")
    file(REMOVE "${file}")
  endif()
endforeach()
