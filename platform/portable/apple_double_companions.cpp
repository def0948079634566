#include "apple_double_companions.h"

#include "support/file_names.h"
#include "apple_double.h"
#include "attribute_value.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace platform {

namespace {

constexpr char companion_prefix[] = "._";
constexpr char archive_folder[] = "/__MACOSX";
constexpr int max_name_bytes = 255;

bool is_folder(const QByteArray &path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

// The name as it is, and in the two forms of Unicode that file systems and archives prefer.
std::vector<QByteArray> spellings(const QByteArray &encoded)
{
    std::vector<QByteArray> result{encoded};
    const QString text = support::decoded_name(encoded);
    for (const auto form : {QString::NormalizationForm_C, QString::NormalizationForm_D}) {
        const QByteArray other = text.normalized(form).toUtf8();
        if (std::find(result.cbegin(), result.cend(), other) == result.cend())
            result.push_back(other);
    }
    return result;
}

// "._name" below `folder` and `way`, where no step is a link: it could lead out of the source.
std::unique_ptr<apple_double> companion_at(QByteArray folder, const QList<QByteArray> &way)
{
    for (int i = 0; i + 1 < way.size(); ++i) {
        folder += '/' + way[i];
        if (!is_folder(folder))
            return nullptr;
    }
    const QByteArray name = companion_prefix + way.constLast();
    if (name.size() > max_name_bytes)
        return nullptr;
    support::evidence_file file;
    if (!file.open((folder + '/' + name).constData()))
        return nullptr;
    auto companion = apple_double::read(std::make_unique<evidence_byte_source>(std::move(file)));
    return companion && !companion->is_empty() ? std::move(companion) : nullptr;
}

// `way`: names below `folder`, those of folders first, "/" between them.
std::unique_ptr<apple_double> companion_below(const QByteArray &folder, const QByteArray &way)
{
    for (const QByteArray &spelling : spellings(way)) {
        if (auto companion = companion_at(folder, spelling.split('/')))
            return companion;
    }
    return nullptr;
}

} // namespace

class apple_double_companions::file final : public file_metadata
{
public:
    file(apple_double_companions &source, const source_file &about)
        : source_(source)
        , encoded_path_(about.encoded_path)
    {
    }

    std::optional<spotlight_value> attribute(const QString &name) override
    {
        find_once();
        for (const auto &companion : companions_) {
            auto value = spotlight_attribute(
                name, [&](const QByteArray &canonical) { return companion->attribute(canonical); });
            if (value)
                return value;
        }
        return std::nullopt;
    }

private:
    void find_once()
    {
        if (was_searched_)
            return;
        was_searched_ = true;
        int folder_end = encoded_path_.lastIndexOf('/');
        if (!is_in_source(folder_end))
            return;
        if (auto beside = companion_below(encoded_path_.left(folder_end),
                                          encoded_path_.mid(folder_end + 1))) {
            companions_.push_back(std::move(beside));
            source_.notes_.add(
                QStringLiteral("metadata found in AppleDouble companions beside files"));
        }
        for (; is_in_source(folder_end);
             folder_end = encoded_path_.left(folder_end).lastIndexOf('/'))
            find_in_archive_folder(folder_end);
    }

    // Whether the first `folder_end` bytes of the path are the source's root or a folder below it.
    [[nodiscard]] bool is_in_source(int folder_end) const
    {
        return folder_end >= 0 &&
               encoded_path_.left(folder_end + 1).startsWith(source_.encoded_root_);
    }

    void find_in_archive_folder(int folder_end)
    {
        const QByteArray folder = encoded_path_.left(folder_end) + archive_folder;
        if (!is_folder(folder))
            return;
        auto companion = companion_below(folder, encoded_path_.mid(folder_end + 1));
        if (!companion)
            return;
        companions_.push_back(std::move(companion));
        source_.notes_.add(
            QStringLiteral("metadata found in AppleDouble companions in folders \"__MACOSX\""));
    }

    apple_double_companions &source_;
    QByteArray encoded_path_;
    bool was_searched_ = false;
    std::vector<std::unique_ptr<apple_double>> companions_; // the nearest first
};

apple_double_companions::apple_double_companions(const QString &source_root)
    : encoded_root_(support::encoded_name(source_root))
{
}

std::unique_ptr<file_metadata> apple_double_companions::open(const source_file &about)
{
    return std::make_unique<file>(*this, about);
}

} // namespace platform
