# One step of the package test: cmake -D STEP=<name> ... -P steps.cmake; CMakeLists.txt says what is given.

cmake_minimum_required(VERSION 3.25)
set(prefix ${WORK}/prefix)
set(here ${SOURCE_TREE}/tests/install)
set(strict "-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror")

# must_run(<command>...): stops with what the command printed when it fails; leaves that in `output`.
macro(must_run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\nends with ${result}:\n${output}")
  endif()
endmacro()

# Configures and builds a copy of a project that stands outside this tree.
macro(build_consumer folder)
  get_filename_component(name ${folder} NAME)
  file(REMOVE_RECURSE ${WORK}/${name} ${WORK}/${name}-build)
  file(COPY ${folder} DESTINATION ${WORK})
  must_run(${CMAKE_COMMAND} -S ${WORK}/${name} -B ${WORK}/${name}-build -G ${GENERATOR}
           -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_CXX_COMPILER=${COMPILER}
           -D CMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}
           -D "CMAKE_CXX_FLAGS=${strict}" ${ARGN})
  must_run(${CMAKE_COMMAND} --build ${WORK}/${name}-build)
endmacro()

macro(run_consumer name)
  must_run(${WORK}/${name}-build/${name})
endmacro()

# The program loads our installed libraries, the standard library, and what the pattern names; no more.
macro(must_load_only name pattern)
  set(allowed "linux-vdso|libzorvan-|libstdc\\+\\+|libm|libgcc_s|libc|/lib.*/ld-linux|$")
  if(NOT "${pattern}" STREQUAL "")
    string(PREPEND allowed "${pattern}|")
  endif()
  must_run(ldd ${WORK}/${name}-build/${name})
  if(NOT SHARED)
    # What stands below is loaded whole, since the program is linked with it, and nothing of ours.
    if(output MATCHES "libzorvan-")
      message(FATAL_ERROR "The program ${name} does not hold the library:\n${output}")
    endif()
    set(output "")
  endif()
  string(REPLACE "\n" ";" lines "${output}")
  foreach(line ${lines})
    if(NOT line MATCHES "^[ \t]*(${allowed})")
      message(FATAL_ERROR "The program ${name} loads${line}")
    endif()
    if(line MATCHES "libzorvan-" AND NOT line MATCHES "${prefix}/")
      message(FATAL_ERROR "The program does not use the installed library:${line}")
    endif()
  endforeach()
endmacro()

if(STEP STREQUAL install)
  file(REMOVE_RECURSE ${WORK})
  must_run(${CMAKE_COMMAND} --install ${BUILD_TREE} --prefix ${prefix})

elseif(STEP STREQUAL remove)
  file(REMOVE_RECURSE ${WORK})

elseif(STEP STREQUAL no-internal-header)
  file(GLOB_RECURSE headers RELATIVE ${prefix} ${prefix}/include/*)
  if(NOT "include/zorvan/zorvan.h" IN_LIST headers)
    message(FATAL_ERROR "no header is installed")
  endif()
  foreach(header ${headers})
    if(header MATCHES "/internal/" OR NOT header MATCHES "[.]h$")
      message(FATAL_ERROR "${header} is installed")
    endif()
  endforeach()

elseif(STEP STREQUAL without-toolkits)
  # Without the components of a toolkit nothing of it is installed, whatever the tree was built with.
  set(plain ${WORK}/without-toolkits)
  foreach(component core media playback development)
    must_run(${CMAKE_COMMAND} --install ${BUILD_TREE} --prefix ${plain} --component ${component})
  endforeach()
  file(GLOB_RECURSE files RELATIVE ${plain} ${plain}/*)
  if(NOT "include/zorvan/interface/NSWindow.h" IN_LIST files)
    message(FATAL_ERROR "the headers are not installed")
  endif()
  list(FILTER files EXCLUDE REGEX "/hosts/rows/")
  list(FILTER files INCLUDE REGEX "hosts|-qt|-gtk")
  if(files)
    message(FATAL_ERROR "installed without being asked for: ${files}")
  endif()
  file(WRITE ${WORK}/asks-for-all/CMakeLists.txt
       "cmake_minimum_required(VERSION 3.25)\nproject(AsksForAll LANGUAGES CXX)\n"
       "find_package(Zorvan REQUIRED)\n"
       "file(WRITE \${CMAKE_BINARY_DIR}/all.cpp \"#include <zorvan/zorvan.h>\\nint main() {}\\n\")\n"
       "add_executable(everything \${CMAKE_BINARY_DIR}/all.cpp)\ntarget_link_libraries(everything PRIVATE Zorvan::Zorvan)\n")
  must_run(${CMAKE_COMMAND} -S ${WORK}/asks-for-all -B ${WORK}/asks-for-all/build -G ${GENERATOR}
           -D CMAKE_PREFIX_PATH=${plain} -D CMAKE_CXX_COMPILER=${COMPILER})
  must_run(${CMAKE_COMMAND} --build ${WORK}/asks-for-all/build)

elseif(STEP STREQUAL headers-stand-alone)
  # A project with one file for each header that includes nothing else.
  set(project ${WORK}/headers-stand-alone)
  file(REMOVE_RECURSE ${project})
  file(GLOB_RECURSE headers RELATIVE ${prefix}/include ${prefix}/include/*.h)
  foreach(header ${headers})
    string(MAKE_C_IDENTIFIER ${header} name)
    file(WRITE ${project}/${name}.cpp "#include <${header}>\n")
  endforeach()
  file(WRITE ${project}/CMakeLists.txt
       "cmake_minimum_required(VERSION 3.25)\n"
       "project(HeadersStandAlone LANGUAGES CXX)\n"
       "find_package(Zorvan REQUIRED)\n"
       "file(GLOB sources *.cpp)\n"
       "add_library(headers OBJECT \${sources})\n"
       "set_target_properties(headers PROPERTIES NO_SYSTEM_FROM_IMPORTED ON)\n"
       "target_compile_options(headers PRIVATE -fsyntax-only)\n"
       "target_link_libraries(headers PRIVATE Zorvan::Zorvan)\n"
       # Those for Qt stand on Qt's own; those for GTK declare themselves what they need of it.
       "find_package(PkgConfig REQUIRED)\n"
       "if(TARGET Zorvan::QtModels)\n"
       "  pkg_check_modules(Qt REQUIRED Qt6Gui)\n"
       "  target_include_directories(headers SYSTEM PRIVATE \${Qt_INCLUDE_DIRS})\n"
       "  target_compile_options(headers PRIVATE -fPIC)\n"
       "endif()\n")
  must_run(${CMAKE_COMMAND} -S ${project} -B ${project}-build -G ${GENERATOR}
           -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_CXX_COMPILER=${COMPILER}
           -D "CMAKE_CXX_FLAGS=${strict}")
  must_run(${CMAKE_COMMAND} --build ${project}-build -- -k 0)

elseif(STEP STREQUAL plain-families)
  set(families NumbersGeometry Colour)
  foreach(family ${families})
    if(NOT family IN_LIST COMPONENTS)
      list(REMOVE_ITEM families ${family})
    endif()
  endforeach()
  build_consumer(${here}/plain-families -D "FAMILIES=${families}")
  run_consumer(plain-families)
  must_load_only(plain-families "")

elseif(STEP STREQUAL version)
  # The headers, the CMake package, every pkg-config file and the recipes of other packagers say the same.
  set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
  file(GLOB packages ${prefix}/${LIBDIR}/pkgconfig/*.pc)
  list(TRANSFORM packages REPLACE "(.*/)([^/]+)[.]pc" "\\2")
  must_run(pkg-config --modversion ${packages})
  string(STRIP "${output}" versions)
  string(REPLACE "\n" ";" versions "${versions}")
  list(REMOVE_DUPLICATES versions)
  build_consumer(${here}/version -D "EXPECTED=${versions}")
  foreach(file vcpkg/vcpkg.json conan/conanfile.py)
    file(STRINGS ${SOURCE_TREE}/packaging/${file} line REGEX "version\"?( =|:) \"${versions}\"")
    if(NOT line)
      message(FATAL_ERROR "packaging/${file} is of another version than ${versions}")
    endif()
  endforeach()

elseif(STEP STREQUAL lists)
  # No list model loads what draws, reads files or asks the network's names.
  build_consumer(${here}/lists)
  run_consumer(lists)
  must_load_only(lists "libicu|libtbb|libdl|libpthread|librt")

elseif(STEP STREQUAL every-family)
  build_consumer(${here}/every-family -D "FAMILIES=${COMPONENTS}")
  run_consumer(every-family)

elseif(STEP STREQUAL licences)
  # docs/licences.md names each library that one of ours is linked with.
  file(READ ${SOURCE_TREE}/docs/licences.md page)
  file(GLOB libraries ${prefix}/${LIBDIR}/libzorvan-*.so)
  list(LENGTH libraries count)
  if(count LESS 20)
    message(FATAL_ERROR "only ${count} libraries are installed")
  endif()
  must_run(objdump -p ${libraries})
  string(REGEX MATCHALL "NEEDED +[^\n]+" needed "${output}")
  list(TRANSFORM needed REPLACE "NEEDED +" "")
  list(FILTER needed EXCLUDE REGEX "^libzorvan-")
  list(REMOVE_DUPLICATES needed)
  foreach(library ${needed})
    string(REGEX REPLACE "[.]so[.].*" ".so" any_version ${library})
    string(FIND "${page}" "`${library}`" as_it_is)
    string(FIND "${page}" "`${any_version}`" without_version)
    if(as_it_is EQUAL -1 AND without_version EQUAL -1)
      message(SEND_ERROR "docs/licences.md does not name ${library}")
    endif()
  endforeach()

elseif(STEP STREQUAL unknown-component)
  file(COPY ${here}/plain-families DESTINATION ${WORK}/unknown)
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${WORK}/unknown/plain-families -B ${WORK}/unknown/build
                          -G ${GENERATOR} -D CMAKE_PREFIX_PATH=${prefix} -D FAMILIES=Gardening
                  RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE output)
  if(result EQUAL 0 OR NOT output MATCHES "Gardening")
    message(FATAL_ERROR "A component that does not exist is not refused by its name:\n${output}")
  endif()

elseif(STEP STREQUAL pkg-config)
  set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
  set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
  must_run(pkg-config --print-errors --validate zorvan)
  execute_process(COMMAND pkg-config --cflags --libs zorvan-numbers-geometry OUTPUT_VARIABLE flags)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  file(MAKE_DIRECTORY ${WORK}/pkg-config)
  must_run(${COMPILER} -std=c++20 ${here}/plain-families/plain-families.cpp ${flags}
           -o ${WORK}/pkg-config/one-family)
  must_run(${WORK}/pkg-config/one-family)
  execute_process(COMMAND pkg-config --cflags --libs zorvan OUTPUT_VARIABLE flags)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  must_run(${COMPILER} -std=c++20 ${here}/every-family/every-family.cpp ${flags}
           -o ${WORK}/pkg-config/every-family)
  must_run(${WORK}/pkg-config/every-family)
  # The models of a toolkit bring along where its headers are.
  foreach(header qt-models/QtListModel.h gtk-models/GtkListModel.h)
    get_filename_component(models ${header} DIRECTORY)
    if(EXISTS ${prefix}/${LIBDIR}/pkgconfig/zorvan-${models}.pc)
      must_run(pkg-config --cflags zorvan-${models})
      separate_arguments(flags UNIX_COMMAND "${output}")
      string(REPLACE "-" "" header ${header})
      must_run(${COMPILER} -std=c++20 -fPIC -fsyntax-only ${flags} -x c++ ${prefix}/include/zorvan/hosts/${header})
    endif()
  endforeach()

elseif(STEP STREQUAL readme)
  # The example that README.md shows is the one that is built here.
  file(READ ${SOURCE_TREE}/examples/readme/readme.cpp code)
  file(READ ${SOURCE_TREE}/README.md text)
  string(FIND "${text}" "${code}" position)
  if(position EQUAL -1)
    message(FATAL_ERROR "README.md does not show examples/readme/readme.cpp as it is")
  endif()
  build_consumer(${SOURCE_TREE}/examples/readme)
  if(NOT SHARED)
    must_load_only(readme "")
  endif()
  file(MAKE_DIRECTORY ${WORK}/thumbnails)
  must_run(${WORK}/readme-build/readme ${SOURCE_TREE}/examples/samples ${WORK}/thumbnails)
  foreach(name "exif" "exif (0)" "orientation-6")
    file(READ "${WORK}/thumbnails/${name}.png" signature LIMIT 8 HEX)
    if(NOT signature STREQUAL 89504e470d0a1a0a)
      message(FATAL_ERROR "The example has not written ${name}.png")
    endif()
  endforeach()

elseif(STEP STREQUAL manual)
  file(GLOB pages ${prefix}/share/man/man1/*)
  if(NOT pages)
    message(FATAL_ERROR "no manual page is installed")
  endif()
  foreach(page ${pages})
    must_run(${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z ${page})
    if(output MATCHES "warning|troff:")
      message(FATAL_ERROR "${page}:\n${output}")
    endif()
    # It has every option of the program, and no other.
    string(REGEX REPLACE ".*/([^/]+)[.]1.*" "\\1" program ${page})
    must_run(${prefix}/bin/${program} --help)
    string(REGEX MATCHALL "--[a-z-]+" options "${output}")
    must_run(${CMAKE_COMMAND} -E env LC_ALL=C MANWIDTH=80 man -l ${page})
    string(REGEX MATCHALL "--[a-z-]+" described "${output}")
    foreach(list options described)
      list(REMOVE_DUPLICATES ${list})
      list(SORT ${list})
    endforeach()
    if(NOT "${options}" STREQUAL "${described}")
      message(FATAL_ERROR "${program} --help has ${options}\nand its manual page ${described}")
    endif()
  endforeach()

elseif(STEP STREQUAL desktop)
  set(entry ${prefix}/share/applications/org.zorvan.Shelf.desktop)
  must_run(desktop-file-validate ${entry})
  # Later validators end with an error for a warning, such as that there is no page of the project's own.
  execute_process(COMMAND appstreamcli validate --no-net ${prefix}/share/metainfo/org.zorvan.Shelf.metainfo.xml
    OUTPUT_VARIABLE said ERROR_VARIABLE said)
  if(NOT said MATCHES "[Vv]alidation" OR said MATCHES "(^|\n)E:")
    message(FATAL_ERROR "${said}")
  endif()
  # What it names is installed with it.
  file(STRINGS ${entry} lines REGEX "^(Exec|Icon)=")
  list(TRANSFORM lines REPLACE "^Exec=([^ ]+).*" "bin/\\1")
  list(TRANSFORM lines REPLACE "^Icon=(.+)" "share/icons/hicolor/scalable/apps/\\1.svg")
  foreach(file ${lines})
    if(NOT EXISTS ${prefix}/${file})
      message(FATAL_ERROR "${file} is not installed")
    endif()
  endforeach()

elseif(STEP STREQUAL follow)
  build_consumer(${SOURCE_TREE}/examples/follow)
  set(ENV{XDG_CONFIG_HOME} ${WORK}/settings)
  must_run(${WORK}/follow-build/follow -5)

elseif(STEP MATCHES "^(address-book|qt-filter|qml-filter|gtk-million)$")
  # An example that draws its window without a screen. The pictures of the guide are made so:
  # ZORVAN_PICTURES=$PWD/docs/images ctest --test-dir build/release -R install
  build_consumer(${SOURCE_TREE}/examples/${STEP})
  set(screen ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software)
  if(STEP STREQUAL gtk-million)
    set(screen xvfb-run -a ${CMAKE_COMMAND} -E env GDK_BACKEND=x11 GSK_RENDERER=cairo)
  endif()
  must_run(${screen} ${WORK}/${STEP}-build/${STEP} ${WORK}/${STEP}.png)
  file(SIZE ${WORK}/${STEP}.png size)
  if(size LESS 5000)
    message(FATAL_ERROR "The example has drawn next to nothing: ${size} bytes")
  endif()
  if(DEFINED ENV{ZORVAN_PICTURES})
    file(COPY ${WORK}/${STEP}.png DESTINATION $ENV{ZORVAN_PICTURES})
  endif()

else()
  message(FATAL_ERROR "There is no step ${STEP}")
endif()
