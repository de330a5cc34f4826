# Where installed files go, and the two functions that install programs and libraries.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# By this name, lib/rv4100-fldc, a program knows that it is an installed one (src/platform/qt/ProgramInfo.h).
set(FLDC_INSTALL_PROGRAM_DIR lib/rv4100-fldc)

# fldc_install_program(target): into the program's folder, with a link in bin.
function(fldc_install_program target)
  install(TARGETS ${target} DESTINATION "${FLDC_INSTALL_PROGRAM_DIR}")
  set(link "${CMAKE_CURRENT_BINARY_DIR}/link/${target}")
  file(MAKE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/link")
  cmake_path(RELATIVE_PATH FLDC_INSTALL_PROGRAM_DIR BASE_DIRECTORY "${CMAKE_INSTALL_BINDIR}" OUTPUT_VARIABLE folder)
  file(CREATE_LINK "${folder}/${target}" "${link}" SYMBOLIC)
  install(FILES "${link}" DESTINATION "${CMAKE_INSTALL_BINDIR}")
endfunction()

# fldc_install_libraries(target...): with their headers, for find_package(rv4100_fldc). A program links
# rv4100_fldc::<target>.
function(fldc_install_libraries)
  set(include_dir "${CMAKE_INSTALL_INCLUDEDIR}/rv4100-fldc")
  set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/rv4100_fldc")
  install(
    TARGETS ${ARGN}
    EXPORT rv4100_fldc
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}/rv4100-fldc"
    INCLUDES DESTINATION "${include_dir}")
  foreach(target IN LISTS ARGN)
    get_target_property(source_dir ${target} SOURCE_DIR)
    cmake_path(RELATIVE_PATH source_dir BASE_DIRECTORY "${PROJECT_SOURCE_DIR}/src" OUTPUT_VARIABLE folder)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE "${source_dir}" "${source_dir}/*.h")
    foreach(header IN LISTS headers)
      cmake_path(GET header PARENT_PATH below)
      # A folder below with its own CMakeLists.txt is another library's.
      if(below AND EXISTS "${source_dir}/${below}/CMakeLists.txt")
        continue()
      endif()
      install(FILES "${source_dir}/${header}" DESTINATION "${include_dir}/${folder}/${below}")
    endforeach()
  endforeach()
  install(
    EXPORT rv4100_fldc
    FILE rv4100_fldcTargets.cmake
    NAMESPACE rv4100_fldc::
    DESTINATION "${package_dir}")
  write_basic_package_version_file("${PROJECT_BINARY_DIR}/rv4100_fldcConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
  install(FILES "${PROJECT_SOURCE_DIR}/cmake/rv4100_fldcConfig.cmake" "${PROJECT_BINARY_DIR}/rv4100_fldcConfigVersion.cmake"
          DESTINATION "${package_dir}")
endfunction()
