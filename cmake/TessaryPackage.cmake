# SPDX-License-Identifier: MIT
# The Debian package, built from an install by CPack: `cpack -G DEB` in the
# build directory gives tessary_<version>_<arch>.deb, installed under /usr.
set(CPACK_PACKAGE_NAME tessary)
set(CPACK_PACKAGE_VENDOR "The Tessary developers")
set(CPACK_PACKAGE_CONTACT "The Tessary developers <developers@tessary.org>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://tessary.org/")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "desktop editor and checker for crystallographic CIF files
Tessary edits CIF files, the Crystallographic Information Files in which
crystal structures are exchanged, deposited and published: a highlighted,
line-numbered editor that keeps every byte the user did not change, a check
against the CIF dictionaries, the mandatory items and the consistency of the
values, and a list of errors, warnings and remarks that leads back to their
lines.
.
The package also holds tessary-check, which checks CIF files from the
command line and prints each message as FILE:LINE, which tessary opens.")
# The runtime libraries (Qt 6, and whatever the program links) come from
# dpkg-shlibdeps; xdg-open shows web pages.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
include(CPack)
