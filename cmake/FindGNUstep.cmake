# Foundation and AppKit of GNUstep as imported targets: GNUstep::Base, GNUstep::Gui.

find_path(GNUstep_INCLUDE_DIR Foundation/Foundation.h PATH_SUFFIXES GNUstep)
find_library(GNUstep_BASE_LIBRARY gnustep-base)
find_library(GNUstep_GUI_LIBRARY gnustep-gui)
# The run-time library stands beside the compiler's own files.
execute_process(COMMAND ${CMAKE_OBJCXX_COMPILER} -print-file-name=libobjc.so
  OUTPUT_VARIABLE GNUstep_OBJC_LIBRARY OUTPUT_STRIP_TRAILING_WHITESPACE)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(GNUstep
  REQUIRED_VARS GNUstep_BASE_LIBRARY GNUstep_INCLUDE_DIR GNUstep_OBJC_LIBRARY)

if(GNUstep_FOUND AND NOT TARGET GNUstep::Base)
  set(objc_only "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:")
  add_library(GNUstep::Base UNKNOWN IMPORTED)
  set_target_properties(GNUstep::Base PROPERTIES
    IMPORTED_LOCATION "${GNUstep_BASE_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${GNUstep_INCLUDE_DIR}"
    INTERFACE_COMPILE_DEFINITIONS
      "${objc_only}GNUSTEP;GNUSTEP_BASE_LIBRARY=1;GNU_RUNTIME=1;_NATIVE_OBJC_EXCEPTIONS>"
    INTERFACE_COMPILE_OPTIONS
      "${objc_only}-fobjc-exceptions;-fexceptions;-fno-strict-aliasing;-fconstant-string-class=NSConstantString>"
    INTERFACE_LINK_LIBRARIES "${GNUstep_OBJC_LIBRARY}")
  if(GNUstep_GUI_LIBRARY)
    add_library(GNUstep::Gui UNKNOWN IMPORTED)
    set_target_properties(GNUstep::Gui PROPERTIES
      IMPORTED_LOCATION "${GNUstep_GUI_LIBRARY}"
      INTERFACE_COMPILE_DEFINITIONS "${objc_only}GNU_GUI_LIBRARY=1>"
      INTERFACE_LINK_LIBRARIES GNUstep::Base)
  endif()
endif()
