# Build settings shared by every folder, and the few functions that folders call.

option(UMLMM_TESTS "Build the tests" ON)
option(UMLMM_BENCHMARKS "Build the benchmarks" ON)
option(UMLMM_FUZZ "Build the fuzzers of model files, with clang alone" OFF)
option(UMLMM_WERROR "Treat warnings as errors" ON)
set(UMLMM_SANITIZE "" CACHE STRING "Sanitizers, such as address,undefined")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Where generated headers and sources go, each set into a folder of its name that is an include root of its floor.
set(UMLMM_GENERATED_DIR ${CMAKE_BINARY_DIR}/generated)

# The host runs in Debian's own Python, whatever other Python stands first on PATH.
set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "Python that hosts the scripts")
find_package(Python3 REQUIRED COMPONENTS Interpreter Development.Module)

# What `cmake --install` makes: headers under one include root, libraries, the CMake package, the Python package.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(UMLMM_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/umlmm)
set(UMLMM_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/umlmm)
set(UMLMM_INSTALL_PYTHONDIR lib/python3/dist-packages CACHE STRING "Folder of the Python package under the prefix")

# The build tree lies as the installation does, so that libraries find each other in both by the same run paths:
# entries relative to the library itself and no others. CMake's own editing at installation would leave empty ones in
# the build tree, through which the loader takes libraries from the current folder.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# The version is the project's, in the top list. Before 1.0 a new minor version may change what libraries export, so it
# is part of the name that programs link with, and of what the CMake package takes for compatible.
set(UMLMM_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/umlmmConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/umlmmConfigVersion.cmake DESTINATION ${UMLMM_INSTALL_CMAKEDIR})
install(EXPORT umlmm FILE umlmmConfig.cmake NAMESPACE umlmm:: DESTINATION ${UMLMM_INSTALL_CMAKEDIR})
include(UmlmmPackages)

add_library(umlmm_settings INTERFACE)
target_compile_options(umlmm_settings INTERFACE
  -Wall -Wextra -Wpedantic -ffunction-sections -fdata-sections -fno-semantic-interposition -fno-plt
  $<$<BOOL:${UMLMM_WERROR}>:-Werror>)
# g++ 12 warns of overlaps inside std::string's own operator+ when it optimises.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(umlmm_settings INTERFACE -Wno-restrict)
endif()
# Functions are bound inside their library, as -fno-semantic-interposition has it; types and data are not, so that
# exceptions and tags stay one for all libraries.
target_link_options(umlmm_settings INTERFACE -Wl,-Bsymbolic-functions -Wl,--gc-sections
  $<$<NOT:$<BOOL:$<TARGET_PROPERTY:UMLMM_FOR_OLDER_LOADERS>>>:-Wl,-z,pack-relative-relocs> -Wl,-z,now)
# Programs of clang have its sanitizers in them, where libraries find them once they are loaded.
if(UMLMM_FUZZ)
  target_compile_options(umlmm_settings INTERFACE -fsized-deallocation -fconstexpr-steps=16000000)
else()
  target_link_options(umlmm_settings INTERFACE -Wl,-z,defs)
endif()
if(UMLMM_SANITIZE)
  add_compile_options(-fsanitize=${UMLMM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${UMLMM_SANITIZE})
endif()

# Floors: folders that see their own headers, those of the floors that they stand on, and what these show in their own
# headers. An include of any other folder finds no file. Below, PUBLIC are the floors and libraries that a floor's
# headers show, PRIVATE those that its sources alone include.

# umlmm_header_root(OUTVAR name from folder...)
#
# Makes an include root of floor NAME, which holds the headers of some folders and of none around or inside them, by
# links. FROM is the folder where the paths in includes begin; the others are paths from there.
function(umlmm_header_root out name from)
  set(root ${CMAKE_CURRENT_BINARY_DIR}/floors/${name})
  file(REMOVE_RECURSE ${root})
  foreach(folder IN LISTS ARGN)
    file(MAKE_DIRECTORY ${root}/${folder})
    file(GLOB headers RELATIVE ${from} CONFIGURE_DEPENDS ${from}/${folder}/*.h ${from}/${folder}/*.inc)
    foreach(header IN LISTS headers)
      file(CREATE_LINK ${from}/${header} ${root}/${header} SYMBOLIC)
    endforeach()
  endforeach()
  set(${out} ${root} PARENT_SCOPE)
endfunction()

# umlmm_floor(name FOLDERS folder... [FROM root] [SOURCES file...] [GENERATED set...] [PUBLIC target...]
#   [PRIVATE target...])
#
# Folders of a library as a floor: target NAME is its headers, for whoever stands on it, and NAME_objects is compiled,
# for the library that has it among its FLOORS. FOLDERS are paths from the project's folder, or from FROM, as includes
# have them. The files of GENERATED belong to it as well. If it has no sources, a unit that includes its headers is
# compiled, so that they too are held to what they may see.
function(umlmm_floor name)
  cmake_parse_arguments(ARG "" "FROM" "FOLDERS;SOURCES;GENERATED;PUBLIC;PRIVATE" ${ARGN})
  if(NOT ARG_FROM)
    set(ARG_FROM ${PROJECT_SOURCE_DIR})
  endif()
  file(RELATIVE_PATH below ${PROJECT_SOURCE_DIR} ${ARG_FROM})
  add_library(${name} INTERFACE)
  umlmm_header_root(roots ${name} ${ARG_FROM} ${ARG_FOLDERS})
  foreach(set IN LISTS ARG_GENERATED)
    umlmm_generated(${set} files)
    add_dependencies(${name} umlmm_generate_${set})
    set(sources ${files})
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    list(APPEND ARG_SOURCES ${sources})
    if(NOT files STREQUAL sources)
      list(APPEND roots ${UMLMM_GENERATED_DIR}/${set}/${below})
    endif()
  endforeach()
  if(NOT ARG_SOURCES)
    file(GLOB_RECURSE headers RELATIVE ${roots} FOLLOW_SYMLINKS ${roots}/*.h)
    list(TRANSFORM headers REPLACE "(.+)" "#include \"\\1\"\n")
    list(JOIN headers "" text)
    set(ARG_SOURCES ${CMAKE_CURRENT_BINARY_DIR}/floors/${name}.cpp)
    file(CONFIGURE OUTPUT ${ARG_SOURCES} CONTENT "${text}" @ONLY)
  endif()
  target_include_directories(${name} INTERFACE ${roots})
  target_link_libraries(${name} INTERFACE ${ARG_PUBLIC})
  add_library(${name}_objects OBJECT ${ARG_SOURCES})
  target_compile_features(${name}_objects PRIVATE cxx_std_20)
  target_link_libraries(${name}_objects PRIVATE ${name} ${ARG_PRIVATE} umlmm_settings)
  list(GET ARG_FOLDERS 0 folder)
  umlmm_enter_floor(${name}_objects ${ARG_FROM}/${folder})
endfunction()

# umlmm_enter_floor(target folder): what compiles a folder's sources, for the test of include paths.
function(umlmm_enter_floor target folder)
  file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${folder})
  set(roots $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
  set_property(GLOBAL APPEND PROPERTY UMLMM_FLOORS "${folder}|$<JOIN:${roots},|>")
endfunction()

# Tells the test of include paths, in a file, a floor a line: its folder and where it finds what it includes.
function(umlmm_write_floors)
  get_property(floors GLOBAL PROPERTY UMLMM_FLOORS)
  list(JOIN floors "\n" text)
  file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/floors.txt CONTENT "${text}\n")
endfunction()

# umlmm_library(name [SOURCES file...] [FLOORS floor...] [PUBLIC target...] [PRIVATE target...]
#   [INCLUDE root | FOLDERS folder...] [HEADERS folder...] [EXPORTS file])
#
# A shared library of the house: hidden symbols but for what its headers export, found beside the others at run time. It
# is made of sources, which then are a floor by themselves, and of the objects of floors. Its headers stand in an
# include root of its own or in folders of the project, as those of umlmm_floor; they are installed, as are those of
# HEADERS. EXPORTS is the linker's script of what it exports.
function(umlmm_library name)
  cmake_parse_arguments(ARG "" "INCLUDE;EXPORTS" "SOURCES;FLOORS;PUBLIC;PRIVATE;FOLDERS;HEADERS" ${ARGN})
  add_library(${name} SHARED ${ARG_SOURCES})
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE} umlmm_settings)
  foreach(floor IN LISTS ARG_FLOORS)
    get_target_property(links ${floor}_objects LINK_LIBRARIES)
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:${floor}_objects>)
    target_link_libraries(${name} PRIVATE ${links})
    list(APPEND floor_links ${links})
  endforeach()
  set_target_properties(${name} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${UMLMM_SOVERSION} LINKER_LANGUAGE CXX
    BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN")
  if(ARG_SOURCES)
    umlmm_enter_floor(${name} ${CMAKE_CURRENT_SOURCE_DIR})
  endif()
  if(ARG_FOLDERS)
    umlmm_header_root(ARG_INCLUDE ${name} ${PROJECT_SOURCE_DIR} ${ARG_FOLDERS})
    foreach(folder IN LISTS ARG_FOLDERS)
      install(DIRECTORY ${PROJECT_SOURCE_DIR}/${folder}/ DESTINATION ${UMLMM_INSTALL_INCLUDEDIR}/${folder}
        COMPONENT headers FILES_MATCHING PATTERN "*.h" PATTERN "*.inc")
    endforeach()
  elseif(ARG_INCLUDE)
    list(APPEND ARG_HEADERS ${ARG_INCLUDE}/)
  endif()
  if(ARG_INCLUDE)
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${ARG_INCLUDE}>)
  endif()
  umlmm_publish(${name} HEADERS ${ARG_HEADERS})
  umlmm_pack_library(${name} LIBRARIES ${ARG_PUBLIC} ${ARG_PRIVATE} ${floor_links} OBJECTS ${ARG_FLOORS})
  if(ARG_EXPORTS)
    target_link_options(${name} PRIVATE -Wl,--version-script=${ARG_EXPORTS})
    target_link_options(${name}_wheel PRIVATE -Wl,--version-script=${ARG_EXPORTS})
    set_target_properties(${name} ${name}_wheel PROPERTIES LINK_DEPENDS ${ARG_EXPORTS})
  endif()
endfunction()

# umlmm_publish(target [HEADERS folder...])
#
# Makes a library part of the installed package, as umlmm::target, with the headers in some folders. A folder that ends
# in a slash is an include root.
function(umlmm_publish target)
  cmake_parse_arguments(ARG "" "" "HEADERS" ${ARGN})
  if(ARG_HEADERS)
    install(DIRECTORY ${ARG_HEADERS} DESTINATION ${UMLMM_INSTALL_INCLUDEDIR}
      COMPONENT headers FILES_MATCHING PATTERN "*.h" PATTERN "*.inc")
  endif()
  install(TARGETS ${target} EXPORT umlmm INCLUDES DESTINATION ${UMLMM_INSTALL_INCLUDEDIR})
  install(TARGETS ${target} EXPORT umlmm_debian
    LIBRARY DESTINATION ${UMLMM_DEBIAN_LIBDIR} COMPONENT debian_libraries NAMELINK_COMPONENT debian_development
    EXCLUDE_FROM_ALL INCLUDES DESTINATION ${UMLMM_INSTALL_INCLUDEDIR})
endfunction()

# umlmm_test(name SOURCES file... [DEPENDS target...]): a GoogleTest program, run by ctest.
function(umlmm_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  find_package(GTest REQUIRED)
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} GTest::gtest GTest::gtest_main umlmm_settings)
  add_test(NAME ${name} COMMAND ${name})
endfunction()

# umlmm_benchmark(name SOURCES file... [DEPENDS target...]): a Google Benchmark program.
function(umlmm_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  find_package(benchmark REQUIRED)
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/benchmarks)
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} benchmark::benchmark umlmm_settings)
  add_dependencies(umlmm_benchmarks ${name})
endfunction()

# What scripts do at random they do from fixed seeds, so the order of sets is fixed as well. Python itself is built
# without sanitizers: their libraries have to be there before it starts.
set(UMLMM_PYTHON_ENVIRONMENT
  "PYTHONPATH=${CMAKE_BINARY_DIR}/python" PYTHONDONTWRITEBYTECODE=1 PYTHONHASHSEED=0)
if(UMLMM_SANITIZE)
  set(preloaded)
  set(runtimes libasan.so libubsan.so)
  if(UMLMM_SANITIZE STREQUAL thread)
    set(runtimes libtsan.so)
  endif()
  foreach(library IN LISTS runtimes)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
      OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    list(APPEND preloaded ${path})
  endforeach()
  list(JOIN preloaded " " preloaded)
  list(APPEND UMLMM_PYTHON_ENVIRONMENT "LD_PRELOAD=${preloaded}" ASAN_OPTIONS=detect_leaks=0 PYTHONMALLOC=malloc)
endif()

# umlmm_python_command(name argument...): a test that runs Python with the package of this build. It is left out under
# ThreadSanitizer: scripts hold the interpreter's lock, so there is nothing for it to see.
function(umlmm_python_command name)
  add_test(NAME ${name} COMMAND ${Python3_EXECUTABLE} ${ARGN})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${UMLMM_PYTHON_ENVIRONMENT}")
  if(UMLMM_SANITIZE STREQUAL thread)
    set_tests_properties(${name} PROPERTIES DISABLED TRUE)
  endif()
endfunction()

# umlmm_python_test(name folder): the pytest files of a folder.
function(umlmm_python_test name folder)
  umlmm_python_command(${name} -m pytest ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
endfunction()
