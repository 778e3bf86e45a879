# Shared target settings: strict warnings everywhere. Warnings stop our own CI build
# (VELTRO_WERROR=ON); packagers build with their own flags and compiler, where a new
# false positive must not stop the build.
option(VELTRO_WERROR "Treat compiler warnings as errors" OFF)
set(VELTRO_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align
    -Woverloaded-virtual -Wnull-dereference -Wformat=2)
# GCC 12 warns about overlapping copies inside std::string's own operator+ once it
# inlines deeply (-O3, _FORTIFY_SOURCE), a known false positive fixed in GCC 13. The warning
# is about the standard library, never about our code, so it goes for that compiler.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    list(APPEND VELTRO_WARNINGS -Wno-restrict)
endif()
if(VELTRO_WERROR)
    list(APPEND VELTRO_WARNINGS -Werror)
endif()

function(veltro_warnings target)
    target_compile_options(${target} PRIVATE ${VELTRO_WARNINGS})
endfunction()

# veltro_engine_library(<name> [DEPS <targets>...])
# A Qt-free static library made of every .cpp in the current folder. Qt's include
# directories are never on its path, so a stray Qt include fails to compile.
function(veltro_engine_library name)
    cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    add_library(${name} STATIC ${sources} ${headers})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARG_DEPS})
    set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    veltro_warnings(${name})
endfunction()
