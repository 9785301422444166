# Which runtime package a component's library goes into, and which toolkit it wants.

set(ZORVAN_PACKAGE_media
    AppKit Drawing FFmpegMedia Graphics HeifPictures ImageIO Interface JxlPictures Media MediaAssets MediaFiles MediaImages MediaValues
    MovieFrames TextDrawing)
set(ZORVAN_PACKAGE_playback MediaPlayback MpvPlayback Playback)
set(ZORVAN_PACKAGE_windows QtHost)
set(ZORVAN_PACKAGE_qt-models QtModels)
set(ZORVAN_PACKAGE_gtk-models GtkModels)

# zorvan_package_of(<Component> <result>): core for the components that no list names.
function(zorvan_package_of component result)
  set(${result} core PARENT_SCOPE)
  foreach(package media playback windows qt-models gtk-models)
    if(component IN_LIST ZORVAN_PACKAGE_${package})
      set(${result} ${package} PARENT_SCOPE)
    endif()
  endforeach()
endfunction()

# zorvan_toolkit_of(<Component> <result>): -qt, -gtk, or nothing.
function(zorvan_toolkit_of component result)
  zorvan_package_of(${component} package)
  set(${result} "" PARENT_SCOPE)
  if(package MATCHES "^(windows|qt-models)$")
    set(${result} -qt PARENT_SCOPE)
  elseif(package STREQUAL "gtk-models")
    set(${result} -gtk PARENT_SCOPE)
  endif()
endfunction()
