# What `cmake --install` puts where: libraries, plug-in and viewer, and the SDK for plug-ins of others
# (headers and the package files that find_package(ZuHostSdk) reads). ZuPackages makes packages of the components.
include(CMakePackageConfigHelpers)

set(zu_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/ZuHostSdk")

install(TARGETS zuHostSdk zuCore EXPORT ZuHostSdkTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT core
  NAMELINK_COMPONENT sdk)
set_target_properties(zuCore PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})

if(ZU_BUILD_GUI)
  install(TARGETS zuHostSdkGui zuCoreGui EXPORT ZuHostSdkTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
    NAMELINK_COMPONENT sdk)
  set_target_properties(zuCoreGui PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "$ORIGIN")
  install(TARGETS zplToF LIBRARY DESTINATION ${ZU_PLUGIN_INSTALL_DIR} COMPONENT runtime)
  install(TARGETS zuviewer RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
  set_target_properties(zuviewer PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS zuPluginProbe RUNTIME DESTINATION ${ZU_PROBE_INSTALL_DIR} COMPONENT runtime)
endif()

install(DIRECTORY "${PROJECT_SOURCE_DIR}/hostsdk/include/" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zuhostsdk
  COMPONENT sdk FILES_MATCHING PATTERN "*.h")
install(EXPORT ZuHostSdkTargets NAMESPACE ZuHostSdk:: DESTINATION ${zu_package_dir} COMPONENT sdk)
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/ZuHostSdkConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/ZuHostSdkConfig.cmake"
  INSTALL_DESTINATION ${zu_package_dir} PATH_VARS ZU_PLUGIN_INSTALL_DIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZuHostSdkConfigVersion.cmake"
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/ZuHostSdkConfig.cmake" "${PROJECT_BINARY_DIR}/ZuHostSdkConfigVersion.cmake"
  DESTINATION ${zu_package_dir} COMPONENT sdk)
