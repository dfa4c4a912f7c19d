# Compiler settings shared by every target of the project.

find_program(QUILL_CCACHE ccache)
if(QUILL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # The two settings that let it cache files with precompiled headers.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${QUILL_CCACHE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-fpch-preprocess)
    endif()
endif()

find_program(QUILL_LLD ld.lld)
if(QUILL_LLD)
    add_link_options(-fuse-ld=lld)
endif()

set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Language level, include root, warnings and sanitizers for one of our targets.
function(quill_setup target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/quill>)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        # GCC 12 warns about overlapping copies in plain additions of std::string.
        target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
    if(QUILL_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(QUILL_SANITIZE)
        target_compile_options(${target} PUBLIC
            $<BUILD_INTERFACE:-fsanitize=${QUILL_SANITIZE}> $<BUILD_INTERFACE:-fno-omit-frame-pointer>
            $<BUILD_INTERFACE:-fno-sanitize-recover=all>)
        target_link_options(${target} PUBLIC $<BUILD_INTERFACE:-fsanitize=${QUILL_SANITIZE}>)
    endif()
endfunction()
