# Debian packages. `cmake --preset package && ninja -C build/package && cpack --config build/package/CPackConfig.cmake`
# makes one a component:
#   core     libzucore1        what the others stand on, without windows
#   runtime  zuviewer          viewer, view library and plug-in
#   tof      zutof             the command line; needs no display, no OpenGL and none of their packages
#   sdk      libzucore-dev     headers and CMake package for plug-ins
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zutof)
set(CPACK_PACKAGE_VENDOR "Orvane")
set(CPACK_PACKAGE_CONTACT "Seed ca382588 maintainers <maintainers@users.noreply.c-seed-ca382588.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # would stand in front of each package's own
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL core runtime tof sdk)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(version "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")

# What is linked is found out by dpkg-shlibdeps. Our own library is named with its exact version below.
find_program(ZU_DPKG_SHLIBDEPS dpkg-shlibdeps)
mark_as_advanced(ZU_DPKG_SHLIBDEPS)
if(ZU_DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
endif()

set(CPACK_DEBIAN_CORE_PACKAGE_NAME libzucore1)
set(CPACK_DEBIAN_CORE_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_CORE_DESCRIPTION
"Time-of-flight cameras: pictures, chains and cameras
The library that the viewer, the command line and plug-ins share: picture
memory, processing chains and their threads, camera drivers, class registry.")

# Loaded at run time, so that no linker knows of them: platform plug-ins, OpenGL drivers, fonts, translations.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME zuviewer)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION science)
string(JOIN ", " CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS
  "libzucore1 (= ${version})" qt6-qpa-plugins qt6-wayland libgl1-mesa-dri "fonts-dejavu-core | fonts-freefont-ttf")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "qt6-translations-l10n, hicolor-icon-theme, shared-mime-info, zutof")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS "xvfb, xauth")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
"Viewer for time-of-flight and other industrial cameras
Shows pictures live, runs them through chains of processing blocks and turns
raw time-of-flight pictures into phase shift, depth, amplitude, intensity and
live point clouds. Simulated cameras are built in, so that everything can be
tried without hardware.")

set(CPACK_DEBIAN_TOF_PACKAGE_NAME zutof)
set(CPACK_DEBIAN_TOF_PACKAGE_SECTION science)
set(CPACK_DEBIAN_TOF_PACKAGE_DEPENDS "libzucore1 (= ${version})")
set(CPACK_DEBIAN_TOF_PACKAGE_SUGGESTS "zuviewer")
set(CPACK_DEBIAN_TOF_DESCRIPTION
"Command line for recordings of time-of-flight cameras
The program tof records simulated cameras, processes recordings, exports
point clouds and pictures, and measures accuracy. It needs no display.")

set(CPACK_DEBIAN_SDK_PACKAGE_NAME libzucore-dev)
set(CPACK_DEBIAN_SDK_PACKAGE_SECTION libdevel)
# The links for the linker point into the other two packages.
string(JOIN ", " CPACK_DEBIAN_SDK_PACKAGE_DEPENDS
  "libzucore1 (= ${version})" "zuviewer (= ${version})" qt6-base-dev libgl-dev)
set(CPACK_DEBIAN_SDK_PACKAGE_RECOMMENDS "cmake, g++")
set(CPACK_DEBIAN_SDK_DESCRIPTION
"Headers and CMake package for plug-ins of zuviewer
find_package(ZuHostSdk) and link ZuHostSdk::zuCoreGui to write blocks, cameras
and views of your own.")

include(CPack)
