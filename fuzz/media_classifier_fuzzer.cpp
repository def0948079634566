// Names as a hostile source may hold them: the first byte picks the encoding, the rest is a name.
#include "support/media_extensions.h"
#include "support/plugin_helper_functions.h"

#include <QApplication>

#include <sanitizer/lsan_interface.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

// Never deleted: Qt's own statics are gone by the time libFuzzer leaves the program.
QApplication *application = nullptr;
plugin_helper_functions *helper = nullptr;

QString text_of(const std::uint8_t *data, size_t size)
{
    if (data[0] % 2 == 0)
        return QString::fromUtf8(reinterpret_cast<const char *>(data + 1), int(size - 1));
    // Any code units, unpaired surrogates included.
    std::vector<ushort> units((size - 1) / sizeof(ushort));
    if (!units.empty())
        std::memcpy(units.data(), data + 1, units.size() * sizeof(ushort));
    return QString::fromUtf16(units.data(), int(units.size()));
}

// The slow and obvious way: the name, lowered and cut at its dots, against every entry.
template <size_t count>
bool is_listed(const QString &name, const support::extension_text (&extensions)[count])
{
    const QString lowered = name.toLower().trimmed();
    if (name.endsWith(QLatin1Char('.')) || !lowered.contains(QLatin1Char('.')))
        return false;
    const QString suffix = QLatin1Char('.') + lowered.split(QLatin1Char('.')).last();
    return std::any_of(std::begin(extensions), std::end(extensions),
                       [&](const char *entry) { return suffix == QLatin1String(entry); });
}

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

// A widget needs an application; what Qt's platform and fontconfig keep for good is no leak of
// ours.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const __lsan::ScopedDisabler leaks_not_counted;
    application = new QApplication(*argc, *argv);
    helper = new plugin_helper_functions(nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QString name = text_of(data, size);
    const bool sound = is_listed(name, support::audio_extensions);
    const QString suffix = name.trimmed().section(QLatin1Char('.'), -1);
    const bool sound_shown_as_video = sound && suffix.at(0).isLetter();
    require(helper->check_is_image_by_extn(name) == is_listed(name, support::image_extensions));
    require(helper->check_is_audio_by_extn(name) == sound);
    require(helper->check_is_video_by_extn(name) ==
            (is_listed(name, support::video_extensions) || sound_shown_as_video));
    return 0;
}
