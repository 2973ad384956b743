# Read by cpack once for each generator.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_COMPONENTS_ALL hosted)
else()
  set(CPACK_COMPONENTS_ALL firmware)
endif()
