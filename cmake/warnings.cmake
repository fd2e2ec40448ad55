# One interface target carries the warnings of every target of ours; all of them are errors.
add_library(glyphward_warnings INTERFACE)
target_compile_options(glyphward_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wuseless-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
# Optimising, g++ 12 takes "text" + std::string(...) for an overlapping copy (its bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(glyphward_warnings INTERFACE -Wno-restrict)
endif()
