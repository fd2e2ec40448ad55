# One interface target carries the warnings of all our targets. They are errors in the presets, which the tests use. A
# plain build, as for a package, does not fail when a newer compiler has new warnings.
option(GLYPHWARD_WERROR "Treat warnings as errors" OFF)

add_library(glyphward_warnings INTERFACE)
target_compile_options(glyphward_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual
  $<$<CXX_COMPILER_ID:GNU>:-Wuseless-cast>
  $<$<BOOL:${GLYPHWARD_WERROR}>:-Werror>)
# When it optimises, g++ 12 takes "text" + std::string(...) for an overlapping copy (its bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(glyphward_warnings INTERFACE -Wno-restrict)
endif()
