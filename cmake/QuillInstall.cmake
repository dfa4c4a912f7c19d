# Installation: libraries, headers under include/quill, and the package files for find_package(Quill).
include(CMakePackageConfigHelpers)

set(QUILL_PACKAGE_HAS_CONTROLS ON)
if(QUILL_MODEL_ONLY)
    set(QUILL_PACKAGE_HAS_CONTROLS OFF)
endif()

set(_quill_targets quill_model)
set(_quill_headers host/base treecoll quilltree)
if(NOT QUILL_MODEL_ONLY)
    list(APPEND _quill_targets quill_controls)
    list(APPEND _quill_headers host/graphics host/windows exgrid)
endif()

install(TARGETS ${_quill_targets} EXPORT QuillTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(_folder IN LISTS _quill_headers)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/${_folder}/
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quill/${_folder}
        FILES_MATCHING PATTERN "*.h")
endforeach()
install(EXPORT QuillTargets NAMESPACE Quill:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quill)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/QuillConfig.cmake.in
    ${PROJECT_BINARY_DIR}/QuillConfig.cmake INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quill)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuillConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuillConfig.cmake ${PROJECT_BINARY_DIR}/QuillConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quill)
