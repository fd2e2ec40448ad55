# One interface target carries the warnings of every target of ours; all of them are errors.
add_library(glyphward_warnings INTERFACE)
target_compile_options(glyphward_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wuseless-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
