#include "platform/property_list.h"

#include "binary_property_list.h"
#include "platform/property_list_limits.h"
#include "support/evidence_file.h"
#include "support/folder_walk.h"
#include "xml_property_list.h"

#include <new>

namespace platform {

namespace {

// Holds the usual list without growing.
constexpr int usual_list_bytes = 16 * 1024;

} // namespace

class property_list::implementation
{
public:
    implementation() { bytes_.reserve(usual_list_bytes); }

    // `open` gets the file to open and returns whether it did.
    template <typename Open> bool load_file(Open open);
    bool load_copy(const QByteArray &bytes);
    [[nodiscard]] property_list_value root() const;

private:
    void forget();
    // Leaves no reader behind when the bytes are no list.
    void read_bytes();

    // Its memory is reserved, so that emptying it does not give that back.
    QByteArray bytes_;
    xml_property_list xml_;
    binary_property_list binary_;
    const property_list_reader *reader_ = nullptr;
    property_list_node root_ = 0;
};

template <typename Open> bool property_list::implementation::load_file(Open open)
{
    try {
        forget();
        support::evidence_file file;
        if (open(&file) && file.read_all(&bytes_, largest_list_bytes))
            read_bytes();
    } catch (const std::bad_alloc &) {
        // Like a file that cannot be read.
    }
    if (root().is(value_kind::dictionary))
        return true;
    reader_ = nullptr;
    return false;
}

bool property_list::implementation::load_copy(const QByteArray &bytes)
{
    try {
        forget();
        if (bytes.size() <= largest_list_bytes) {
            bytes_.append(bytes.constData(), bytes.size());
            read_bytes();
        }
    } catch (const std::bad_alloc &) {
        // As above.
    }
    if (!root().is(value_kind::absent))
        return true;
    reader_ = nullptr;
    return false;
}

property_list_value property_list::implementation::root() const
{
    return reader_ == nullptr ? property_list_value() : property_list_value(reader_, root_);
}

void property_list::implementation::forget()
{
    reader_ = nullptr;
    xml_.clear();
    binary_.clear();
    if (bytes_.capacity() > largest_kept_buffer_bytes) {
        bytes_ = QByteArray();
        bytes_.reserve(usual_list_bytes);
    }
    bytes_.resize(0);
}

void property_list::implementation::read_bytes()
{
    if (binary_property_list::is_binary(bytes_)) {
        if (binary_.load(bytes_)) {
            root_ = binary_.root();
            reader_ = &binary_;
        }
        return;
    }
    // Anything else has to be XML. Foundation would also try the text form that came before that,
    // `{ key = value; }`, which the client never wrote: such a list is not read.
    if (xml_.load(&bytes_)) {
        root_ = xml_.root();
        reader_ = &xml_;
    }
}

property_list::property_list()
    : implementation_(std::make_unique<implementation>())
{
}

property_list::~property_list() = default;

bool property_list::load(const QString &path)
{
    return implementation_->load_file(
        [&path](support::evidence_file *file) { return file->open(path); });
}

bool property_list::load(const support::folder_walk &entry)
{
    return implementation_->load_file([&entry](support::evidence_file *file) {
        return file->open_at(entry.folder_descriptor(), entry.name().constData());
    });
}

bool property_list::load_bytes(const QByteArray &bytes)
{
    return implementation_->load_copy(bytes);
}

property_list_value property_list::root() const
{
    return implementation_->root();
}

} // namespace platform
