# Installs a build to an empty folder and looks at the headers that arrive there:
# the public ones and no other.
#
#   BUILD    the build's folder
#   STAGE    where to install to
#   HEADERS  the public headers

file(REMOVE_RECURSE "${STAGE}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${STAGE}" COMMAND_ERROR_IS_FATAL ANY)

file(GLOB_RECURSE installed RELATIVE "${STAGE}/include/zotmacguiutils" "${STAGE}/include/*")
list(SORT installed)
list(SORT HEADERS)
if(NOT installed STREQUAL HEADERS)
  message(FATAL_ERROR "installed headers: ${installed}\npublic headers: ${HEADERS}")
endif()
