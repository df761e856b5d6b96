# cmake --install: headers, libkxui.so, libkxui_services.so, the module, the CMake
# package (find_package(KxUI03) -> KxUI03::kxui, KxUI03::services, KxUI03::module) and
# pkg-config files.
include(CMakePackageConfigHelpers)

set(KXUI_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/KxUI03)

# Public headers: the library without its test doubles, and the services' one entry.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/kxui DESTINATION ${KXUI_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h" PATTERN "testing" EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/services/register.h
        DESTINATION ${KXUI_INSTALL_INCLUDEDIR}/services)

set_target_properties(KxUI03 PROPERTIES EXPORT_NAME module)
install(TARGETS kxui kxservices EXPORT KxUI03Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS KxUI03 EXPORT KxUI03Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
set_target_properties(kxui kxservices PROPERTIES INSTALL_RPATH "$ORIGIN")

install(EXPORT KxUI03Targets NAMESPACE KxUI03:: DESTINATION ${KXUI_CMAKEDIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KxUI03Config.cmake.in
  ${PROJECT_BINARY_DIR}/KxUI03Config.cmake INSTALL_DESTINATION ${KXUI_CMAKEDIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KxUI03ConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KxUI03Config.cmake
              ${PROJECT_BINARY_DIR}/KxUI03ConfigVersion.cmake
        DESTINATION ${KXUI_CMAKEDIR})

# Relative, so that an installed tree can be moved.
file(RELATIVE_PATH KXUI_PC_TO_PREFIX ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig
     ${CMAKE_INSTALL_PREFIX})
foreach(pc kxui03 kxui03-services)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${pc}.pc.in ${PROJECT_BINARY_DIR}/${pc}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${pc}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
