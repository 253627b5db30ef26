# Debian packages with `cpack -G DEB` (run in the build folder):
#   kxrender      the shared library with its SONAME, data files, tools
#   kxrender-dev  headers, the libkxrender.so link, CMake and pkg-config files
# The packages install under the build's CMAKE_INSTALL_PREFIX, so paths the
# library was built with (its data folder) hold on the target machine:
# configure with -DCMAKE_INSTALL_PREFIX=/usr for a system package.
# cpack and `make install` use what is built and never build (the tests
# among it) themselves: the packaging test runs cpack after the build.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
set(CPACK_PACKAGE_NAME kxrender)
set(CPACK_PACKAGE_VENDOR "The kxrender authors")
set(CPACK_PACKAGE_CONTACT "The kxrender authors <kxrender@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "3D display engine for building-design CAD views")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME kxrender)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "3D display engine for building-design CAD views
 A C++17 shared library a host binds to its windows to draw building models
 through OpenGL 1.x on Mesa (X11 or headless EGL): navigation, picking,
 snapping and off-screen frames. Includes the kxdemo and kxtrace tools.")
# Linked libraries come from dpkg-shlibdeps. EGL and GL are opened at run
# time by libepoxy, so they are named here, with Mesa's drivers behind them.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libegl1, libgl1, libegl-mesa0, libgl1-mesa-dri")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_DEV_PACKAGE_NAME kxrender-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_DESCRIPTION "3D display engine for building-design CAD views (development files)
 Headers, CMake package (find_package(kxrender)) and pkg-config file for
 building hosts against libkxrender.")
# The headers include only the C++ standard library; the unversioned link
# needs the same build of the library.
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "kxrender (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(CPACK_STRIP_FILES ON)
include(CPack)

# The packages, unpacked with dpkg -x, build the example host. Not under
# sanitizers: an instrumented library cannot load into the plain example.
if(KXRENDER_BUILD_TESTS AND NOT KXRENDER_SANITIZE)
  add_test(NAME package_deb
    COMMAND ${PROJECT_SOURCE_DIR}/tests/package/package_test.sh ${PROJECT_BINARY_DIR} ${PROJECT_SOURCE_DIR}
            ${PROJECT_VERSION} ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_LIBDIR})
  set_tests_properties(package_deb PROPERTIES TIMEOUT 300)
endif()
