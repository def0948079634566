#include "metadata/apple_double_companions.h"

#include "evidence/files/file_names.h"
#include "formats/apple_double/apple_double.h"
#include "formats/attributes/attribute_value.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace metadata {

namespace {

constexpr char companion_prefix[] = "._";
constexpr char archive_folder[] = "/__MACOSX";
constexpr int max_name_bytes = 255;
// macOS gives each file its own. Few bytes with many names would fill rows without end.
constexpr int max_uses_of_one = 16;
constexpr int max_remembered_bytes = 1 << 20;

// The name as it is, and in the two forms of Unicode that file systems and archives prefer.
std::vector<QByteArray> spellings(const QByteArray &encoded)
{
    std::vector<QByteArray> result{encoded};
    const QString text = evidence::decoded_name(encoded);
    for (const auto form : {QString::NormalizationForm_C, QString::NormalizationForm_D}) {
        const QByteArray other = text.normalized(form).toUtf8();
        if (std::find(result.cbegin(), result.cend(), other) == result.cend())
            result.push_back(other);
    }
    return result;
}

} // namespace

class apple_double_companions::file final : public file_metadata
{
public:
    file(apple_double_companions &source, const source_file &about)
        : source_(source)
        , encoded_path_(about.encoded_path)
        , folder_(about.folder)
    {
    }

    std::optional<formats::spotlight_value> attribute(const QString &name) override
    {
        if (!was_searched_)
            find();
        for (const auto &companion : companions_) {
            auto value = formats::spotlight_attribute(
                name, [&](const QByteArray &canonical) { return companion->attribute(canonical); });
            if (value)
                return value;
        }
        return std::nullopt;
    }

private:
    void find()
    {
        was_searched_ = true;
        int folder_end = encoded_path_.lastIndexOf('/');
        if (!is_in_source(folder_end))
            return;
        if (auto beside = source_.companion_below(
                encoded_path_.left(folder_end), encoded_path_.mid(folder_end + 1), folder_.get())) {
            companions_.push_back(std::move(beside));
            source_.notes_.add(
                QStringLiteral("metadata found in AppleDouble companions beside files"));
        }
        for (; is_in_source(folder_end);
             folder_end = folder_end == 0 ? -1 : encoded_path_.lastIndexOf('/', folder_end - 1))
            find_in_archive_folder(folder_end);
    }

    // Whether the first `folder_end` bytes of the path are the source's root or a folder below it.
    [[nodiscard]] bool is_in_source(int folder_end) const
    {
        return folder_end + 1 >= source_.encoded_root_.size() &&
               encoded_path_.startsWith(source_.encoded_root_);
    }

    void find_in_archive_folder(int folder_end)
    {
        const QByteArray folder = encoded_path_.left(folder_end) + archive_folder;
        if (!source_.is_folder(folder))
            return;
        auto companion =
            source_.companion_below(folder, encoded_path_.mid(folder_end + 1), nullptr);
        if (!companion)
            return;
        companions_.push_back(std::move(companion));
        source_.notes_.add(
            QStringLiteral("metadata found in AppleDouble companions in folders \"__MACOSX\""));
    }

    apple_double_companions &source_;
    QByteArray encoded_path_;
    std::shared_ptr<const evidence::folder_contents> folder_;
    bool was_searched_ = false;
    std::vector<std::unique_ptr<formats::apple_double>> companions_; // the nearest first
};

apple_double_companions::apple_double_companions(const QString &source_root)
    : encoded_root_(evidence::encoded_name(source_root))
    , archive_folders_(max_remembered_bytes)
{
}

std::unique_ptr<formats::apple_double>
apple_double_companions::companion_below(const QByteArray &folder, const QByteArray &way,
                                         const evidence::folder_contents *listed)
{
    for (const QByteArray &spelling : spellings(way)) {
        if (auto companion = companion_at(folder, spelling, listed))
            return companion;
    }
    return nullptr;
}

std::unique_ptr<formats::apple_double>
apple_double_companions::companion_at(const QByteArray &folder, const QByteArray &way,
                                      const evidence::folder_contents *listed)
{
    const int name_start = way.lastIndexOf('/') + 1;
    const QByteArray name = companion_prefix + way.mid(name_start);
    if (name.size() > max_name_bytes || (listed != nullptr && !listed->has(name)))
        return nullptr;
    auto held = std::make_shared<evidence::held_file>();
    evidence::evidence_file bytes;
    if (!held->hold(folder + '/' + way.left(name_start) + name) || !may_use(held->status()) ||
        !bytes.open(held))
        return nullptr;
    auto companion = formats::apple_double::read(
        std::make_unique<evidence::evidence_byte_source>(std::move(bytes)));
    return companion && !companion->is_empty() ? std::move(companion) : nullptr;
}

bool apple_double_companions::may_use(const evidence::file_status &companion)
{
    if (companion.links <= 1)
        return true;
    if (++uses_[{companion.device, companion.inode}] <= max_uses_of_one)
        return true;
    notes_.add(QStringLiteral(
        "one AppleDouble companion has many names, it is not read for each of them"));
    return false;
}

bool apple_double_companions::is_folder(const QByteArray &path)
{
    const bool *known = archive_folders_.object(path);
    if (known != nullptr)
        return *known;
    evidence::held_file held;
    const bool is_there = held.hold(path) && held.is_folder();
    archive_folders_.insert(path, new bool(is_there), path.size() + 64);
    return is_there;
}

std::unique_ptr<file_metadata> apple_double_companions::open(const source_file &about)
{
    return std::make_unique<file>(*this, about);
}

} // namespace metadata
