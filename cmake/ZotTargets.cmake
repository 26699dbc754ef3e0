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
  # Compile features know no Objective-C++.
  $<$<COMPILE_LANGUAGE:OBJCXX>:-std=gnu++20>)

# All sources are compiled once, position independent; the shared library and
# the static one that the tests link are made of the same objects.
add_library(zot_objects OBJECT)
target_link_libraries(zot_objects PRIVATE zot_build)
target_link_libraries(zot_objects PUBLIC Threads::Threads ${CMAKE_DL_LIBS})
target_include_directories(zot_objects PUBLIC "${PROJECT_SOURCE_DIR}")
# GCC's hidden visibility would also hide the Objective-C class symbols, so the
# version script alone trims the .mm files.
set_target_properties(zot_objects PROPERTIES
  POSITION_INDEPENDENT_CODE ON
  CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON)

if(ZOT_OBJECTS)
  target_link_libraries(zot_objects PUBLIC GNUstep::Base)
endif()

set(ZOT_VERSION_SCRIPT "${PROJECT_SOURCE_DIR}/cmake/zotmacguiutils.map")
add_library(zotmacguiutils SHARED)
target_link_libraries(zotmacguiutils PRIVATE zot_objects)
target_link_options(zotmacguiutils PRIVATE "LINKER:--version-script=${ZOT_VERSION_SCRIPT}" "LINKER:-z,defs")
set_target_properties(zotmacguiutils PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINK_DEPENDS "${ZOT_VERSION_SCRIPT}")
target_include_directories(zotmacguiutils INTERFACE
  "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
  "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/zotmacguiutils>")
target_compile_features(zotmacguiutils INTERFACE cxx_std_17)  # the public headers
add_library(zotmacguiutils::zotmacguiutils ALIAS zotmacguiutils)

# For the tests, which also reach what is not exported.
add_library(zotmacguiutils_static STATIC EXCLUDE_FROM_ALL)
target_link_libraries(zotmacguiutils_static PUBLIC zot_objects)

# Sanitizers refuse -z,defs: their run-time is linked into the program only.
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  set_property(TARGET zotmacguiutils PROPERTY LINK_OPTIONS "LINKER:--version-script=${ZOT_VERSION_SCRIPT}")
endif()

# zot_room(SOURCES file... C_HEADERS file... CXX_HEADERS file... OBJC_HEADERS file...)
#
# Adds a room's files to the library.  The header lists name its public headers
# by the plainest language that can read them: C11, C++17 or Objective-C.
# Private headers are named nowhere.
function(zot_room)
  cmake_parse_arguments(PARSE_ARGV 0 room "" "" "SOURCES;C_HEADERS;CXX_HEADERS;OBJC_HEADERS")
  cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY "${PROJECT_SOURCE_DIR}" OUTPUT_VARIABLE name)
  target_sources(zot_objects PRIVATE ${room_SOURCES})
  foreach(kind IN ITEMS C CXX OBJC)
    list(TRANSFORM room_${kind}_HEADERS PREPEND "${name}/")
    set_property(GLOBAL APPEND PROPERTY ZOT_${kind}_HEADERS ${room_${kind}_HEADERS})
  endforeach()
endfunction()
