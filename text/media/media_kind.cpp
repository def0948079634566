#include "text/media/media_kind.h"

#include "text/media/media_extensions.h"

#include <QStringView>

namespace text {

namespace {

constexpr int no_bucket = -1;

int bucket_of(QChar first)
{
    const ushort code = first.unicode();
    if (code >= '0' && code <= '9')
        return code - '0';
    if (code >= 'a' && code <= 'z')
        return 10 + code - 'a';
    return no_bucket;
}

template <typename buckets_type, size_t count>
void append_extensions(buckets_type *buckets, const extension_text (&extensions)[count])
{
    for (const extension_text extension : extensions) {
        const int bucket = bucket_of(QLatin1Char(extension[1]));
        (*buckets)[static_cast<size_t>(bucket)].append(QLatin1String(extension));
    }
}

// What follows the last "." of the trimmed name, in lower case; empty when there is nothing.
QString suffix_of(QStringView file_name)
{
    const QStringView name = file_name.trimmed();
    const auto last_dot = name.lastIndexOf(QLatin1Char('.'));
    // Only the suffix is lowered: no character becomes a dot or a blank by it.
    return last_dot < 0 ? QString() : name.mid(last_dot + 1).toString().toLower();
}

// Compares without the entry's dots and without making a text of the rest: this runs for every
// entry of a bucket, for every file of a source.
bool names_suffix(QStringView entry, QStringView suffix)
{
    auto rest = suffix.begin();
    for (const QChar character : entry) {
        if (character == QLatin1Char('.'))
            continue;
        if (rest == suffix.end() || *rest != character)
            return false;
        ++rest;
    }
    return rest == suffix.end();
}

} // namespace

media_kind::media_kind()
{
    initialize_image_extension_list();
    initialize_audio_extension_list();
    initialize_video_extension_list();
}

void media_kind::initialize_image_extension_list()
{
    append_extensions(&image_extensions_, image_extensions);
}

void media_kind::initialize_audio_extension_list()
{
    append_extensions(&audio_extensions_, audio_extensions);
}

void media_kind::initialize_video_extension_list()
{
    append_extensions(&video_extensions_, video_extensions);
}

bool media_kind::is_listed(const QString &suffix, const extension_buckets &buckets,
                           const run::cancellation &cancelled)
{
    const int bucket = suffix.isEmpty() ? no_bucket : bucket_of(suffix.at(0));
    if (bucket == no_bucket)
        return false;
    for (const QString &entry : buckets[static_cast<size_t>(bucket)]) {
        if (cancelled.is_requested())
            return false;
        if (names_suffix(entry, suffix))
            return true;
    }
    return false;
}

bool media_kind::is_image(const QString &file_name, const run::cancellation &cancelled) const
{
    return is_listed(suffix_of(file_name), image_extensions_, cancelled);
}

bool media_kind::is_audio(const QString &file_name, const run::cancellation &cancelled) const
{
    return is_listed(suffix_of(file_name), audio_extensions_, cancelled);
}

bool media_kind::is_video(const QString &file_name, const run::cancellation &cancelled) const
{
    const QString suffix = suffix_of(file_name);
    if (is_listed(suffix, video_extensions_, cancelled))
        return true;
    return !suffix.isEmpty() && suffix.at(0).isLetter() &&
           is_listed(suffix, audio_extensions_, cancelled);
}

} // namespace text
