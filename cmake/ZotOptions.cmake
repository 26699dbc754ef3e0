# What is built.  A project that embeds this one gets the libraries and nothing else.

option(ZOT_TOOLS "Build the command-line programs in tools/ where their packages are found" ${PROJECT_IS_TOP_LEVEL})
option(ZOT_DEMO "Build the front end with a window in demo/" ${PROJECT_IS_TOP_LEVEL})
option(ZOT_BENCH "Build the benchmarks in bench/" OFF)
option(ZOT_FUZZ "Build the fuzz targets in fuzz/ (needs Clang)" OFF)
option(ZOT_EXAMPLES "Build the programs in examples/" ${PROJECT_IS_TOP_LEVEL})
option(ZOT_INSTALL "Install the libraries and what is built on them" ${PROJECT_IS_TOP_LEVEL})
option(BUILD_TESTING "Build the tests" ${PROJECT_IS_TOP_LEVEL})

# Shared unless somebody, perhaps the embedding project, says otherwise.
set(ZOT_SHARED ON)
if(DEFINED BUILD_SHARED_LIBS AND NOT BUILD_SHARED_LIBS)
  set(ZOT_SHARED OFF)
endif()

set(ZOT_SANITIZED OFF)
if("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${CMAKE_BUILD_TYPE}} ${CMAKE_SHARED_LINKER_FLAGS}" MATCHES "-fsanitize")
  set(ZOT_SANITIZED ON)
endif()

# The object classes are built where Objective-C++ and GNUstep are there.
if(DEFINED ZOT_OBJECTS AND NOT ZOT_OBJECTS)
  return()
endif()
include(CheckLanguage)
check_language(OBJC)
check_language(OBJCXX)
set(possible OFF)
if(CMAKE_OBJC_COMPILER AND CMAKE_OBJCXX_COMPILER)
  find_package(GNUstep QUIET)
  if(GNUstep_FOUND AND EXISTS "${GNUstep_INCLUDE_DIR}/AppKit/NSView.h")  # for ZOTMultiLang's sources
    set(possible ON)
  endif()
endif()
option(ZOT_OBJECTS "Build ZOTMifBuffer and ZOTMultiLang" ${possible})
if(ZOT_OBJECTS AND NOT possible)
  message(FATAL_ERROR "The object classes need an Objective-C++ compiler and GNUstep's headers and library. "
    "Install the packages gobjc++, libgnustep-base-dev and libgnustep-gui-dev, or leave the classes out with -DZOT_OBJECTS=OFF. "
    "(Objective-C: ${CMAKE_OBJC_COMPILER}, Objective-C++: ${CMAKE_OBJCXX_COMPILER}, "
    "Foundation: ${GNUstep_INCLUDE_DIR}, ${GNUstep_BASE_LIBRARY}, run-time: ${GNUstep_OBJC_LIBRARY})")
endif()
