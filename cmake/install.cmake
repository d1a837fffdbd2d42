# What an installation holds, and the files by which other builds find it. Nothing in it tells where it lies: a folder
# that is moved goes on to work.

include(CMakePackageConfigHelpers)

set(talm_flow_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/TALM_Flow)

# One export a target, so that a program that wants one library needs not what another one is linked with.
function(talm_flow_install target)
  get_target_property(name ${target} EXPORT_NAME)
  install(TARGETS ${target} EXPORT TALM_Flow-${name}
          RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
          INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(EXPORT TALM_Flow-${name} NAMESPACE TALM_Flow:: DESTINATION ${talm_flow_package_folder}
          FILE TALM_Flow-${name}.cmake COMPONENT development)
endfunction()
foreach(target talm_flow_static talm_flow_shared talm_flow_loader)
  if(TARGET ${target})
    talm_flow_install(${target})
  endif()
endforeach()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/talm_flow DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
        FILES_MATCHING PATTERN *.h)

# For find_package. Before version 1 another MINOR may mean other headers.
set(compatibility SameMajorVersion)
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(compatibility SameMinorVersion)
endif()
set(talm_flow_adapters)
foreach(adapter SQLITE POSTGRESQL ODBC)
  if(talm_flow_has_${adapter})
    string(TOLOWER ${adapter} adapter)
    list(APPEND talm_flow_adapters ${adapter})
  endif()
endforeach()
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TALM_FlowConfig.cmake.in TALM_FlowConfig.cmake
                              INSTALL_DESTINATION ${talm_flow_package_folder}
                              PATH_VARS CMAKE_INSTALL_BINDIR NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(TALM_FlowConfigVersion.cmake COMPATIBILITY ${compatibility})
install(FILES ${PROJECT_BINARY_DIR}/TALM_FlowConfig.cmake ${PROJECT_BINARY_DIR}/TALM_FlowConfigVersion.cmake
        DESTINATION ${talm_flow_package_folder} COMPONENT development)

# For pkg-config. The drivers are what a static library leaves open; those who link the shared one need none of them.
set(talm_flow_driver_libraries)
foreach(driver sqlite:sqlite3 postgresql:pq odbc:odbc)
  string(REPLACE ":" ";" driver ${driver})
  list(GET driver 0 adapter)
  list(GET driver 1 library)
  if(adapter IN_LIST talm_flow_adapters)
    string(APPEND talm_flow_driver_libraries " -l${library}")
  endif()
endforeach()
function(talm_flow_relative variable folder)
  if(IS_ABSOLUTE ${folder})
    set(${variable} ${folder} PARENT_SCOPE)
  else()
    set(${variable} \${prefix}/${folder} PARENT_SCOPE)
  endif()
endfunction()
talm_flow_relative(talm_flow_libdir ${CMAKE_INSTALL_LIBDIR})
talm_flow_relative(talm_flow_includedir ${CMAKE_INSTALL_INCLUDEDIR})
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(talm_flow_prefix ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH talm_flow_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" talm_flow_prefix "\${pcfiledir}/${talm_flow_prefix}")
endif()
set(talm_flow_descriptions)
if(NOT WIN32)
  list(APPEND talm_flow_descriptions talm_flow.pc)
endif()
if(TARGET talm_flow_loader)
  list(APPEND talm_flow_descriptions talm_flow_loader.pc)
endif()
foreach(description ${talm_flow_descriptions})
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${description}.in ${description} @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${description} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

# The program, and what it tells of itself: its manual page and the words that shells complete. Where what is built
# cannot run here, or counts its runs, the two are left out.
if(TARGET talmflow)
  install(TARGETS talmflow RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
  if(BUILD_SHARED_LIBS AND NOT IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
    file(RELATIVE_PATH to_libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(talmflow PROPERTIES INSTALL_RPATH "\$ORIGIN/${to_libraries}")
  endif()
endif()
if(TARGET talmflow AND NOT TALM_FLOW_COVERAGE AND (NOT CMAKE_CROSSCOMPILING OR CMAKE_CROSSCOMPILING_EMULATOR))
  set(told ${PROJECT_BINARY_DIR}/told)
  add_custom_command(OUTPUT ${told}/talmflow.1 ${told}/talmflow.bash
                     COMMAND ${CMAKE_COMMAND} -E make_directory ${told}
                     COMMAND talmflow manual > ${told}/talmflow.1
                     COMMAND talmflow completion bash > ${told}/talmflow.bash
                     DEPENDS talmflow VERBATIM COMMENT "Writing the manual page and the shell completion")
  add_custom_target(talmflow_told ALL DEPENDS ${told}/talmflow.1 ${told}/talmflow.bash)
  install(FILES ${told}/talmflow.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
  install(FILES ${told}/talmflow.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME talmflow
          COMPONENT program)
endif()

install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/ARCHITECTURE.md
              ${PROJECT_SOURCE_DIR}/CONTRIBUTING.md ${PROJECT_SOURCE_DIR}/SECURITY.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development
        FILES_MATCHING PATTERN *.md PATTERN *.svg)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development
        PATTERN __pycache__ EXCLUDE)
