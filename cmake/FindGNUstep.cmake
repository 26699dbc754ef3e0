# Foundation and AppKit of GNUstep as imported targets: GNUstep::Base, GNUstep::Gui.

find_path(GNUstep_INCLUDE_DIR Foundation/Foundation.h PATH_SUFFIXES GNUstep)
find_library(GNUstep_BASE_LIBRARY gnustep-base)
find_library(GNUstep_GUI_LIBRARY gnustep-gui)

# The run-time library and its headers stand beside GCC's own files, of which every
# compiler knows its version's; Clang may look at a newer version that has none.
if(NOT GNUstep_OBJC_LIBRARY)
  foreach(compiler IN ITEMS "${CMAKE_OBJCXX_COMPILER}" "${CMAKE_OBJC_COMPILER}" "${CMAKE_CXX_COMPILER}"
      "${CMAKE_C_COMPILER}" gcc)
    if(compiler)
      execute_process(COMMAND "${compiler}" -print-file-name=libobjc.so
        OUTPUT_VARIABLE library OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
      if(IS_ABSOLUTE "${library}")
        cmake_path(NORMAL_PATH library)
        set(GNUstep_OBJC_LIBRARY "${library}" CACHE FILEPATH "GCC's Objective-C run-time")
        break()
      endif()
    endif()
  endforeach()
  file(GLOB libraries "/usr/lib/gcc/${CMAKE_LIBRARY_ARCHITECTURE}/*/libobjc.so")
  if(NOT GNUstep_OBJC_LIBRARY AND libraries AND NOT CMAKE_CROSSCOMPILING)
    list(SORT libraries COMPARE NATURAL ORDER DESCENDING)
    list(GET libraries 0 library)
    set(GNUstep_OBJC_LIBRARY "${library}" CACHE FILEPATH "GCC's Objective-C run-time")
  endif()
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(GNUstep
  REQUIRED_VARS GNUstep_BASE_LIBRARY GNUstep_INCLUDE_DIR GNUstep_OBJC_LIBRARY)

if(GNUstep_FOUND AND NOT TARGET GNUstep::Base)
  set(objc_only "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:")
  add_library(GNUstep::Base UNKNOWN IMPORTED GLOBAL)
  set_target_properties(GNUstep::Base PROPERTIES
    IMPORTED_LOCATION "${GNUstep_BASE_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${GNUstep_INCLUDE_DIR}"
    INTERFACE_COMPILE_DEFINITIONS
      "${objc_only}GNUSTEP;GNUSTEP_BASE_LIBRARY=1;GNU_RUNTIME=1;_NATIVE_OBJC_EXCEPTIONS>"
    INTERFACE_COMPILE_OPTIONS
      "${objc_only}-fobjc-exceptions;-fexceptions;-fno-strict-aliasing;-fconstant-string-class=NSConstantString>"
    INTERFACE_LINK_LIBRARIES "${GNUstep_OBJC_LIBRARY}")
  # Clang doesn't know where GCC keeps objc/objc.h.  That folder comes behind all others,
  # or GCC's own stddef.h would stand before Clang's.
  cmake_path(GET GNUstep_OBJC_LIBRARY PARENT_PATH gcc_dir)
  if(EXISTS "${gcc_dir}/include/objc/objc.h")
    set_property(TARGET GNUstep::Base APPEND PROPERTY INTERFACE_COMPILE_OPTIONS
      "${objc_only}SHELL:-idirafter \"${gcc_dir}/include\">")
  endif()
  if(GNUstep_GUI_LIBRARY)
    add_library(GNUstep::Gui UNKNOWN IMPORTED GLOBAL)
    set_target_properties(GNUstep::Gui PROPERTIES
      IMPORTED_LOCATION "${GNUstep_GUI_LIBRARY}"
      INTERFACE_COMPILE_DEFINITIONS "${objc_only}GNU_GUI_LIBRARY=1>"
      INTERFACE_LINK_LIBRARIES GNUstep::Base)
  endif()
endif()

# CMake 3.25 has no run path flag for Objective-C, and so writes none into what it links
# in these languages.  A build reads it where its targets are made, which may be above.
if(GNUstep_FOUND)
  foreach(kind IN ITEMS SHARED_LIBRARY EXECUTABLE)
    foreach(language IN ITEMS OBJC OBJCXX)
      if(NOT CMAKE_${kind}_RUNTIME_${language}_FLAG AND CMAKE_${kind}_RUNTIME_C_FLAG)
        set(CMAKE_${kind}_RUNTIME_${language}_FLAG "${CMAKE_${kind}_RUNTIME_C_FLAG}"
          CACHE INTERNAL "as for C")
        set(CMAKE_${kind}_RUNTIME_${language}_FLAG_SEP "${CMAKE_${kind}_RUNTIME_C_FLAG_SEP}"
          CACHE INTERNAL "as for C")
      endif()
    endforeach()
  endforeach()
endif()
