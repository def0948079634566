// Tells by its extension whether a file name is that of an image, a sound or a video.
#pragma once

#include "run/cancellation.h"

#include <QString>
#include <QStringList>

#include <array>

namespace text {

// Read-only after construction. What follows the last "." of the trimmed name counts, in any case.
// Every answer is false while the run is cancelled.
class media_kind
{
public:
    media_kind();

    [[nodiscard]] bool is_image(const QString &file_name, const run::cancellation &cancelled) const;
    [[nodiscard]] bool is_audio(const QString &file_name, const run::cancellation &cancelled) const;
    // Also true for a sound whose extension begins with a letter: the host lists both together.
    [[nodiscard]] bool is_video(const QString &file_name, const run::cancellation &cancelled) const;

private:
    // One list per first character after the dot: "0" to "9", then "a" to "z".
    using extension_buckets = std::array<QStringList, 36>;

    void initialize_image_extension_list();
    void initialize_audio_extension_list();
    void initialize_video_extension_list();
    [[nodiscard]] static bool is_listed(const QString &suffix, const extension_buckets &buckets,
                                        const run::cancellation &cancelled);

    extension_buckets image_extensions_;
    extension_buckets video_extensions_;
    extension_buckets audio_extensions_;
};

} // namespace text
