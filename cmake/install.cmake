# Where a user's compiler, pkg-config and CMake look for the library.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TZVIO)

install(TARGETS tzvio EXPORT TZVIOTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/tzvio.h include/tzvio_state.h include/tzvio_unifiedpos.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(EXPORT TZVIOTargets NAMESPACE TZVIO:: DESTINATION ${package_dir})
configure_package_config_file(cmake/TZVIOConfig.cmake.in ${PROJECT_BINARY_DIR}/TZVIOConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TZVIOConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TZVIOConfig.cmake ${PROJECT_BINARY_DIR}/TZVIOConfigVersion.cmake
        DESTINATION ${package_dir})

configure_file(cmake/tzvio.pc.in ${PROJECT_BINARY_DIR}/tzvio.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tzvio.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TZVIO_CLI)
  install(FILES tools/udev/70-tzvio.rules DESTINATION lib/udev/rules.d)
endif()
