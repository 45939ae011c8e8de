# What Debian wants otherwise than a plain installation has it. CPack runs this on the installed files.
set(usr ${CPACK_TEMPORARY_DIRECTORY}/usr)
set(share ${usr}/share)
set(doc ${share}/doc/nubble)

# Without the file's name and time, so that the same input gives the same package.
function(compress from to)
    execute_process(COMMAND gzip -9n INPUT_FILE ${from} OUTPUT_FILE ${to} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(MAKE_DIRECTORY ${doc} ${share}/zsh/vendor-completions ${share}/lintian/overrides)
file(RENAME ${share}/zsh/site-functions/_nubble ${share}/zsh/vendor-completions/_nubble)
file(REMOVE_RECURSE ${share}/zsh/site-functions)
compress(${share}/man/man1/nubble.1 ${share}/man/man1/nubble.1.gz)
file(REMOVE ${share}/man/man1/nubble.1)
compress(${CMAKE_CURRENT_LIST_DIR}/changelog ${doc}/changelog.Debian.gz)
compress(${CMAKE_CURRENT_LIST_DIR}/../../CHANGELOG.md ${doc}/changelog.gz)
file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/copyright ${doc}/copyright)
file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/lintian-overrides ${share}/lintian/overrides/nubble)

# Whatever the umask was.
set(for_all OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
set(enter OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)
file(CHMOD ${usr} ${usr}/bin ${usr}/libexec ${usr}/libexec/nubble PERMISSIONS ${for_all} ${enter})
file(CHMOD_RECURSE ${share} FILE_PERMISSIONS ${for_all} DIRECTORY_PERMISSIONS ${for_all} ${enter})
