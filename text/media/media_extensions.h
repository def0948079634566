// The extensions by which a file name counts as an image, a sound or a video. Each has its leading
// dot and no other, lower case, and a digit or an ASCII letter after the dot.
//
// A changed entry changes what a report shows. The counts below catch a slip.
#pragma once

#include <iterator>

namespace text {

using extension_text = const char *;

inline constexpr extension_text image_extensions[] = {
#include "text/media/media_extensions_image.inc"
};
inline constexpr extension_text audio_extensions[] = {
#include "text/media/media_extensions_audio.inc"
};
inline constexpr extension_text video_extensions[] = {
#include "text/media/media_extensions_video.inc"
};

static_assert(std::size(image_extensions) == 570, "an image extension was lost or added");
static_assert(std::size(audio_extensions) == 571, "an audio extension was lost or added");
static_assert(std::size(video_extensions) == 136, "a video extension was lost or added");

} // namespace text
