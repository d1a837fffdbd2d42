# Runs before CPack makes Debian packages of what it has installed for them: adds the copyright and the changes, compresses
# what readers uncompress by themselves, takes out of the static library what only debuggers want, and finds out which
# packages the programs and libraries need.

if(NOT CPACK_GENERATOR STREQUAL DEB)
  return()
endif()

# CPack would put a summary of the project before descriptions that begin with their own.
set(CPACK_DEFAULT_PACKAGE_DESCRIPTION_SUMMARY ${CPACK_PACKAGE_DESCRIPTION_SUMMARY})

if(DEFINED ENV{SOURCE_DATE_EPOCH})
  set(moment $ENV{SOURCE_DATE_EPOCH})
else()
  string(TIMESTAMP moment %s UTC)
endif()
execute_process(COMMAND date --utc --rfc-email --date=@${moment} OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

function(compress file)
  execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# CPack could find these out too, but adds scripts then that renew the cache of libraries, which a trigger does already.
function(find_dependencies variable root)
  file(GLOB libraries ${root}/lib/*.so.*.*.* ${root}/lib/*/*.so.*.*.*)
  file(GLOB programs ${root}/bin/*)
  if(libraries OR programs)
    set(folder ${CPACK_TEMPORARY_DIRECTORY}/dependencies)
    file(WRITE ${folder}/debian/control "Source: talm-flow\n\nPackage: talm-flow\nArchitecture: any\n")
    # A program may be linked with the shared library, which is in another one of these packages.
    configure_file(${CPACK_TALM_FLOW_SHLIBS} ${folder}/debian/shlibs.local COPYONLY)
    set(usr ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/library/usr)
    file(GLOB own ${usr}/lib/*.so.* ${usr}/lib/*/*.so.*)
    list(TRANSFORM own REPLACE "/[^/]*$" "")
    list(REMOVE_DUPLICATES own)
    list(TRANSFORM own PREPEND -l)
    execute_process(COMMAND dpkg-shlibdeps -O ${own} ${libraries} ${programs} WORKING_DIRECTORY ${folder}
                    OUTPUT_VARIABLE found COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX REPLACE "^shlibs:Depends=|\n" "" found "${found}")
    set(${variable} ${found} PARENT_SCOPE)
  endif()
endfunction()

# A package's own documents are in a folder of its name.
foreach(component ${CPACK_COMPONENTS_ALL})
  set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(documents ${root}/share/doc/${package})
  if(EXISTS ${root}/share/doc/TALM_Flow)
    file(RENAME ${root}/share/doc/TALM_Flow ${documents})
    file(REMOVE ${documents}/CHANGELOG.md)
  endif()
  file(WRITE ${documents}/copyright
       "TALM_Flow, an embeddable workflow component.\n\nCopyright (C) 2026 the TALM_Flow authors. All rights reserved.\n\n"
       "No licence has been granted yet: nobody but the authors may copy, change or\ndistribute this software.\n")
  file(COPY ${CPACK_TALM_FLOW_CHANGELOG} DESTINATION ${documents})
  file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
  compress(${documents}/changelog)
  file(WRITE ${documents}/changelog.Debian
       "talm-flow (${version}) UNRELEASED; urgency=medium\n\n  * Packages made from the sources, by their own build.\n\n"
       " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
  compress(${documents}/changelog.Debian)
  # Everybody may read, whatever mask this runs under.
  file(CHMOD ${documents}/copyright ${documents}/changelog.gz ${documents}/changelog.Debian.gz
       PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  file(GLOB_RECURSE entries LIST_DIRECTORIES true ${root}/*)
  foreach(entry ${root} ${entries})
    if(IS_DIRECTORY ${entry})
      file(CHMOD ${entry} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                      WORLD_EXECUTE)
    endif()
  endforeach()
  find_dependencies(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS ${root})
  file(GLOB pages ${root}/share/man/man1/*.1)
  foreach(page ${pages})
    compress(${page})
  endforeach()
  file(GLOB_RECURSE archives ${root}/lib/*.a)
  foreach(archive ${archives})
    execute_process(COMMAND strip --strip-debug --remove-section=.comment --remove-section=.note
                            --enable-deterministic-archives ${archive} COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
endforeach()
