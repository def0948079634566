#include "formats/spotlight_store/blocks/spotlight_unpack.h"

#include "formats/spotlight_store/blocks/spotlight_cursor.h"

#include <lz4.h>
#include <zlib.h>

#include <algorithm>
#include <memory>

namespace formats {

namespace {

constexpr std::string_view packed_frame = "bv41";
constexpr std::string_view plain_frame = "bv4-";
constexpr std::string_view last_frame = "bv4$";
constexpr int max_history_bytes = 64 * 1024; // how far an LZ4 match can reach back

// Room for plain bytes. Not filled beforehand, since a forged size would make that dear; only what
// is written becomes part of the result.
class plain_bytes
{
public:
    explicit plain_bytes(int capacity)
        : bytes_(new char[static_cast<size_t>(capacity)])
        , capacity_(capacity)
    {
    }

    [[nodiscard]] char *end() { return bytes_.get() + used_; }
    [[nodiscard]] int room() const { return capacity_ - used_; }
    [[nodiscard]] int history() const { return std::min(used_, max_history_bytes); }
    void grow(int count) { used_ += count; }
    [[nodiscard]] QByteArray take() const { return QByteArray(bytes_.get(), used_); }

private:
    std::unique_ptr<char[]> bytes_;
    int capacity_;
    int used_ = 0;
};

bool unpack_frame(spotlight_cursor *input, plain_bytes *plain)
{
    quint32 plain_size = 0;
    quint32 packed_size = 0;
    std::string_view packed;
    if (!input->read_u32(&plain_size) || !input->read_u32(&packed_size) ||
        !input->take(packed_size, &packed) || plain_size > static_cast<quint32>(plain->room()))
        return false;
    const int history = plain->history();
    const int got = LZ4_decompress_safe_usingDict(
        packed.data(), plain->end(), static_cast<int>(packed_size), static_cast<int>(plain_size),
        plain->end() - history, history);
    if (got < 0 || static_cast<quint32>(got) != plain_size)
        return false;
    plain->grow(got);
    return true;
}

bool copy_frame(spotlight_cursor *input, plain_bytes *plain)
{
    quint32 size = 0;
    std::string_view bytes;
    if (!input->read_u32(&size) || !input->take(size, &bytes) ||
        size > static_cast<quint32>(plain->room()))
        return false;
    std::copy(bytes.begin(), bytes.end(), plain->end());
    plain->grow(static_cast<int>(size));
    return true;
}

} // namespace

QByteArray unpack_zlib(std::string_view packed, int most_bytes)
{
    if (packed.empty() || most_bytes <= 0)
        return {};
    plain_bytes plain(most_bytes);
    // zlib's interface has no const; it does not write to its input.
    auto *input = reinterpret_cast<Bytef *>(const_cast<char *>(packed.data()));
    z_stream stream = {};
    stream.next_in = input;
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef *>(plain.end());
    stream.avail_out = static_cast<uInt>(most_bytes);
    if (inflateInit(&stream) != Z_OK)
        return {};
    const int result = inflate(&stream, Z_SYNC_FLUSH);
    plain.grow(most_bytes - static_cast<int>(stream.avail_out));
    inflateEnd(&stream);
    const bool cut = result == Z_OK || result == Z_BUF_ERROR; // input or room used up
    return result == Z_STREAM_END || cut ? plain.take() : QByteArray();
}

QByteArray unpack_lz4_frames(std::string_view packed, int most_bytes)
{
    if (most_bytes <= 0)
        return {};
    plain_bytes plain(most_bytes);
    spotlight_cursor input(packed);
    std::string_view mark;
    bool whole = true;
    // Any other mark ends the run: the end mark, four zero bytes of padding, damage.
    while (whole && input.take(last_frame.size(), &mark)) {
        if (mark == packed_frame)
            whole = unpack_frame(&input, &plain);
        else if (mark == plain_frame)
            whole = copy_frame(&input, &plain);
        else
            break;
    }
    return plain.take();
}

QByteArray unpack_lz4_block(std::string_view packed, int most_bytes)
{
    if (most_bytes <= 0)
        return {};
    plain_bytes plain(most_bytes);
    const int got = LZ4_decompress_safe(packed.data(), plain.end(), static_cast<int>(packed.size()),
                                        most_bytes);
    plain.grow(std::max(got, 0));
    return plain.take();
}

bool starts_with_lz4_frame(std::string_view packed)
{
    const std::string_view mark = packed.substr(0, packed_frame.size());
    return mark == packed_frame || mark == plain_frame || mark == last_frame;
}

} // namespace formats
