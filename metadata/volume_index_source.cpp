#include "metadata/volume_index_source.h"

#include <utility>

namespace metadata {

namespace {

class indexed_file final : public file_metadata
{
public:
    indexed_file(spotlight_volume_index &index, QString path)
        : index_(index)
        , path_(std::move(path))
    {
    }

    std::optional<formats::spotlight_value> attribute(const QString &name) override
    {
        if (!asked_)
            record_ = index_.attributes(path_);
        asked_ = true;
        return record_ == nullptr ? std::nullopt : record_->value(name);
    }

private:
    spotlight_volume_index &index_;
    QString path_;
    bool asked_ = false;
    std::shared_ptr<const formats::spotlight_attributes> record_;
};

} // namespace

volume_index_source::volume_index_source(const QString &source_root,
                                         const run::cancellation &cancelled)
    : index_(source_root, nullptr, cancelled)
{
}

std::unique_ptr<file_metadata> volume_index_source::open(const source_file &file)
{
    return std::make_unique<indexed_file>(index_, file.path);
}

QStringList volume_index_source::take_notes()
{
    return index_.take_notes();
}

} // namespace metadata
