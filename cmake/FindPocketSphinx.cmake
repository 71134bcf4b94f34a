# PocketSphinx with its base library: imported target PocketSphinx::pocketsphinx. Its own pkg-config file also
# names the library for sound cards, which nothing here needs.
find_path(POCKETSPHINX_INCLUDE_DIR pocketsphinx.h PATH_SUFFIXES pocketsphinx)
find_path(SPHINXBASE_INCLUDE_DIR cmd_ln.h PATH_SUFFIXES sphinxbase)
find_path(SPHINXBASE_CONFIG_INCLUDE_DIR sphinx_config.h PATH_SUFFIXES sphinxbase)
find_library(POCKETSPHINX_LIBRARY pocketsphinx)
find_library(SPHINXBASE_LIBRARY sphinxbase)
mark_as_advanced(POCKETSPHINX_INCLUDE_DIR SPHINXBASE_INCLUDE_DIR SPHINXBASE_CONFIG_INCLUDE_DIR
  POCKETSPHINX_LIBRARY SPHINXBASE_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(PocketSphinx REQUIRED_VARS
  POCKETSPHINX_LIBRARY SPHINXBASE_LIBRARY POCKETSPHINX_INCLUDE_DIR SPHINXBASE_INCLUDE_DIR
  SPHINXBASE_CONFIG_INCLUDE_DIR)

if(PocketSphinx_FOUND AND NOT TARGET PocketSphinx::pocketsphinx)
  add_library(PocketSphinx::pocketsphinx UNKNOWN IMPORTED)
  cmake_path(GET SPHINXBASE_INCLUDE_DIR PARENT_PATH sphinxbase_parent)
  set_target_properties(PocketSphinx::pocketsphinx PROPERTIES
    IMPORTED_LOCATION ${POCKETSPHINX_LIBRARY}
    INTERFACE_LINK_LIBRARIES ${SPHINXBASE_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES
      "${POCKETSPHINX_INCLUDE_DIR};${SPHINXBASE_INCLUDE_DIR};${sphinxbase_parent};${SPHINXBASE_CONFIG_INCLUDE_DIR}")
endif()
