# The library targets, and zot_room(), with which each room adds its files to them.

find_package(Threads REQUIRED)

if(ZOT_OBJECTS)
  enable_language(OBJC)
  enable_language(OBJCXX)
  find_package(GNUstep REQUIRED)
endif()

# What every target of this project is compiled with; consumers never see it.
add_library(zot_build INTERFACE)
target_compile_features(zot_build INTERFACE cxx_std_20 c_std_11)
# Files above 2 GiB on hosts whose long has 32 bits.
target_compile_definitions(zot_build INTERFACE _FILE_OFFSET_BITS=64)
target_compile_options(zot_build INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  # The sources need both, whatever an embedding project does without.
  $<$<COMPILE_LANGUAGE:CXX,OBJCXX>:-fexceptions> $<$<COMPILE_LANGUAGE:CXX,OBJCXX>:-frtti>
  # Compile features know no Objective-C++.
  $<$<COMPILE_LANGUAGE:OBJCXX>:-std=gnu++20>)

# zot_library(STEM NAME): the sources of one library as objects, compiled once and position
# independent; the shared library and the archive are made of the same objects.
#   STEM_objects  what the rooms add their sources to
#   STEM          the shared library NAME, with the exports that cmake/NAME.map lets through
#   STEM_archive  the static one
function(zot_library stem name)
  add_library(${stem}_objects OBJECT)
  target_link_libraries(${stem}_objects PRIVATE zot_build)
  target_include_directories(${stem}_objects PRIVATE "${PROJECT_SOURCE_DIR}")
  target_compile_definitions(${stem}_objects PRIVATE ZOT_LOG_LEVEL_TESTED)
  # Nobody replaces an exported function inside the library: calls between them may be
  # inlined and need no linkage table.
  target_compile_options(${stem}_objects PRIVATE -fno-semantic-interposition)
  # Calls of the system's libraries do without it too, but not everywhere: on 32-bit
  # PowerPC the library that GCC 12 makes so jumps to a wrong address.
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    target_compile_options(${stem}_objects PRIVATE -fno-plt)
  endif()
  # GCC's hidden visibility would also hide the Objective-C class symbols, so the
  # version script alone trims the .mm files.
  set_target_properties(${stem}_objects PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)

  add_library(${stem}_archive STATIC $<TARGET_OBJECTS:${stem}_objects>)
  set(libraries ${stem}_archive)
  if(ZOT_SHARED)
    set(version_script "${PROJECT_SOURCE_DIR}/cmake/${name}.map")
    add_library(${stem} SHARED $<TARGET_OBJECTS:${stem}_objects>)
    target_link_options(${stem} PRIVATE
      "LINKER:--version-script=${version_script}" "LINKER:-Bsymbolic-functions")
    # A thread that outlives the last dlclose() still ends in the library.
    target_link_options(${stem} PRIVATE "LINKER:-z,nodelete")
    # Sanitizers refuse -z,defs: their run-time is linked into the program only.  An
    # embedding project may have switched one on anywhere.
    if(PROJECT_IS_TOP_LEVEL AND NOT ZOT_SANITIZED)
      target_link_options(${stem} PRIVATE "LINKER:-z,defs")
    endif()
    set_target_properties(${stem} PROPERTIES
      VERSION ${PROJECT_VERSION}
      SOVERSION ${PROJECT_VERSION_MAJOR}
      INSTALL_RPATH "$ORIGIN"  # each finds the other outside the system's folders, too
      LINK_DEPENDS "${version_script}")
    list(APPEND libraries ${stem})
  endif()
  foreach(library IN LISTS libraries)
    set_target_properties(${library} PROPERTIES
      OUTPUT_NAME ${name}
      LINKER_LANGUAGE CXX)  # CMake's rules for Objective-C++ know neither soname nor run path
    target_include_directories(${library} INTERFACE
      "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>" "$<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>"
      "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/zotmacguiutils>")
    target_compile_features(${library} INTERFACE cxx_std_17)  # the public headers
  endforeach()
endfunction()

# The plain rooms, which need no Foundation.
zot_library(zotmacguiutils_core zotmacguiutils-core)
set(system_libraries Threads::Threads ${CMAKE_DL_LIBS})
target_link_libraries(zotmacguiutils_core_archive PUBLIC ${system_libraries})
add_library(zotmacguiutils::core_static ALIAS zotmacguiutils_core_archive)
add_library(zotmacguiutils_static INTERFACE)
target_link_libraries(zotmacguiutils_static INTERFACE zotmacguiutils_core_archive)
add_library(zotmacguiutils::static ALIAS zotmacguiutils_static)
if(ZOT_SHARED)
  target_link_libraries(zotmacguiutils_core PRIVATE ${system_libraries})
  add_library(zotmacguiutils::core ALIAS zotmacguiutils_core)
else()
  add_library(zotmacguiutils_core ALIAS zotmacguiutils_core_archive)
  add_library(zotmacguiutils::core ALIAS zotmacguiutils_core_archive)
endif()

# The two object classes on top of them.  Their library needs the plain one and has no
# copy of its objects, so that a process has their state once.
if(ZOT_OBJECTS)
  zot_library(zotmacguiutils zotmacguiutils)
  target_link_libraries(zotmacguiutils_objects PRIVATE GNUstep::Base)
  target_link_libraries(zotmacguiutils_archive PUBLIC zotmacguiutils_core_archive GNUstep::Base)
  # Nothing names a category, so a linker would leave it in the archive.
  add_library(zotmacguiutils::objects_static ALIAS zotmacguiutils_archive)
  target_link_libraries(zotmacguiutils_static INTERFACE "$<LINK_LIBRARY:WHOLE_ARCHIVE,zotmacguiutils::objects_static>")
  if(ZOT_SHARED)
    target_link_libraries(zotmacguiutils PUBLIC zotmacguiutils_core PRIVATE GNUstep::Base
      INTERFACE "$<TARGET_NAME_IF_EXISTS:GNUstep::Base>")
    add_library(zotmacguiutils::zotmacguiutils ALIAS zotmacguiutils)
  endif()
endif()

# Where there are no object classes, or no shared ones, the chief name means what there is.
if(NOT TARGET zotmacguiutils)
  if(ZOT_SHARED)
    set(chief zotmacguiutils_core)
  else()
    set(chief zotmacguiutils_static)
  endif()
  add_library(zotmacguiutils ALIAS ${chief})
  add_library(zotmacguiutils::zotmacguiutils ALIAS ${chief})
endif()

# zot_room(SOURCES file... C_HEADERS file... CXX_HEADERS file... OBJC_HEADERS file...)
#
# Adds a room's files to the libraries, Objective-C++ to that of the object classes.
# The header lists name its public headers by the plainest language that can read
# them: C11, C++17 or Objective-C.  Private headers are named nowhere.
function(zot_room)
  cmake_parse_arguments(PARSE_ARGV 0 room "" "" "SOURCES;C_HEADERS;CXX_HEADERS;OBJC_HEADERS")
  cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY "${PROJECT_SOURCE_DIR}" OUTPUT_VARIABLE name)
  set(object_sources "${room_SOURCES}")
  list(FILTER object_sources INCLUDE REGEX "\\.mm$")
  list(FILTER room_SOURCES EXCLUDE REGEX "\\.mm$")
  target_sources(zotmacguiutils_core_objects PRIVATE ${room_SOURCES})
  if(ZOT_OBJECTS)
    target_sources(zotmacguiutils_objects PRIVATE ${object_sources})
  endif()
  foreach(kind IN ITEMS C CXX OBJC)
    list(TRANSFORM room_${kind}_HEADERS PREPEND "${name}/")
    set_property(GLOBAL APPEND PROPERTY ZOT_${kind}_HEADERS ${room_${kind}_HEADERS})
  endforeach()
endfunction()
