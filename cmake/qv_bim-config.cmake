# Package qv_bim: targets qv::utilities, qv::core and qv::bim.
include(${CMAKE_CURRENT_LIST_DIR}/qv_bim-targets.cmake)
