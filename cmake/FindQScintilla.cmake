# SPDX-License-Identifier: MIT
# Finds QScintilla for Qt 6 (Debian's libqscintilla2-qt6-dev) and defines the
# imported target QScintilla::QScintilla. Debian puts the headers under
# <multiarch>/qt6/Qsci and names the library libqscintilla2_qt6.
find_path(QScintilla_INCLUDE_DIR
  NAMES Qsci/qsciscintilla.h
  HINTS ${Qt6_DIR}/../../../../include
  PATHS /usr/include/${CMAKE_LIBRARY_ARCHITECTURE}/qt6 /usr/include/qt6 /usr/local/include/qt6
  PATH_SUFFIXES qt6)
find_library(QScintilla_LIBRARY NAMES qscintilla2_qt6 qscintilla2-qt6)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(QScintilla
  REQUIRED_VARS QScintilla_LIBRARY QScintilla_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "install libqscintilla2-qt6-dev (scripts/install-deps.sh)")

if(QScintilla_FOUND AND NOT TARGET QScintilla::QScintilla)
  add_library(QScintilla::QScintilla UNKNOWN IMPORTED)
  set_target_properties(QScintilla::QScintilla PROPERTIES
    IMPORTED_LOCATION "${QScintilla_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${QScintilla_INCLUDE_DIR}"
    INTERFACE_LINK_LIBRARIES "Qt6::Widgets;Qt6::PrintSupport")
endif()
mark_as_advanced(QScintilla_INCLUDE_DIR QScintilla_LIBRARY)
