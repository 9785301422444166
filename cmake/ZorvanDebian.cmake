# Debian packages by CPack: the libraries in one package for each group that people want apart, one package
# for building against them, one of documents, and the shelf program.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zorvan)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR Zorvan)
set(CPACK_PACKAGE_CONTACT "Zorvan developers <developers@zorvan.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
get_property(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS GLOBAL PROPERTY ZORVAN_LIBRARY_FOLDERS)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(so_version ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(control ${PROJECT_BINARY_DIR}/debian)
configure_file(${PROJECT_SOURCE_DIR}/packaging/changelog.in ${control}/changelog.Debian @ONLY)
execute_process(COMMAND gzip -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md OUTPUT_FILE ${control}/changelog.gz)
execute_process(COMMAND gzip -9nf ${control}/changelog.Debian)

# zorvan_debian_package(<component> <package> SECTION <section> SUMMARY <text> TEXT <text>
#                       [DEPENDS <text>] [RECOMMENDS <text>])
function(zorvan_debian_package component package)
  cmake_parse_arguments(arg "" "SECTION;SUMMARY;TEXT;DEPENDS;RECOMMENDS" "" ${ARGN})
  string(TOUPPER ${component} name)
  foreach(pair PACKAGE_NAME|${package} PACKAGE_SECTION|${arg_SECTION} PACKAGE_DEPENDS|${arg_DEPENDS}
               PACKAGE_RECOMMENDS|${arg_RECOMMENDS})
    string(REPLACE "|" ";" pair "${pair}")
    list(GET pair 0 key)
    list(GET pair 1 value)
    if(value)
      set(CPACK_DEBIAN_${name}_${key} "${value}" PARENT_SCOPE)
    endif()
  endforeach()
  set(CPACK_COMPONENT_${name}_DESCRIPTION "${arg_SUMMARY}\n${arg_TEXT}" PARENT_SCOPE)
  set(CPACK_COMPONENT_${name}_GROUP ${component} PARENT_SCOPE)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
  install(FILES ${control}/changelog.gz ${control}/changelog.Debian.gz ${PROJECT_SOURCE_DIR}/packaging/copyright
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endfunction()

# zorvan_debian_libraries(<component> SUMMARY <text> TEXT <text> [DEPENDS ...] [RECOMMENDS ...]): a runtime
# package, which everything that builds against the library wants.
macro(zorvan_debian_libraries component)
  set(package libzorvan-${component}${so_version})
  zorvan_debian_package(${component} ${package} SECTION libs ${ARGN})
  string(APPEND runtime_packages "${package} (= ${version}), ")
  # What the loader and the builders of other packages are told.
  file(WRITE ${control}/${component}/triggers "activate-noawait ldconfig\n")
  file(WRITE ${control}/${component}/shlibs "")
  get_property(libraries GLOBAL PROPERTY ZORVAN_LIBRARIES_${component})
  foreach(library ${libraries})
    file(APPEND ${control}/${component}/shlibs "lib${library} ${so_version} ${package} (= ${version})\n")
  endforeach()
  string(TOUPPER ${component} name)
  set(CPACK_DEBIAN_${name}_PACKAGE_CONTROL_EXTRA ${control}/${component}/triggers ${control}/${component}/shlibs)
endmacro()

set(CPACK_COMPONENTS_ALL "")
set(runtime_packages "")
set(core "libzorvan-core${so_version} (= ${version})")
set(media "libzorvan-media${so_version} (= ${version})")
zorvan_debian_libraries(core
  SUMMARY "toolkit library for desktop applications - core"
  TEXT "Geometry, colours, text, settings, secrets, list models, notifications and files."
  RECOMMENDS "shared-mime-info")
set(recommended librsvg2-2)
if(ZORVAN_HEIC)
  string(APPEND recommended ", libheif-plugin-dav1d, libheif-plugin-libde265, libheif-plugin-x265")
endif()
zorvan_debian_libraries(media
  SUMMARY "toolkit library for desktop applications - pictures and views"
  TEXT "Pictures, drawing, what is in a movie, and the views of windows without a display."
  DEPENDS "${core}"
  RECOMMENDS "${recommended}")
if(ZORVAN_PLAYBACK)
  zorvan_debian_libraries(playback
    SUMMARY "toolkit library for desktop applications - movie player"
    TEXT "Plays movies into pictures."
    DEPENDS "${core}, ${media}")
endif()
set(development_components development)
if(ZORVAN_QT)
  zorvan_debian_libraries(windows
    SUMMARY "toolkit library for desktop applications - windows"
    TEXT "Shows the windows of the library on the desktop, through Qt."
    DEPENDS "${core}, ${media}")
endif()
if(TARGET QtModels)
  zorvan_debian_libraries(qt-models
    SUMMARY "toolkit library for desktop applications - models for Qt"
    TEXT "Gives the library's lists to the views of Qt and QML."
    DEPENDS "${core}, ${media}")
endif()
if(TARGET GtkModels)
  zorvan_debian_libraries(gtk-models
    SUMMARY "toolkit library for desktop applications - models for GTK"
    TEXT "Gives the library's lists to the views of GTK 4."
    DEPENDS "${core}, ${media}")
endif()
string(REGEX REPLACE ", $" "" runtime_packages "${runtime_packages}")
zorvan_debian_package(development libzorvan-dev SECTION libdevel
  SUMMARY "toolkit library for desktop applications - development files"
  TEXT "Headers, the CMake package and the pkg-config files."
  DEPENDS "${runtime_packages}")
foreach(toolkit qt gtk)
  string(TOUPPER ${toolkit} name)
  set(CPACK_COMPONENT_DEVELOPMENT-${name}_GROUP development)
  list(APPEND CPACK_COMPONENTS_ALL development-${toolkit})
endforeach()
zorvan_debian_package(documents libzorvan-doc SECTION doc
  SUMMARY "toolkit library for desktop applications - documents"
  TEXT "The guide of each family, the conventions and the architecture.")
set(CPACK_DEBIAN_DOCUMENTS_PACKAGE_ARCHITECTURE all)
set(documents ${CMAKE_INSTALL_DATADIR}/doc/libzorvan-doc)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples DESTINATION ${documents}
        COMPONENT documents PATTERN __pycache__ EXCLUDE)
# With all that they refer to.
foreach(file README.md CHANGELOG.md CONTRIBUTING.md packages.txt cmake/ZorvanTargets.cmake
             tests/interface/golden/tinted-buttons@2x.png)
  cmake_path(GET file PARENT_PATH folder)
  install(FILES ${PROJECT_SOURCE_DIR}/${file} DESTINATION ${documents}/${folder} COMPONENT documents)
endforeach()
# What each library is linked with, which `./run package` writes before it packs.
install(FILES ${PROJECT_BINARY_DIR}/zorvan.spdx.json
        DESTINATION ${documents} COMPONENT documents OPTIONAL)
zorvan_debian_package(shelf zorvan-shelf SECTION graphics
  SUMMARY "contact sheets and smaller copies of pictures"
  TEXT "Lists pictures and movies, and writes contact sheets of them."
  DEPENDS "${core}, ${media}")
if(ZORVAN_QT)
  zorvan_debian_package(shelf-window zorvan-shelf-window SECTION graphics
    SUMMARY "window that shows pictures and movies"
    TEXT "Shows the pictures and movies of a folder, upright however the camera was held."
    DEPENDS "${core}, ${media}, libzorvan-windows${so_version} (= ${version})")
endif()

include(CPack)
