#include "formats/property_list/property_list_parser.h"

#include "evidence/files/evidence_file.h"
#include "formats/property_list/base/property_list_limits.h"

#include <new>

namespace formats {

namespace {

// Holds the usual list without growing.
constexpr int usual_list_bytes = 16 * 1024;

} // namespace

property_list_parser::property_list_parser()
{
    bytes_.reserve(usual_list_bytes);
}

template <typename Fill> void property_list_parser::parse(Fill fill)
{
    try {
        empty_buffers();
        if (fill(&bytes_))
            parse_buffer();
    } catch (const std::bad_alloc &) {
        forget();
    }
}

void property_list_parser::parse_file(evidence::evidence_file *open_file)
{
    parse([open_file](QByteArray *buffer) { return open_file->read_all(buffer, max_list_bytes); });
}

void property_list_parser::parse_copy(const QByteArray &bytes)
{
    parse([&bytes](QByteArray *buffer) {
        if (bytes.size() > max_list_bytes)
            return false;
        buffer->append(bytes.constData(), bytes.size());
        return true;
    });
}

void property_list_parser::parse_swapped(QByteArray *bytes)
{
    parse([bytes](QByteArray *buffer) {
        if (bytes->size() > max_list_bytes)
            return false;
        buffer->swap(*bytes);
        return true;
    });
}

void property_list_parser::empty_buffers()
{
    forget();
    xml_.clear();
    binary_.clear();
    if (bytes_.capacity() > max_kept_buffer_bytes) {
        bytes_ = QByteArray();
        bytes_.reserve(usual_list_bytes);
    }
    bytes_.resize(0);
}

void property_list_parser::parse_buffer()
{
    if (binary_property_list::is_binary(bytes_)) {
        if (binary_.load(bytes_)) {
            root_ = binary_.root();
            reader_ = &binary_;
            contents_ = &binary_;
        }
        return;
    }
    // Anything else has to be XML. Foundation would also try the text form that came before that,
    // `{ key = value; }`, which the client never wrote: such a list is not read.
    if (xml_.load(&bytes_)) {
        root_ = xml_.root();
        reader_ = &xml_;
        contents_ = &xml_;
    }
}

} // namespace formats
