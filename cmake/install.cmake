include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(packageDir "${CMAKE_INSTALL_LIBDIR}/cmake/ZelmResult")

install(TARGETS zelmresult EXPORT ZelmResultTargets FILE_SET HEADERS)
install(EXPORT ZelmResultTargets NAMESPACE ZelmResult:: DESTINATION "${packageDir}")

configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/ZelmResultConfig.cmake.in" "${PROJECT_BINARY_DIR}/ZelmResultConfig.cmake"
    INSTALL_DESTINATION "${packageDir}"
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZelmResultConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/ZelmResultConfig.cmake"
    "${PROJECT_BINARY_DIR}/ZelmResultConfigVersion.cmake"
    DESTINATION "${packageDir}")

# The prefix is worked out from the place of the file, so that the installed tree can be moved.
file(RELATIVE_PATH prefixFromPc "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
set(pcPrivateLibs "")
if(WIN32)
    set(pcPrivateLibs "\nLibs.private: -lwinmm")
endif()
configure_file("${CMAKE_CURRENT_LIST_DIR}/zelmresult.pc.in" "${PROJECT_BINARY_DIR}/zelmresult.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/zelmresult.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# As they lie here, so that the links between them lead somewhere.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
    FILES_MATCHING PATTERN "*.md" PATTERN "*.png")
install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
    "${PROJECT_SOURCE_DIR}/CONTRIBUTING.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
