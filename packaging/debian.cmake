# The Debian packages: what they are called and what they need.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME marvolen)
set(CPACK_PACKAGE_VENDOR "Marvolen's developers")
set(CPACK_PACKAGE_CONTACT "Marvolen's developers <maintainers@example.org>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL ${MARVOLEN_PROGRAM} ${MARVOLEN_CAMERAS})
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Below any release of a distribution: its own package, should there be one, takes the place of ours.
set(CPACK_DEBIAN_PACKAGE_RELEASE 0local1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

set(CPACK_DEBIAN_MARVOLEN_PACKAGE_NAME ${MARVOLEN_PROGRAM})
set(CPACK_DEBIAN_MARVOLEN_PACKAGE_SECTION video)
# Plugins, which the linker doesn't see: libqt6gui6 brings the one for X11, this the one for Wayland.
set(CPACK_DEBIAN_MARVOLEN_PACKAGE_DEPENDS "qt6-wayland")
set(CPACK_DEBIAN_MARVOLEN_PACKAGE_RECOMMENDS "fonts-dejavu-core")
set(CPACK_DEBIAN_MARVOLEN_PACKAGE_SUGGESTS "marvolen-camera-server")
set(CPACK_DEBIAN_MARVOLEN_DESCRIPTION "desktop client for networked cameras
Watches up to sixteen cameras at once, each an HTTP connection that answers
with a stream of JPEG pictures, records each channel into a ring file whose
newest pictures overwrite the oldest, plays recordings back and writes any
stretch of them to AVI files.
.
With record_file, which looks into recordings, verifies and exports them.")

set(CPACK_DEBIAN_MARVOLEN-CAMERA-SERVER_PACKAGE_NAME ${MARVOLEN_CAMERAS})
set(CPACK_DEBIAN_MARVOLEN-CAMERA-SERVER_PACKAGE_SECTION video)
set(CPACK_DEBIAN_MARVOLEN-CAMERA-SERVER_DESCRIPTION "sixteen simulated networked cameras
Serves up to sixteen channels of JPEG pictures over HTTP, as networked cameras
do, each on a port of its own, and misbehaves in many ways on request: for
trying out Marvolen, and for testing it.")

include(CPack)
