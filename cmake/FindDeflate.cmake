# libdeflate: imported target Deflate::deflate.
find_path(DEFLATE_INCLUDE_DIR libdeflate.h)
find_library(DEFLATE_LIBRARY deflate)
mark_as_advanced(DEFLATE_INCLUDE_DIR DEFLATE_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Deflate REQUIRED_VARS DEFLATE_LIBRARY DEFLATE_INCLUDE_DIR)

if(Deflate_FOUND AND NOT TARGET Deflate::deflate)
  add_library(Deflate::deflate UNKNOWN IMPORTED)
  set_target_properties(Deflate::deflate PROPERTIES
    IMPORTED_LOCATION ${DEFLATE_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${DEFLATE_INCLUDE_DIR})
endif()
