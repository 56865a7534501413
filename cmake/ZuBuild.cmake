# Settings and helpers that every target of ours shares.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

# Everything runs from one folder of the build tree the way it does once installed.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(ZU_PLUGIN_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib/zuviewer/plugins")
set(ZU_PLUGIN_INSTALL_DIR "${CMAKE_INSTALL_LIBDIR}/zuviewer/plugins")
set(ZU_PROBE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/libexec/zuviewer")
set(ZU_PROBE_INSTALL_DIR "${CMAKE_INSTALL_LIBEXECDIR}/zuviewer")

# Fused multiply-adds would change phases and confidences in the last place.
add_compile_options(-ffp-contract=off)

add_library(zuWarnings INTERFACE)
target_compile_options(zuWarnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${ZU_WARNINGS_AS_ERRORS}>:-Werror>)

if(ZU_SANITIZERS)
  string(REPLACE ";" "," _zu_sanitizers "${ZU_SANITIZERS}")
  add_compile_options(-fsanitize=${_zu_sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${_zu_sanitizers})
endif()

# zu_room(TARGET [PRIVATE] [ALSO FILE ...])
#
# Includes are written as the path from the root of the tree, but the root itself is on no search path: each room has
# a folder of links to its own headers (and to the files named), and a target searches those of the rooms it links. An
# include of any other room does not compile. PRIVATE: no target that links this one includes its headers. Rooms link
# each other PUBLIC where a header needs it and PRIVATE otherwise, as PUBLIC opens a room to all that link this one; the
# test "rooms" tries includes that must fail.
function(zu_room TARGET)
  cmake_parse_arguments(ARG "PRIVATE" "" "ALSO" ${ARGN})
  set(links "${PROJECT_BINARY_DIR}/rooms/${TARGET}")
  file(RELATIVE_PATH room "${PROJECT_SOURCE_DIR}" "${CMAKE_CURRENT_SOURCE_DIR}")
  file(GLOB headers CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" *.h)
  foreach(file ${headers} ${ARG_ALSO})
    get_filename_component(folder "${links}/${room}/${file}" DIRECTORY)
    file(MAKE_DIRECTORY "${folder}")
    file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}/${file}" "${links}/${room}/${file}" SYMBOLIC)
  endforeach()
  get_target_property(type ${TARGET} TYPE)
  set(scope PUBLIC)
  if(type STREQUAL "INTERFACE_LIBRARY")
    set(scope INTERFACE)
  elseif(ARG_PRIVATE)
    set(scope PRIVATE)
  endif()
  target_include_directories(${TARGET} ${scope} $<BUILD_INTERFACE:${links}>)
endfunction()

# Links of rooms that are gone would still be found.
file(REMOVE_RECURSE "${PROJECT_BINARY_DIR}/rooms")

# What tests, benchmarks and fuzz targets share among themselves: below these folders everybody sees everything.
foreach(folder tests bench fuzz)
  file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/rooms/${folder}")
  file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${folder}" "${PROJECT_BINARY_DIR}/rooms/${folder}/${folder}" SYMBOLIC)
endforeach()

# zu_add_test(NAME SOURCES ... LIBS ... [LABELS ...] [WINDOW | WAYLAND])
#
# A GoogleTest program. Plain tests (label "core") get a QCoreApplication, the others a QApplication: WINDOW tests run
# on an X server (label "window"), WAYLAND tests under a Wayland compositor (label "wayland"), each alone on its
# display, for the keyboard has one focus.
function(zu_add_test NAME)
  cmake_parse_arguments(ARG "WINDOW;WAYLAND" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${NAME} ${ARG_SOURCES})
  target_include_directories(${NAME} PRIVATE "${PROJECT_BINARY_DIR}/rooms/tests")
  # Less optimisation than the code under test: half of the build's time goes into tests.
  target_compile_options(${NAME} PRIVATE $<$<CONFIG:Release>:-O1>)
  target_link_libraries(${NAME} PRIVATE zuWarnings ${ARG_LIBS} GTest::gtest GTest::gmock)
  add_test(NAME ${NAME} COMMAND ${NAME})
  set(labels ${ARG_LABELS})
  if(ARG_WINDOW)
    target_link_libraries(${NAME} PRIVATE zuTestGuiMain Qt6::Widgets Qt6::Test)
    set_tests_properties(${NAME} PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=xcb RESOURCE_LOCK x11)
    list(APPEND labels window)
  elseif(ARG_WAYLAND)
    target_link_libraries(${NAME} PRIVATE zuTestGuiMain Qt6::Widgets Qt6::Test)
    set_tests_properties(${NAME} PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=wayland RESOURCE_LOCK wayland)
    list(APPEND labels wayland)
  else()
    target_link_libraries(${NAME} PRIVATE zuTestCoreMain Qt6::Core)
    add_dependencies(coreTests ${NAME})
    list(APPEND labels core)
  endif()
  set_tests_properties(${NAME} PROPERTIES LABELS "${labels}" TIMEOUT 300)
endfunction()
