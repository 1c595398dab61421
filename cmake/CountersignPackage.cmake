# SPDX-License-Identifier: Apache-2.0
# "cpack" in a build folder makes a Debian package of the programs, the libraries and what programmers link.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME countersign)
set(CPACK_PACKAGE_VENDOR "Countersign")
set(CPACK_PACKAGE_CONTACT "The Countersign developers <developers@countersign.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "sign and test files, encrypt short texts")
set(CPACK_PACKAGE_DESCRIPTION
"Countersign writes a signature beside each file and tells later whether the
file is still the one that was signed, in a window and on the command line.
It encrypts short texts with an RSA key. Its libraries can be linked one by
one: multiple-precision arithmetic, RSA and Blowfish helpers, and a handler
with a dialog for failed assertions.
.
It protects against accidents, not against an adversary.")
set(CPACK_PACKAGE_FILE_NAME "countersign_${PROJECT_VERSION}_${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_STRIP_FILES ON)
set(CPACK_MONOLITHIC_INSTALL ON)
# The files are staged under DESTDIR, so that what they say of their own place is where they end up.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_BINARY_DIR}/bin")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
