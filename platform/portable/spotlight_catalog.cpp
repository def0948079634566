#include "platform/portable/portable_catalog.h"

#include "evidence/files/file_names.h"
#include "metadata/apple_double_companions.h"
#include "metadata/extended_attributes.h"
#include "metadata/file_system_facts.h"
#include "metadata/single_notes.h"
#include "metadata/volume_index_source.h"
#include "platform/portable/contained.h"

#include <utility>
#include <vector>

namespace platform {

namespace {

// What a reader throws costs this answer, and a note of the first such file.
template <typename Answer, typename Question>
Answer told_when_thrown(Answer fallback, const QString &path, metadata::single_notes &notes,
                        const Question &question)
{
    bool is_whole = false;
    Answer answer = contained(std::move(fallback), [&] {
        Answer found = question();
        is_whole = true;
        return found;
    });
    if (!is_whole)
        notes.add(QStringLiteral("thrown"),
                  path + QStringLiteral(": metadata not read, memory is lacking"));
    return answer;
}

class portable_item final : public spotlight_item
{
public:
    portable_item(std::vector<std::unique_ptr<metadata::file_metadata>> answers, QString path,
                  metadata::single_notes &notes)
        : answers_(std::move(answers))
        , path_(std::move(path))
        , notes_(notes)
    {
    }

    std::optional<attribute_description> attribute(const QString &name) const override
    {
        return told_when_thrown(std::optional<attribute_description>(), path_, notes_,
                                [this, &name] { return first_answer(name); });
    }

private:
    [[nodiscard]] std::optional<attribute_description> first_answer(const QString &name) const
    {
        for (const std::unique_ptr<metadata::file_metadata> &source : answers_) {
            const std::optional<formats::spotlight_value> value = source->attribute(name);
            if (!value)
                continue;
            const QString text = formats::description_text(*value);
            if (!text.isNull())
                return attribute_description{text, formats::has_c_string(text) ? text : QString()};
        }
        return std::nullopt;
    }

    std::vector<std::unique_ptr<metadata::file_metadata>> answers_; // the most trusted first
    QString path_;
    metadata::single_notes &notes_;
};

class portable_catalog final : public spotlight_catalog
{
public:
    portable_catalog(const QString &source_root,
                     std::vector<std::unique_ptr<metadata::metadata_source>> sources)
        : source_root_(source_root)
        , sources_(std::move(sources))
    {
    }

    // Callers ask for the same file several times in a row. Its sources are looked for once.
    std::shared_ptr<spotlight_item> item(const evidence::resolved_path &place) override
    {
        if (!last_item_ || last_path_ != place.path) {
            last_item_ = told_when_thrown(std::shared_ptr<spotlight_item>(), place.path, notes_,
                                          [this, &place] { return make_item(place); });
            last_path_ = place.path;
        }
        return last_item_;
    }

    QStringList take_notes() override
    {
        QStringList notes = notes_.take();
        for (const std::unique_ptr<metadata::metadata_source> &source : sources_)
            notes += source->take_notes();
        return notes;
    }

private:
    std::shared_ptr<spotlight_item> make_item(const evidence::resolved_path &place)
    {
        if (!place.path.startsWith(source_root_) || !place.file)
            return nullptr;
        const metadata::source_file file{place.path, evidence::encoded_name(place.path), place.file,
                                         place.folder};
        std::vector<std::unique_ptr<metadata::file_metadata>> answers;
        for (const std::unique_ptr<metadata::metadata_source> &source : sources_) {
            if (auto answer = source->open(file))
                answers.push_back(std::move(answer));
        }
        return std::make_shared<portable_item>(std::move(answers), place.path, notes_);
    }

    QString source_root_;
    std::vector<std::unique_ptr<metadata::metadata_source>> sources_; // the most trusted first
    metadata::single_notes notes_;
    QString last_path_;
    std::shared_ptr<spotlight_item> last_item_; // dies before the sources and notes
};

} // namespace

std::unique_ptr<spotlight_catalog>
make_portable_catalog(const QString &source_root,
                      std::vector<std::unique_ptr<metadata::metadata_source>> sources)
{
    return std::make_unique<portable_catalog>(source_root, std::move(sources));
}

std::unique_ptr<spotlight_catalog> make_spotlight_catalog(const QString &source_root,
                                                          const run::cancellation &cancelled)
{
    std::vector<std::unique_ptr<metadata::metadata_source>> sources;
    sources.push_back(std::make_unique<metadata::volume_index_source>(source_root, cancelled));
    sources.push_back(std::make_unique<metadata::extended_attributes>());
    sources.push_back(std::make_unique<metadata::apple_double_companions>(source_root));
    sources.push_back(std::make_unique<metadata::file_system_facts>(cancelled));
    return make_portable_catalog(source_root, std::move(sources));
}

} // namespace platform
