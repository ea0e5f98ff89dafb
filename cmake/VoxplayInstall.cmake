# SPDX-License-Identifier: Apache-2.0
# What "cmake --install" puts where. The components are those of the Debian packages: runtime is what
# programs need to run, development what they need to be built, player the player.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

if(VOXPLAY_PLAYER)
  install(TARGETS VoxplaySampleCode RUNTIME COMPONENT player)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/man/VoxplaySampleCode.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT player)
endif()
if(VOXPLAY_TOOL)
  set(DESKTOP ${PROJECT_SOURCE_DIR}/desktop)
  # Nothing in the program tells where it was built, so that packages are the same from build to build.
  set_target_properties(voxtool voxtool-plot PROPERTIES BUILD_RPATH_USE_ORIGIN ON)
  # Outside of /usr the system may not look for the library, which is found from the program then,
  # wherever both are moved. Packages want no such path.
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    file(RELATIVE_PATH LIBRARY_FOLDER ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(voxtool PROPERTIES INSTALL_RPATH "\$ORIGIN/${LIBRARY_FOLDER}")
    file(RELATIVE_PATH LIBRARY_FOLDER
      ${CMAKE_INSTALL_FULL_LIBEXECDIR}/voxplay ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(voxtool-plot PROPERTIES INSTALL_RPATH "\$ORIGIN/${LIBRARY_FOLDER}")
  endif()
  install(TARGETS voxtool RUNTIME COMPONENT player)
  install(TARGETS voxtool-plot
    RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/voxplay COMPONENT player)
  install(FILES ${DESKTOP}/voxplay.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages COMPONENT player)
  install(FILES ${DESKTOP}/voxtool.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT player)
  install(FILES ${DESKTOP}/voxtool.thumbnailer
    DESTINATION ${CMAKE_INSTALL_DATADIR}/thumbnailers COMPONENT player)
  install(FILES ${DESKTOP}/org.voxplay.voxtool.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT player)
endif()
if(VOXTOOL_TEXTS)
  install(DIRECTORY ${VOXTOOL_TEXTS}/man/
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT player FILES_MATCHING PATTERN "*.1")
  install(FILES ${VOXTOOL_TEXTS}/bash/voxtool
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT player)
  install(FILES ${VOXTOOL_TEXTS}/zsh/_voxtool
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT player)
  install(FILES ${VOXTOOL_TEXTS}/fish/voxtool.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT player)
endif()
if(VOXPLAY_PYTHON)
  set(VOXPLAY_PYTHON_FOLDER "" CACHE STRING
    "Folder for the module for Python, below the prefix; empty for that where Debian's interpreter looks")
  set(PYTHON_FOLDER ${VOXPLAY_PYTHON_FOLDER})
  if(NOT PYTHON_FOLDER AND CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(PYTHON_FOLDER lib/python3/dist-packages)
  elseif(NOT PYTHON_FOLDER)
    set(PYTHON_FOLDER lib/python${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}/dist-packages)
  endif()
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    file(RELATIVE_PATH LIBRARY_FOLDER
      ${CMAKE_INSTALL_PREFIX}/${PYTHON_FOLDER}/voxplay ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(voxplay_python PROPERTIES INSTALL_RPATH "\$ORIGIN/${LIBRARY_FOLDER}")
  endif()
  install(TARGETS voxplay_python LIBRARY DESTINATION ${PYTHON_FOLDER}/voxplay COMPONENT python)
  list(TRANSFORM VOXPLAY_PYTHON_FILES PREPEND ${PROJECT_SOURCE_DIR}/python/voxplay/
    OUTPUT_VARIABLE PYTHON_FILES)
  install(FILES ${PYTHON_FILES} DESTINATION ${PYTHON_FOLDER}/voxplay COMPONENT python)
endif()
if(NOT VOXPLAY_API)
  return()
endif()

# Voxplay::WaveFileLib, as it is installed: the classes' headers, over the archive that has their
# objects.
set(CLASSES ${CMAKE_INSTALL_INCLUDEDIR}/voxplay-classes)
get_target_property(CLASS_HEADERS WaveFileLib HEADER_SET)
get_target_property(CLASS_FOLDERS WaveFileLib HEADER_DIRS)
add_library(voxplay_classes INTERFACE)
set_target_properties(voxplay_classes PROPERTIES EXPORT_NAME WaveFileLib)
target_sources(voxplay_classes INTERFACE FILE_SET HEADERS BASE_DIRS
  ${CLASS_FOLDERS} ${PROJECT_SOURCE_DIR}/common FILES ${CLASS_HEADERS} ${VOXPLAY_COMMON_HEADERS})
target_link_libraries(voxplay_classes INTERFACE voxplay_static)
target_compile_features(voxplay_classes INTERFACE cxx_std_20)

install(TARGETS voxplay EXPORT VoxplayTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  FILE_SET HEADERS COMPONENT development)
install(TARGETS voxplay_static EXPORT VoxplayTargets
  ARCHIVE COMPONENT development FILE_SET HEADERS COMPONENT development)
install(TARGETS voxplay_classes EXPORT VoxplayTargets
  FILE_SET HEADERS DESTINATION ${CLASSES} COMPONENT development)

set(PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/Voxplay)
install(EXPORT VoxplayTargets NAMESPACE Voxplay:: DESTINATION ${PACKAGE} COMPONENT development)
configure_package_config_file(cmake/VoxplayConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VoxplayConfig.cmake INSTALL_DESTINATION ${PACKAGE})
# A program takes any later version whose library has the same SONAME, whatever its major version.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VoxplayConfigVersion.cmake
  COMPATIBILITY AnyNewerVersion)
file(APPEND ${PROJECT_BINARY_DIR}/VoxplayConfigVersion.cmake
  "if(PACKAGE_FIND_VERSION AND PACKAGE_FIND_VERSION VERSION_LESS ${VOXPLAY_COMPATIBLE_SINCE})\n"
  "  set(PACKAGE_VERSION_COMPATIBLE FALSE)\n"
  "endif()\n")
install(
  FILES ${PROJECT_BINARY_DIR}/VoxplayConfig.cmake ${PROJECT_BINARY_DIR}/VoxplayConfigVersion.cmake
  DESTINATION ${PACKAGE} COMPONENT development)

# The way from the file to where everything is installed, so that the whole can be moved.
set(PKG_CONFIG_FOLDER ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH VOXPLAY_UP /prefix/${PKG_CONFIG_FOLDER} /prefix)
string(REGEX REPLACE "/$" "" VOXPLAY_UP "${VOXPLAY_UP}")
foreach(FOLDER LIBDIR INCLUDEDIR)
  set(VOXPLAY_${FOLDER} "\${prefix}")
  cmake_path(APPEND VOXPLAY_${FOLDER} ${CMAKE_INSTALL_${FOLDER}})
endforeach()
configure_file(cmake/voxplay.pc.in ${PROJECT_BINARY_DIR}/voxplay.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/voxplay.pc
  DESTINATION ${PKG_CONFIG_FOLDER} COMPONENT development)
