# Installation: libraries, headers under include/quill, and the package files for find_package(Quill).
include(CMakePackageConfigHelpers)

set(QUILL_PACKAGE_HAS_CONTROLS ON)
set(_quill_libraries Model Controls)
set(_quill_headers host treecoll quilltree exgrid htmldraw oledragdrop flyedit)
if(QUILL_MODEL_ONLY)
    set(QUILL_PACKAGE_HAS_CONTROLS OFF)
    set(_quill_libraries Model)
    set(_quill_headers host/base treecoll quilltree)
endif()
set(_quill_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Quill)

# One export set for each library: a program that uses the model alone must not be asked for Qt.
foreach(_library IN LISTS _quill_libraries)
    string(TOLOWER quill_${_library} _target)
    install(TARGETS ${_target} EXPORT Quill${_library}Targets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        OBJECTS DESTINATION ${CMAKE_INSTALL_LIBDIR})
    install(EXPORT Quill${_library}Targets NAMESPACE Quill:: DESTINATION ${_quill_package_folder})
endforeach()
foreach(_folder IN LISTS _quill_headers)
    if(EXISTS ${PROJECT_SOURCE_DIR}/${_folder})
        install(DIRECTORY ${PROJECT_SOURCE_DIR}/${_folder}/
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quill/${_folder}
            FILES_MATCHING PATTERN "*.h")
    endif()
endforeach()

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/QuillConfig.cmake.in
    ${PROJECT_BINARY_DIR}/QuillConfig.cmake INSTALL_DESTINATION ${_quill_package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuillConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuillConfig.cmake ${PROJECT_BINARY_DIR}/QuillConfigVersion.cmake
    DESTINATION ${_quill_package_folder})
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
