# What `cmake --install` leaves: bin/tessel, the library, its headers, and the package that
# find_package(TesselPage CONFIG) looks for. Nothing in it names the place it was built or installed at.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TesselPage)
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/tessel)

install(TARGETS TesselPage EXPORT TesselPageTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT TesselPageTargets NAMESPACE TesselPage:: DESTINATION ${package_dir})

# The program finds the library beside itself, wherever both are moved together.
file(RELATIVE_PATH library_from_program /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set_target_properties(tessel PROPERTIES INSTALL_RPATH $ORIGIN/${library_from_program})
install(TARGETS tessel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# The front door and the class set behind it; what the exported class keeps to itself stays here.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/Source/TesselPage DESTINATION ${header_dir}
        FILES_MATCHING PATTERN *.h
        PATTERN Interface EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/Source/PDFEncryption DESTINATION ${header_dir} FILES_MATCHING PATTERN *.h)
install(FILES ${PROJECT_SOURCE_DIR}/Source/KelpGraphicService/kelp_graphic_service.h
        DESTINATION ${header_dir}/KelpGraphicService)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/TesselPageConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/TesselPageConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TesselPageConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TesselPageConfig.cmake ${PROJECT_BINARY_DIR}/TesselPageConfigVersion.cmake
        DESTINATION ${package_dir})
