# The regular expression library, eight bits a unit: imported target PCRE2::8bit.
find_path(PCRE2_INCLUDE_DIR pcre2.h)
find_library(PCRE2_8BIT_LIBRARY pcre2-8)
mark_as_advanced(PCRE2_INCLUDE_DIR PCRE2_8BIT_LIBRARY)

if(PCRE2_INCLUDE_DIR)
  file(STRINGS ${PCRE2_INCLUDE_DIR}/pcre2.h version_lines REGEX "^#define PCRE2_(MAJOR|MINOR) ")
  list(TRANSFORM version_lines REPLACE "[^0-9]*2_[A-Z]+ *\t*([0-9]+).*" "\\1")
  list(JOIN version_lines "." PCRE2_VERSION)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(PCRE2
  REQUIRED_VARS PCRE2_8BIT_LIBRARY PCRE2_INCLUDE_DIR
  VERSION_VAR PCRE2_VERSION)

if(PCRE2_FOUND AND NOT TARGET PCRE2::8bit)
  add_library(PCRE2::8bit UNKNOWN IMPORTED)
  set_target_properties(PCRE2::8bit PROPERTIES
    IMPORTED_LOCATION ${PCRE2_8BIT_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${PCRE2_INCLUDE_DIR})
endif()
