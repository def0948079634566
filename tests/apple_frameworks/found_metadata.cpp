#include "found_metadata.h"

#include "platform/portable/apple_double_companions.h"
#include "platform/portable/extended_attributes.h"
#include "platform/portable/file_system_facts.h"
#include "platform/portable/image_gps.h"
#include "platform/portable/volume_index_source.h"
#include "support/evidence_file.h"
#include "support/file_names.h"

#include <vector>

namespace stand_ins {

namespace {

struct mounted_volume
{
    QString root;
    std::vector<std::unique_ptr<platform::metadata_source>> sources; // the most trusted first
};

mounted_volume mount()
{
    mounted_volume volume{qEnvironmentVariable("STAND_IN_VOLUME"), {}};
    volume.sources.push_back(std::make_unique<platform::volume_index_source>(volume.root, nullptr));
    volume.sources.push_back(std::make_unique<platform::extended_attributes>());
    volume.sources.push_back(std::make_unique<platform::apple_double_companions>(volume.root));
    volume.sources.push_back(std::make_unique<platform::file_system_facts>());
    return volume;
}

mounted_volume &volume()
{
    static mounted_volume only = mount();
    return only;
}

bool is_on_volume(const QString &path)
{
    return !volume().root.isEmpty() && path.startsWith(volume().root);
}

class file_on_volume final : public found_file
{
public:
    explicit file_on_volume(const platform::source_file &file)
    {
        for (const auto &source : volume().sources) {
            if (auto answer = source->open(file))
                answers_.push_back(std::move(answer));
        }
    }
    std::optional<platform::spotlight_value> attribute(const QString &name) override
    {
        for (const auto &answer : answers_) {
            auto value = answer->attribute(name);
            if (value && !platform::description_text(*value).isNull())
                return value;
        }
        return std::nullopt;
    }

private:
    std::vector<std::unique_ptr<platform::file_metadata>> answers_;
};

} // namespace

std::unique_ptr<found_file> find_file(const QString &path)
{
    platform::source_file file{path, support::encoded_name(path), {}};
    if (!is_on_volume(path) || ::lstat(file.encoded_path.constData(), &file.status) != 0)
        return nullptr;
    return std::make_unique<file_on_volume>(file);
}

platform::gps_position find_position(const QString &path)
{
    support::evidence_file file;
    if (!is_on_volume(path) || !file.open(path))
        return {};
    platform::evidence_byte_source bytes(std::move(file));
    return platform::read_image_gps(bytes);
}

} // namespace stand_ins
