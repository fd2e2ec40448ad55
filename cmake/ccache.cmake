# Where ccache is installed, it keeps what was compiled before. These options tell it to compare precompiled headers by
# what they were made from, and tell Clang not to write the time into them.
option(GLYPHWARD_CCACHE "Compile through ccache if it is there" OFF)

find_program(CCACHE ccache)
mark_as_advanced(CCACHE)
if(GLYPHWARD_CCACHE AND CCACHE)
  set(sloppiness pch_defines,time_macros,include_file_mtime,include_file_ctime)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=${sloppiness} ${CCACHE})
  add_compile_options("$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
endif()
