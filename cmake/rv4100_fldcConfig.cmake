# The component's libraries for find_package(rv4100_fldc): rv4100_fldc::manager and those below it.
include(CMakeFindDependencyMacro)
find_dependency(Qt6 6.4 COMPONENTS Core Network)
find_dependency(ZLIB)
find_dependency(PkgConfig)
if(NOT TARGET PkgConfig::libdeflate)
  pkg_check_modules(libdeflate REQUIRED QUIET IMPORTED_TARGET libdeflate)
endif()
include("${CMAKE_CURRENT_LIST_DIR}/rv4100_fldcTargets.cmake")
