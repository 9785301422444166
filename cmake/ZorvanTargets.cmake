# How the project's targets are made: libraries, tests, benchmarks and fuzz targets.

add_library(zorvan_build_flags INTERFACE)
target_compile_options(zorvan_build_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion
                                                    $<$<BOOL:${ZORVAN_WERROR}>:-Werror>)
# What is compared exactly must not depend on whether the processor multiplies and adds in one step.
target_compile_options(zorvan_build_flags INTERFACE -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 sees overlaps in std::string's operator+ that are not there (its bug 105651).
  target_compile_options(zorvan_build_flags INTERFACE -Wno-restrict)
  # It takes the moved-from alternatives of a variant for uninitialised, up to g++ 14.
  target_compile_options(zorvan_build_flags INTERFACE -Wno-maybe-uninitialized)
  # A library's own functions may be inlined into each other, as clang does by itself.
  target_compile_options(zorvan_build_flags INTERFACE -fno-semantic-interposition)
endif()
if(ZORVAN_SANITIZE)
  target_compile_options(zorvan_build_flags INTERFACE -fsanitize=${ZORVAN_SANITIZE}
                                                      -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(zorvan_build_flags INTERFACE -fsanitize=${ZORVAN_SANITIZE})
endif()

# zorvan_add_folders(<folder>...): adds each folder below the root.
macro(zorvan_add_folders)
  foreach(folder ${ARGN})
    if(EXISTS ${PROJECT_SOURCE_DIR}/${folder}/CMakeLists.txt)
      add_subdirectory(${PROJECT_SOURCE_DIR}/${folder})
    endif()
  endforeach()
endmacro()

# The file name of a component, without prefix and suffix: NumbersGeometry is zorvan-numbers-geometry.
function(zorvan_library_name component result)
  string(REGEX REPLACE "([a-z])([A-Z])" "\\1-\\2" dashed ${component})
  string(TOLOWER zorvan-${dashed} name)
  set(${result} ${name} PARENT_SCOPE)
endfunction()

# zorvan_install_library(<Component>): with the runtime package that ZorvanPackages.cmake puts it in.
function(zorvan_install_library component)
  zorvan_package_of(${component} package)
  zorvan_toolkit_of(${component} toolkit)
  install(TARGETS ${component} EXPORT Zorvan${toolkit}Targets
          LIBRARY COMPONENT ${package} NAMELINK_COMPONENT development${toolkit}
          ARCHIVE COMPONENT development${toolkit})
  set_property(GLOBAL APPEND PROPERTY ZORVAN_LIBRARY_FOLDERS ${CMAKE_CURRENT_BINARY_DIR})
  get_target_property(library ${component} OUTPUT_NAME)
  set_property(GLOBAL APPEND PROPERTY ZORVAN_LIBRARIES_${package} ${library})
  get_property(toolkits GLOBAL PROPERTY ZORVAN_TOOLKITS)
  if(toolkit AND NOT toolkit IN_LIST toolkits)
    set_property(GLOBAL APPEND PROPERTY ZORVAN_TOOLKITS ${toolkit})
  endif()
  if(toolkit)
    # What wants a toolkit comes with its headers, and only with it.
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder} COMPONENT development${toolkit})
  endif()
endfunction()

# zorvan_install_exports(): what find_package reads; for each toolkit a file of its own.
function(zorvan_install_exports)
  get_property(toolkits GLOBAL PROPERTY ZORVAN_TOOLKITS)
  foreach(toolkit "" ${toolkits})
    install(EXPORT Zorvan${toolkit}Targets NAMESPACE Zorvan::
            DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zorvan COMPONENT development${toolkit})
  endforeach()
endfunction()

# zorvan_library(<Component> [APART|LOADED] [CLOSED] SOURCES <file>... [USES <Component>...]
#                [SHOWS <pkg-config module>...] [NEEDS <pkg-config module>...])
#
# Makes the library Zorvan::<Component>, one of those that Zorvan::Zorvan stands for unless it is APART, or LOADED by
# its first use. No other library has a use for the namespace `internal` of one that is CLOSED.
# USES names the components of this library that its headers include; SHOWS names the toolkit whose headers they
# include; NEEDS names third-party modules, which stay private to the .cpp files.
function(zorvan_library component)
  cmake_parse_arguments(arg "APART;LOADED;CLOSED" "" "SOURCES;USES;SHOWS;NEEDS" ${ARGN})
  set(exports OPEN)
  if(arg_LOADED)
    set(exports LOADED)
  elseif(arg_CLOSED)
    set(exports CLOSED)
  endif()
  zorvan_library_name(${component} library)
  add_library(${component} ${arg_SOURCES})
  add_library(Zorvan::${component} ALIAS ${component})
  # Toolkits name all that they stand on, which only some compilers leave out by themselves. What a library exports it
  # still uses itself, without a search for it at the start of a program.
  target_link_options(${component} PRIVATE
    -Wl,--as-needed -Wl,-O1 -Wl,--hash-style=gnu -Wl,-Bsymbolic-functions)
  zorvan_limit_exports(${component} ${exports})
  set_target_properties(${component} PROPERTIES
    OUTPUT_NAME ${library} VERSION ${PROJECT_VERSION}
    # Before 1.0 a minor version may change the binary interface.
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    INSTALL_RPATH "$ORIGIN"
    # Also where it is static, for programs that load plug-ins made of it.
    POSITION_INDEPENDENT_CODE ON)
  target_compile_features(${component} PUBLIC cxx_std_20)
  target_include_directories(${component} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  list(TRANSFORM arg_USES PREPEND Zorvan:: OUTPUT_VARIABLE used)
  target_link_libraries(${component} PUBLIC ${used}
                        PRIVATE $<BUILD_INTERFACE:zorvan_build_flags> Threads::Threads)
  foreach(module ${arg_SHOWS} ${arg_NEEDS})
    string(MAKE_C_IDENTIFIER ${module} name)
    pkg_check_modules(${name} REQUIRED IMPORTED_TARGET ${module})
    target_link_libraries(${component} PRIVATE PkgConfig::${name})
    set_property(GLOBAL APPEND PROPERTY ZORVAN_MODULES ${module})
  endforeach()
  set_property(TARGET ${component} PROPERTY ZORVAN_USES ${arg_USES})
  set_property(TARGET ${component} PROPERTY ZORVAN_NEEDS ${arg_NEEDS})
  set_property(TARGET ${component} PROPERTY ZORVAN_SHOWS ${arg_SHOWS})
  zorvan_install_library(${component})
  set_property(GLOBAL APPEND PROPERTY ZORVAN_ALL_LIBRARIES ${component})
  if(NOT arg_APART AND NOT arg_LOADED)
    set_property(GLOBAL APPEND PROPERTY ZORVAN_COMPONENTS ${component})
  endif()
endfunction()

# zorvan_load_by_use(<Component> <Loaded> <MACRO> [<wanted>]): the component finds functions of Loaded by
# ZORVAN_FUNCTION(MACRO, ...), so that a program loads it by the first call. Static libraries hold it. In a build
# without it there are none, and the log is told what is wanted.
function(zorvan_load_by_use component loaded macro)
  if(NOT TARGET ${loaded})
    target_compile_definitions(${component} PRIVATE ${macro}=LEFT_OUT,"${ARGV3}")
  elseif(BUILD_SHARED_LIBS)
    target_compile_definitions(${component} PRIVATE ${macro}=BESIDE,"$<TARGET_SONAME_FILE_NAME:${loaded}>")
    target_link_libraries(${component} PRIVATE ${CMAKE_DL_LIBS})
  else()
    target_compile_definitions(${component} PRIVATE ${macro}=LINKED,"")
    target_link_libraries(${component} PRIVATE Zorvan::${loaded})
  endif()
endfunction()

# zorvan_build_along(<target> <Loaded>...): what a program loads by its use is there when it is built.
function(zorvan_build_along target)
  foreach(loaded ${ARGN})
    if(TARGET ${loaded})
      add_dependencies(${target} ${loaded})
    endif()
  endforeach()
endfunction()

# zorvan_names(<result> <Component>...): the file names of components, with spaces between them.
function(zorvan_names result)
  set(names "")
  foreach(component ${ARGN})
    zorvan_library_name(${component} name)
    list(APPEND names ${name})
  endforeach()
  list(JOIN names " " names)
  set(${result} "${names}" PARENT_SCOPE)
endfunction()

# zorvan_write_pkg_config(<Component>): when all is known of it. A static library asks for all that it stands on,
# which a shared one keeps to itself.
function(zorvan_write_pkg_config component)
  zorvan_library_name(${component} library)
  zorvan_toolkit_of(${component} toolkit)
  get_property(required TARGET ${component} PROPERTY ZORVAN_USES)
  get_property(modules TARGET ${component} PROPERTY ZORVAN_SHOWS)
  if(NOT BUILD_SHARED_LIBS)
    get_target_property(linked ${component} LINK_LIBRARIES)
    list(FILTER linked INCLUDE REGEX "^Zorvan::")
    list(TRANSFORM linked REPLACE "^Zorvan::" "")
    list(APPEND required ${linked})
    list(REMOVE_DUPLICATES required)
    get_property(needed TARGET ${component} PROPERTY ZORVAN_NEEDS)
    list(APPEND modules ${needed})
  endif()
  zorvan_names(names ${required})
  list(JOIN modules " " modules)
  string(STRIP "${names} ${modules}" ZORVAN_PC_REQUIRES)
  set(ZORVAN_PC_NAME ${library})
  file(RELATIVE_PATH ZORVAN_PC_UP /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/zorvan.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development${toolkit})
endfunction()

# zorvan_finish_library(): what stands for all components: Zorvan::Zorvan, the headers that include a
# whole family or everything, and the package files.
function(zorvan_finish_library)
  get_property(components GLOBAL PROPERTY ZORVAN_COMPONENTS)
  add_library(Zorvan INTERFACE)
  add_library(Zorvan::Zorvan ALIAS Zorvan)
  target_link_libraries(Zorvan INTERFACE ${components})
  install(TARGETS Zorvan EXPORT ZorvanTargets COMPONENT development)
  get_property(libraries GLOBAL PROPERTY ZORVAN_ALL_LIBRARIES)
  foreach(component ${libraries})
    zorvan_write_pkg_config(${component})
  endforeach()
  set(ZORVAN_MODULES "")
  if(NOT BUILD_SHARED_LIBS)
    get_property(ZORVAN_MODULES GLOBAL PROPERTY ZORVAN_MODULES)
    list(REMOVE_DUPLICATES ZORVAN_MODULES)
  endif()
  set(ZORVAN_LEFT_OUT "")
  foreach(switch ZORVAN_PLAYBACK ZORVAN_MOVIES ZORVAN_HEIC ZORVAN_SECRET_SERVICE)
    if(NOT ${switch})
      list(TRANSFORM ${switch}_COMPONENTS APPEND =${switch} OUTPUT_VARIABLE components_left_out)
      list(APPEND ZORVAN_LEFT_OUT ${components_left_out})
    endif()
  endforeach()
  include(CMakePackageConfigHelpers)
  configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/ZorvanConfig.cmake.in ${PROJECT_BINARY_DIR}/ZorvanConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zorvan)
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZorvanConfigVersion.cmake
                                   COMPATIBILITY SameMinorVersion)
  zorvan_install_exports()
  install(FILES ${PROJECT_BINARY_DIR}/ZorvanConfig.cmake ${PROJECT_BINARY_DIR}/ZorvanConfigVersion.cmake
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zorvan COMPONENT development)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/zorvan DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
          FILES_MATCHING PATTERN "*.h" PATTERN internal EXCLUDE
          # What wants a toolkit comes with its library.
          REGEX "/hosts/([^/]*[.]h|qtmodels|gtkmodels)$" EXCLUDE)
  zorvan_write_gathering_headers()
  zorvan_names(ZORVAN_PC_REQUIRES ${components})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/zorvan-all.pc.in ${PROJECT_BINARY_DIR}/zorvan.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/zorvan.pc
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

# zorvan_read_example(<family> <result>): the comment that a family's header opens with: what its example in
# examples/families says and does, and what that prints, as the tests know it.
function(zorvan_read_example family result)
  set(example ${PROJECT_SOURCE_DIR}/examples/families/${family})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${example}.cpp ${example}.out)
  file(READ ${example}.cpp text)
  file(READ ${example}.out printed)
  string(REGEX MATCH "^(//[^\n]*\n)+" head "${text}")
  string(REGEX REPLACE ".*using namespace zorvan;\n+" "" code "${text}")
  foreach(block code printed)
    string(REGEX REPLACE "(^|\n)([^\n]+)" "\\1    \\2" ${block} "${${block}}")
    string(REGEX REPLACE "([^\n]*)\n" "//\\1\n" ${block} "${${block}}")
  endforeach()
  set(${result} "${head}//\n${code}//\n// prints\n//\n${printed}\n" PARENT_SCOPE)
endfunction()

# Writes <zorvan/FAMILY.h> for every family, and <zorvan/zorvan.h> for all of them and the services. They
# are made from what the folders hold, so that no header can be left out. Hosts stand apart: each of their
# headers wants a toolkit.
function(zorvan_write_gathering_headers)
  file(GLOB stale ${PROJECT_BINARY_DIR}/include/zorvan/*.h)
  file(GLOB entries RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/zorvan/*)
  foreach(entry ${entries})
    get_filename_component(family ${entry} NAME)
    if(family STREQUAL hosts)
      continue()
    endif()
    zorvan_list_headers(${entry} headers)
    if(headers AND NOT family STREQUAL platform)
      list(JOIN headers "" ZORVAN_INCLUDES)
      zorvan_read_example(${family} ZORVAN_EXAMPLE)
      zorvan_write_gathering_header(${family})
      list(REMOVE_ITEM stale ${PROJECT_BINARY_DIR}/include/zorvan/${family}.h)
      string(APPEND everything ${ZORVAN_INCLUDES})
    elseif(headers)
      list(JOIN headers "" platform)
    endif()
  endforeach()
  set(ZORVAN_EXAMPLE "// Everything. The header of each family has an example.\n")
  set(ZORVAN_INCLUDES "${everything}${platform}#include <zorvan/version.h>\n")
  zorvan_write_gathering_header(zorvan)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.h.in ${PROJECT_BINARY_DIR}/include/zorvan/version.h @ONLY)
  list(REMOVE_ITEM stale ${PROJECT_BINARY_DIR}/include/zorvan/zorvan.h ${PROJECT_BINARY_DIR}/include/zorvan/version.h)
  if(stale)
    file(REMOVE ${stale})
  endif()
  install(DIRECTORY ${PROJECT_BINARY_DIR}/include/zorvan DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
          COMPONENT development)
endfunction()

# zorvan_list_headers(<folder> <result>): the #include lines of the public headers in and below a folder.
function(zorvan_list_headers folder result)
  file(GLOB_RECURSE headers RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS
       ${PROJECT_SOURCE_DIR}/${folder}/*.h)
  list(FILTER headers EXCLUDE REGEX "/internal/")
  list(TRANSFORM headers REPLACE "(.+)" "#include <\\1>\n")
  set(${result} ${headers} PARENT_SCOPE)
endfunction()

function(zorvan_write_gathering_header name)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/gathering-header.h.in
                 ${PROJECT_BINARY_DIR}/include/zorvan/${name}.h @ONLY)
endfunction()

# How tests look for leaks. What dlopen gives a thread of its own is found without the interceptor, too; with it the
# search reads wild addresses, and fails, where such a block happens to begin at the 16th byte of a page.
set(ZORVAN_LEAK_OPTIONS
    "LSAN_OPTIONS=print_suppressions=0:intercept_tls_get_addr=0:suppressions=${PROJECT_SOURCE_DIR}/cmake/leaks.supp")

# zorvan_test(<name> SOURCES <file>... USES <Component>... [NEEDS <pkg-config module>...])
function(zorvan_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;USES;NEEDS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  zorvan_link_program(${name} GTest::gmock GTest::gtest_main)
  # It is the library that is tried as optimised as it is installed; its tests compile a third faster so.
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O1>)
  gtest_discover_tests(${name} TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300
    ENVIRONMENT "${ZORVAN_LEAK_OPTIONS}"
    # Another property, because a list does not survive the discovery.
    ENVIRONMENT_MODIFICATION "TSAN_OPTIONS=set:suppressions=${PROJECT_SOURCE_DIR}/cmake/threads.supp:die_after_fork=0")
endfunction()

# zorvan_bench(<name> SOURCES <file>... USES <Component>... [NEEDS <pkg-config module of a peer>...])
function(zorvan_bench name)
  cmake_parse_arguments(arg "" "" "SOURCES;USES;NEEDS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  zorvan_link_program(${name} benchmark::benchmark)
endfunction()

# zorvan_fuzz(<name> SOURCES <file>... USES <Component>...): a libFuzzer program.
function(zorvan_fuzz name)
  cmake_parse_arguments(arg "" "" "SOURCES;USES;NEEDS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  zorvan_link_program(${name})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/fuzzers)
endfunction()

macro(zorvan_link_program name)
  list(TRANSFORM arg_USES PREPEND Zorvan:: OUTPUT_VARIABLE used)
  target_link_libraries(${name} PRIVATE zorvan_build_flags ${used} Threads::Threads ${ARGN})
  foreach(module ${arg_NEEDS})
    string(MAKE_C_IDENTIFIER ${module} module_name)
    pkg_check_modules(${module_name} REQUIRED IMPORTED_TARGET ${module})
    target_link_libraries(${name} PRIVATE PkgConfig::${module_name})
  endforeach()
endmacro()
