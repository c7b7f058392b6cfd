# One target per layer of a folder: an object library whose objects go into the
# shared library above it, and which a test program of that layer links alone.
#
#   korva_layer(NAME SOURCES files... [LINKS items...])
#
# LINKS are usage requirements (PUBLIC): the layers and packages below this one.
# A window-free layer names no Qt Widgets; its tests prove it (tests/CMakeLists.txt).
function(korva_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS")
  add_library(${name} OBJECT ${arg_SOURCES})
  target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${KORVA_INCLUDE_DIR}>
                                            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${name} PUBLIC ${arg_LINKS})
  target_compile_options(${name} PUBLIC ${KORVA_FAULT_UNWIND_OPTIONS})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  korva_version_definitions(${name})
endfunction()

function(korva_version_definitions name)
  target_compile_definitions(${name} PRIVATE
    KORVA_VERSION_MAJOR=${PROJECT_VERSION_MAJOR} KORVA_VERSION_MINOR=${PROJECT_VERSION_MINOR}
    KORVA_VERSION_PATCH=${PROJECT_VERSION_PATCH} KORVA_VERSION_TWEAK=${PROJECT_VERSION_TWEAK})
endfunction()
