# The installed form: the two shared libraries with their headers, the companion
# programs and data where the library finds them, a CMake package, a pkg-config
# file and, through CPack, a Debian package.
include(CMakePackageConfigHelpers)

set(KORVA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KORVAutlwin)
set(KORVA_COMPANION_DIR ${CMAKE_INSTALL_LIBEXECDIR}/KORVAutlwin)
set(KORVA_DATA_DIR ${CMAKE_INSTALL_DATADIR}/KORVAutlwin)

# Headers of users include these: Qt, Boost's archives and libgsf (art files),
# SQLite (the registry store's statements).
target_link_libraries(KORVAutl INTERFACE SQLite::SQLite3)
target_link_libraries(KORVAutlwin INTERFACE Qt6::Core Qt6::Gui Qt6::PrintSupport Qt6::WebEngineWidgets Boost::headers PkgConfig::GSF)

set_target_properties(KORVAutlwin PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS KORVAutl KORVAutlwin EXPORT KORVAutlwinTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/utl/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KORVAutl
        COMPONENT development FILES_MATCHING PATTERN "*.h")
foreach(folder IN LISTS KORVA_WIN_FOLDERS)
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/${folder}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KORVAutlwin/${folder}
          COMPONENT development FILES_MATCHING PATTERN "*.h")
endforeach()

# Programs find the libraries relative to themselves, so an installed tree works
# wherever it is put.
function(korva_install_program target destination)
  file(RELATIVE_PATH to_libdir ${CMAKE_INSTALL_PREFIX}/${destination} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libdir}")
  install(TARGETS ${target} RUNTIME DESTINATION ${destination} COMPONENT runtime)
endfunction()
korva_install_program(breakwin ${KORVA_COMPANION_DIR})
korva_install_program(artpack ${CMAKE_INSTALL_BINDIR})
korva_install_program(workbench ${CMAKE_INSTALL_BINDIR})
korva_install_program(syslogsend ${CMAKE_INSTALL_BINDIR})
korva_install_program(eventsource ${CMAKE_INSTALL_BINDIR})
korva_install_program(sampleservice ${CMAKE_INSTALL_BINDIR})
install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/Abstracts.tart DESTINATION ${KORVA_DATA_DIR} COMPONENT runtime)
# The workbench's help file, in the system help folder where the help search looks.
install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/Workbench.chm DESTINATION ${CMAKE_INSTALL_DATADIR}/Help COMPONENT runtime)

install(EXPORT KORVAutlwinTargets NAMESPACE KORVAutlwin:: DESTINATION ${KORVA_CMAKE_DIR} COMPONENT development)
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/KORVAutlwinConfig.cmake.in
                              ${CMAKE_BINARY_DIR}/KORVAutlwinConfig.cmake INSTALL_DESTINATION ${KORVA_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/KORVAutlwinConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/KORVAutlwinConfig.cmake ${CMAKE_BINARY_DIR}/KORVAutlwinConfigVersion.cmake
        DESTINATION ${KORVA_CMAKE_DIR} COMPONENT development)

# pkg-config names paths relative to its own prefix, so the file moves with the tree.
file(RELATIVE_PATH KORVA_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH KORVA_PC_LIBDIR ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH KORVA_PC_INCLUDEDIR ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
get_target_property(KORVA_PC_CFLAGS KORVAutlwin INTERFACE_COMPILE_OPTIONS)
if(NOT KORVA_PC_CFLAGS)
  set(KORVA_PC_CFLAGS "")
endif()
list(JOIN KORVA_PC_CFLAGS " " KORVA_PC_CFLAGS)
configure_file(${CMAKE_SOURCE_DIR}/cmake/korvautlwin.pc.in ${CMAKE_BINARY_DIR}/korvautlwin.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/korvautlwin.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# scripts/package: one Debian package holding everything above; its run-time
# dependencies are Debian's packages of the libraries its files load.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korvautlwin)
set(CPACK_PACKAGE_VENDOR Tessmark)
set(CPACK_PACKAGE_CONTACT "Tessmark <support@tessmark.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "user-interface and operations library of the Tessmark suite")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The package's own libraries are no dependency of it.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/lib)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
include(CPack)
