# Run by cpack: makes each package again from its contents, whose order dpkg-deb and this script decide by name, with no
# time in it later than SOURCE_DATE_EPOCH, where that is set.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    set(folder ${CPACK_TOPLEVEL_DIRECTORY}/sorted)
    file(REMOVE_RECURSE ${folder})
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
    file(STRINGS ${folder}/DEBIAN/md5sums sums)
    list(SORT sums)
    list(JOIN sums "\n" sums)
    file(WRITE ${folder}/DEBIAN/md5sums "${sums}\n")
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${folder} ${package} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${folder})
endforeach()
