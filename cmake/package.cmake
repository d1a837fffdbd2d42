# Debian packages, made by `make package`: the library, what is needed to build with it, and the program.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME talm-flow)
set(CPACK_PACKAGE_VENDOR "TALM_Flow")
set(CPACK_PACKAGE_CONTACT "TALM_Flow developers <talm-flow@example.invalid>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Documents that only packages have, and files in the form that packages want.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/package_files.cmake)
set(CPACK_TALM_FLOW_CHANGELOG ${PROJECT_SOURCE_DIR}/CHANGELOG.md)

set(CPACK_COMPONENTS_ALL library development program)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# No archive has given these packages a revision.
set(CPACK_DEBIAN_PACKAGE_RELEASE 0local1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# The first line of a description is its summary. What a package depends on is found out by package_files.cmake.
set(told "A workflow component for applications: flows are stored trees of
steps that a run walks, waiting in rows of the application's own
database.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libtalm-flow${talm_flow_soversion})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "embeddable workflow component - shared libraries
${told}

This is the library, which is an in-process component server too, and
the loader that finds it by the names of its classes.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtalm-flow-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
# Whoever links the static library needs the drivers.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "libsqlite3-dev, libpq-dev, unixodbc-dev, cmake, pkg-config")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "embeddable workflow component - development files
${told}

This is what programs are built with: headers, the static library,
files for CMake and pkg-config, documents and examples.")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME talmflow)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION database)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "embeddable workflow component - command-line program
${told}

This is the program that runs and keeps flows from the shell, and
answers JSON-RPC requests of programs in any language.")

# Who links the libraries depends on this package; the cache of the libraries' places is renewed by the package manager.
set(control ${PROJECT_BINARY_DIR}/package_control)
set(shlibs)
foreach(library libtalm_flow libtalm_flow_loader)
  string(APPEND shlibs "${library} ${talm_flow_soversion} ${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (>= ${PROJECT_VERSION})\n")
endforeach()
file(WRITE ${control}/shlibs "${shlibs}")
set(CPACK_TALM_FLOW_SHLIBS ${control}/shlibs)
file(WRITE ${control}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${control}/shlibs ${control}/triggers)

include(CPack)
