# CPack runs this on the installed files before it packs them: adds what Debian's packages have and a plain installation
# does not have.
set(root ${CPACK_TEMPORARY_DIRECTORY})
find_program(GZIP gzip REQUIRED)

# place(FILE DESTINATION NAME): copies the file into the package.
function(place file destination name)
  file(MAKE_DIRECTORY ${root}/${destination})
  file(COPY_FILE ${file} ${root}/${destination}/${name})
  file(CHMOD ${root}/${destination}/${name} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()

file(GLOB_RECURSE pages ${root}/usr/share/man/*.[1-9])
foreach(file ${pages} ${root}/usr/share/doc/glyphward/changelog)
  execute_process(COMMAND ${GZIP} -9n ${file} COMMAND_ERROR_IS_FATAL ANY)
endforeach()

place(${CPACK_GLYPHWARD_PACKAGING}/debian/lintian-overrides usr/share/lintian/overrides glyphward)

# The places of system configuration files are fixed.
set(files ${CPACK_GLYPHWARD_SESSION_FILES})
while(files)
  list(POP_FRONT files name destination)
  place(${root}/usr/vantor/share/session/${name} ${destination} ${name})
endwhile()
