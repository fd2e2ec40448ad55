# What was compiled before is not compiled again, where ccache is installed. It has to be told that a precompiled header is known by what
# it was made of, and Clang that it is not to put the time into one.
option(GLYPHWARD_CCACHE "Compile through ccache if it is there" OFF)

find_program(CCACHE ccache)
mark_as_advanced(CCACHE)
if(GLYPHWARD_CCACHE AND CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    ${CCACHE})
  add_compile_options("$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
endif()
