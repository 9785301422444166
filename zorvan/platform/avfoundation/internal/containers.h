#pragma once

namespace zorvan::avfoundation {

/// The containers that are read, by FFmpeg's names, separated by commas. Not among them are
/// playlists and all else that would have other files opened, plain text, and pictures.
inline constexpr const char* readContainers =
    "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm,avi,mpegts,mpeg,mpegvideo,flv,ogg,asf,mxf,dv,nut,ivf,"
    "gxf,"
    "rm,h264,hevc,m4v,wav,w64,aiff,au,caf,mp3,aac,flac,ac3,eac3,amr";

} // namespace zorvan::avfoundation
