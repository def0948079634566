#include "platform/property_list.h"

#include "evidence/files/evidence_file.h"
#include "evidence/folders/folder_walk.h"
#include "formats/property_list/property_list_parser.h"

#include <new>

namespace platform {

class property_list::implementation : public formats::property_list_parser
{
public:
    // `open` gets the file to open and returns whether it did.
    template <typename Open> bool load(Open open)
    {
        try {
            evidence::evidence_file file;
            forget();
            if (open(&file))
                parse_file(&file);
        } catch (const std::bad_alloc &) {
            forget();
        }
        if (root().is(formats::value_kind::dictionary))
            return true;
        forget();
        return false;
    }
};

property_list::property_list()
    : implementation_(std::make_unique<implementation>())
{
}

property_list::~property_list() = default;

bool property_list::load(const QString &path)
{
    return implementation_->load(
        [&path](evidence::evidence_file *file) { return file->open(path); });
}

bool property_list::load(const evidence::folder_walk &entry)
{
    return implementation_->load([&entry](evidence::evidence_file *file) {
        return file->open_listed(entry.folder_descriptor(), entry.name().constData());
    });
}

bool property_list::load_bytes(const QByteArray &bytes)
{
    implementation_->parse_copy(bytes);
    return !implementation_->root().is(formats::value_kind::absent);
}

formats::property_list_value property_list::root() const
{
    return implementation_->root();
}

} // namespace platform
