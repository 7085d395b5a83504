# Install rules: headers, library, CMake package, pkg-config file.
include(CMakePackageConfigHelpers)

set(PHOTARIUM_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Photarium)

install(TARGETS photarium
  EXPORT PhotariumTargets
  FILE_SET HEADERS)
install(EXPORT PhotariumTargets
  NAMESPACE Photarium::
  DESTINATION ${PHOTARIUM_CMAKE_DIR})
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/PhotariumConfig.cmake.in
  ${PROJECT_BINARY_DIR}/PhotariumConfig.cmake
  INSTALL_DESTINATION ${PHOTARIUM_CMAKE_DIR})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/PhotariumConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/PhotariumConfig.cmake
  ${PROJECT_BINARY_DIR}/PhotariumConfigVersion.cmake
  DESTINATION ${PHOTARIUM_CMAKE_DIR})

# A static library leaves its OpenMP runtime and socket library to the linker
# of the consumer; pkg-config cannot see CMake's link interface.
if(BUILD_SHARED_LIBS)
  set(PHOTARIUM_PC_REQUIRED_LIBS "")
  set(PHOTARIUM_PC_CFLAGS "")
else()
  set(PHOTARIUM_PC_REQUIRED_LIBS "${OpenMP_CXX_FLAGS}")
  set(PHOTARIUM_PC_CFLAGS -DPHOTARIUM_STATIC)
endif()
# The prefix is found from the file's own place, so that it may be moved.
file(RELATIVE_PATH PHOTARIUM_PC_TO_PREFIX
  /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(
  ${PROJECT_SOURCE_DIR}/cmake/photarium.pc.in
  ${PROJECT_BINARY_DIR}/photarium.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/photarium.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
