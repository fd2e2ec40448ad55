# CPack runs this on the installed files before it packs them: adds what the packages of a distribution have and a plain
# installation does not have.
set(root ${CPACK_TEMPORARY_DIRECTORY})
find_program(GZIP gzip REQUIRED)

# place(FILE DESTINATION NAME RIGHTS...): copies the file into the package, with more rights than everybody's to read.
function(place file destination name)
  file(MAKE_DIRECTORY ${root}/${destination})
  file(COPY_FILE ${file} ${root}/${destination}/${name})
  file(CHMOD ${root}/${destination}/${name} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ ${ARGN})
endfunction()

file(GLOB_RECURSE compressed ${root}/usr/share/man/*.[1-9])
set(doc ${root}/usr/share/doc/glyphward)
if(CPACK_GENERATOR STREQUAL RPM)
  # The licence has a place of its own there, and the changes are in the package itself.
  file(REMOVE ${doc}/copyright ${doc}/changelog)
  place(${CPACK_GLYPHWARD_PACKAGING}/../LICENSE usr/share/licenses/glyphward LICENSE)
  place(${CPACK_GLYPHWARD_PACKAGING}/../CHANGELOG.md usr/share/doc/glyphward CHANGELOG.md)
  if(EXISTS ${root}/usr/share/zsh/vendor-completions)
    file(RENAME ${root}/usr/share/zsh/vendor-completions ${root}/usr/share/zsh/site-functions)
  endif()
else()
  list(APPEND compressed ${doc}/changelog)
  place(${CPACK_GLYPHWARD_PACKAGING}/debian/lintian-overrides usr/share/lintian/overrides glyphward)
endif()
foreach(file ${compressed})
  execute_process(COMMAND ${GZIP} -9n ${file} COMMAND_ERROR_IS_FATAL ANY)
endforeach()

# The places of system configuration files are fixed. Starting sessions of the other family source only what may be
# executed.
set(files ${CPACK_GLYPHWARD_SESSION_FILES})
while(files)
  list(POP_FRONT files name destination)
  if(CPACK_GENERATOR STREQUAL RPM AND destination STREQUAL etc/X11/Xsession.d)
    place(${root}/usr/vantor/share/session/${name} etc/X11/xinit/xinitrc.d ${name}.sh
      OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)
  else()
    place(${root}/usr/vantor/share/session/${name} ${destination} ${name})
  endif()
endwhile()
