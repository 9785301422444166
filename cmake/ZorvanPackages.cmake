# Which runtime package a component's library goes into, and which toolkit it wants.

set(ZORVAN_PACKAGE_media
    AppKit CairoDrawing Drawing FFmpegMedia GifPictures Graphics HeifPictures ImageIO Interface JxlPictures Media
    MediaAssets MediaFiles MediaImages MediaValues MovieFrames TextDrawing TiffPictures WebpPictures)
set(ZORVAN_PACKAGE_playback MediaPlayback MpvPlayback Playback)
if(NOT ZORVAN_PLAYBACK)
  # What is left of it refuses every movie, for programs that only may play some.
  list(APPEND ZORVAN_PACKAGE_media ${ZORVAN_PACKAGE_playback})
  set(ZORVAN_PACKAGE_playback "")
endif()
set(ZORVAN_PACKAGE_windows QtHost)
set(ZORVAN_PACKAGE_qt-models QtModels)
set(ZORVAN_PACKAGE_gtk-models GtkModels)

# The components that are of no use without what a switch builds.
set(ZORVAN_PLAYBACK_COMPONENTS MediaPlayback MpvPlayback Playback)
set(ZORVAN_MOVIES_COMPONENTS FFmpegMedia MediaAssets MediaFiles MediaImages MovieFrames)
set(ZORVAN_HEIC_COMPONENTS HeifPictures)
set(ZORVAN_SECRET_SERVICE_COMPONENTS SecretServiceKeyring)

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
