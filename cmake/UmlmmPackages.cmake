# What is made of a build to be installed elsewhere: a wheel for `pip`, and Debian packages. Both take the objects and
# files of the build as they are; nothing is compiled again but, for a wheel of another Python, the extension module.

set(UMLMM_WHEEL_PYTHON ${Python3_EXECUTABLE} CACHE FILEPATH "Python that `make wheel` makes a wheel for")
set(UMLMM_DEBIAN_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE}/umlmm)
set(UMLMM_DEBIAN_CMAKEDIR lib/${CMAKE_LIBRARY_ARCHITECTURE}/cmake/umlmm)
set(UMLMM_WHEEL_DIR ${CMAKE_BINARY_DIR}/wheel)
add_custom_target(umlmm_wheel_parts)
# Packages are made of what is built by then, not of all that could be.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

install(FILES ${CMAKE_BINARY_DIR}/umlmmConfigVersion.cmake DESTINATION ${UMLMM_DEBIAN_CMAKEDIR}
  COMPONENT debian_development EXCLUDE_FROM_ALL)
install(EXPORT umlmm_debian FILE umlmmConfig.cmake NAMESPACE umlmm:: DESTINATION ${UMLMM_DEBIAN_CMAKEDIR}
  COMPONENT debian_development EXCLUDE_FROM_ALL)

# umlmm_pack_library(name LIBRARIES target... OBJECTS floor...)
#
# A library of the house for wheels, linked of the objects that it has here.
function(umlmm_pack_library name)
  cmake_parse_arguments(ARG "" "" "LIBRARIES;OBJECTS" ${ARGN})
  list(TRANSFORM ARG_OBJECTS REPLACE "(.+)" "$<TARGET_OBJECTS:\\1_objects>")
  add_library(${name}_wheel SHARED EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${name}> ${ARG_OBJECTS})
  target_link_libraries(${name}_wheel PRIVATE ${ARG_LIBRARIES} umlmm_settings)
  set_target_properties(${name}_wheel PROPERTIES OUTPUT_NAME ${name} SOVERSION ${UMLMM_SOVERSION})
  umlmm_link_for_wheel(${name}_wheel lib "$ORIGIN")
endfunction()

# Without symbols for debuggers, and without packed relocations, which loaders before that of glibc 2.36 don't know.
function(umlmm_link_for_wheel target folder run_path)
  target_link_options(${target} PRIVATE -s)
  set_target_properties(${target} PROPERTIES
    UMLMM_FOR_OLDER_LOADERS ON LINKER_LANGUAGE CXX BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH ${run_path}
    LIBRARY_OUTPUT_DIRECTORY ${UMLMM_WHEEL_DIR}/umlmm/${folder})
  add_dependencies(umlmm_wheel_parts ${target})
endfunction()

# umlmm_pack_module(name LIBRARIES target... SOURCES file...)
#
# The extension module as it lies in the Debian package and in a wheel, with its libraries elsewhere. For another Python
# it is compiled.
function(umlmm_pack_module name)
  cmake_parse_arguments(ARG "" "" "LIBRARIES;SOURCES" ${ARGN})
  file(RELATIVE_PATH to_libraries /lib/python3/dist-packages/umlmm /${UMLMM_DEBIAN_LIBDIR})
  add_library(${name}_debian MODULE EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${name}>)
  set_target_properties(${name}_debian PROPERTIES
    SUFFIX .${Python3_SOABI}.so LINKER_LANGUAGE CXX BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN/${to_libraries}"
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/debian)
  install(TARGETS ${name}_debian LIBRARY DESTINATION lib/python3/dist-packages/umlmm
    COMPONENT debian_module EXCLUDE_FROM_ALL)

  if(UMLMM_WHEEL_PYTHON STREQUAL Python3_EXECUTABLE)
    add_library(${name}_wheel MODULE EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${name}>)
    set_target_properties(${name}_wheel PROPERTIES SUFFIX .${Python3_SOABI}.so)
  else()
    add_library(${name}_wheel MODULE EXCLUDE_FROM_ALL ${ARG_SOURCES})
    umlmm_ask_python(include suffix)
    target_include_directories(${name}_wheel SYSTEM PRIVATE ${include})
    set_target_properties(${name}_wheel PROPERTIES SUFFIX ${suffix})
  endif()
  umlmm_link_for_wheel(${name}_wheel "" "$ORIGIN/lib")
  foreach(target ${name}_debian ${name}_wheel)
    set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME _host)
    target_link_libraries(${target} PRIVATE ${ARG_LIBRARIES} umlmm_module_settings)
  endforeach()
endfunction()

# Where the headers of the wheel's Python are, and what the names of its modules end with.
function(umlmm_ask_python include suffix)
  execute_process(
    COMMAND ${UMLMM_WHEEL_PYTHON} -c
      "import sysconfig as s; print(s.get_path('include'), s.get_config_var('EXT_SUFFIX'), sep=';', end='')"
    OUTPUT_VARIABLE answer ERROR_VARIABLE reason RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "PYTHON=${UMLMM_WHEEL_PYTHON} is no Python that runs: ${failed} ${reason}")
  endif()
  list(GET answer 0 folder)
  if(NOT EXISTS ${folder}/Python.h)
    message(FATAL_ERROR "${UMLMM_WHEEL_PYTHON} has no headers (${folder}/Python.h): install its development package")
  endif()
  set(${include} ${folder} PARENT_SCOPE)
  list(GET answer 1 ending)
  set(${suffix} ${ending} PARENT_SCOPE)
endfunction()

# umlmm_bundle(target): an imported library that not every system has, so that wheels bring it along.
function(umlmm_bundle target)
  get_target_property(file ${target} LOCATION)
  set_property(GLOBAL APPEND PROPERTY UMLMM_BUNDLED ${file})
endfunction()

# The targets that make the packages.
function(umlmm_add_packages)
  get_property(bundled GLOBAL PROPERTY UMLMM_BUNDLED)
  add_custom_target(umlmm_wheel
    COMMAND ${Python3_EXECUTABLE} -B ${PROJECT_SOURCE_DIR}/tools/make_wheel.py
      --build ${CMAKE_BINARY_DIR} --version ${PROJECT_VERSION} --cmake ${CMAKE_COMMAND} --out ${CMAKE_BINARY_DIR}/packages
      --module $<TARGET_FILE:umlmm_host_python_wheel> --libraries ${UMLMM_WHEEL_DIR}/umlmm/lib --bundle ${bundled}
    COMMENT "Packing a wheel" VERBATIM)
  add_dependencies(umlmm_wheel umlmm_wheel_parts umlmm_python)
  add_custom_target(umlmm_debs
    COMMAND ${CMAKE_CPACK_COMMAND} -G DEB -B ${CMAKE_BINARY_DIR}/packages
    COMMENT "Packing the Debian packages" VERBATIM)
  add_dependencies(umlmm_debs umlmm_host_python_debian umlmm_python)
endfunction()

set(CPACK_PACKAGE_NAME umlmm)
set(CPACK_PACKAGE_CONTACT "The umlmm project <umlmm@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "UML models as Python objects")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL debian_libraries headers debian_development python_files debian_module)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENT_DEBIAN_LIBRARIES_GROUP libraries)
set(CPACK_COMPONENT_HEADERS_GROUP development)
set(CPACK_COMPONENT_DEBIAN_DEVELOPMENT_GROUP development)
set(CPACK_COMPONENT_PYTHON_FILES_GROUP python)
set(CPACK_COMPONENT_DEBIAN_MODULE_GROUP python)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(own "(= ${PROJECT_VERSION})")
# What packed relocations need is told by no symbol that dpkg-shlibdeps would see.
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_DEPENDS "libc6 (>= 2.36)")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME libumlmm)
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARIES_DESCRIPTION "UML models: the libraries")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libumlmm-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "UML models: headers and CMake package")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libumlmm ${own}, libboost-dev")
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-umlmm)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "UML models as Python objects")
math(EXPR next "${Python3_VERSION_MINOR} + 1")
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
  "libumlmm ${own}, python3 (>= 3.${Python3_VERSION_MINOR}~), python3 (<< 3.${next}~)")
# What Python compiles as it runs goes with the package.
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/cmake/debian/postinst ${PROJECT_SOURCE_DIR}/cmake/debian/prerm)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "graphviz, librsvg2-bin")
include(CPack)
