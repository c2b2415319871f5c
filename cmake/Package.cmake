# The Debian package: cpack -G DEB, in a release build. The desktop's caches are renewed by triggers of the packages that
# own them, so it needs no scripts of its own.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velquin)
set(CPACK_PACKAGE_VENDOR ${VELQUIN_MAKER})
set(CPACK_PACKAGE_CONTACT ${VELQUIN_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "plot large numeric and time-series tables")
set(CPACK_PACKAGE_DESCRIPTION "Velquin plots tables with millions of rows: text files with numbers in,
curves out. Reading and drawing happen in the background, every curve is
reduced to the points that can be seen, and the picture is exact.
.
Curves are columns, or expressions over columns. Axes are linear,
logarithmic or of time. Pictures are written as PNG, JPEG, PDF and SVG,
from the window or from the command line.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${VELQUIN_SITE})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-liberation, fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "qt6-wayland")
# Only what is installed is built for it, not the tests.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
include(CPack)
