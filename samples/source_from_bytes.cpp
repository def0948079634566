#include "samples/source_from_bytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace samples {

namespace {

namespace fs = std::filesystem;

constexpr int most_entries = 32;
constexpr std::size_t longest_name = 255;

constexpr const char *places[] = {
    "Users/alice/Library/Application Support/Cyberduck/Bookmarks/",
    "Users/alice/Library/Application Support/Cyberduck/History/",
    "Users/alice/Library/Application Support/Cyberduck/Transfers/",
    "Users/alice/Library/Preferences/",
    "Users/alice/Documents/",
    "Users/bob/Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck/"
    "Bookmarks/",
    "Users/bob/Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck/History/",
    "Users/bob/Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck/"
    "Transfers/",
    "Users/bob/Library/Preferences/",
    "Users/bob/Documents/",
    ".Spotlight-V100/Store-V2/A/",
    ".Spotlight-V100/",
    "System/Volumes/Data/.Spotlight-V100/Store-V2/B/",
    "Users/alice/Library/Application Support/",
    "Users/",
    "",
};

constexpr const char *known_names[] = {
    "ch.sudo.cyberduck.plist",   "store.db",           ".store.db",
    "VolumeConfiguration.plist", "dbStr-1.map.header", "dbStr-1.map.offsets",
    "dbStr-1.map.data",          "dbStr-2.map.header", "dbStr-2.map.offsets",
    "dbStr-2.map.data",          "Cyberduck",          "Bookmarks",
};

enum class entry_kind {
    file,       // content under the name
    duck,       // the name with the suffix of a bookmark
    transfer,   // the name with the suffix of a transfer
    companion,  // "._" and the name
    known_name, // the name's first byte picks one of known_names
    attribute,  // content is an extended attribute of the name, "name of the attribute\0value"
    queue,      // a transfer whose items have the content's lines as local paths
    link,       // content is the target
    fifo,
    folder,
    count
};

struct entry
{
    entry_kind kind = entry_kind::file;
    std::string place;
    std::string name;
    std::string content;
};

// Takes entries off the bytes.
class entry_reader
{
public:
    entry_reader(const std::uint8_t *data, std::size_t size)
        : data_(data)
        , size_(size)
    {
    }

    bool next(entry *found)
    {
        constexpr std::size_t head_bytes = 3;
        if (size_ < head_bytes)
            return false;
        found->kind = entry_kind(data_[0] % int(entry_kind::count));
        found->place = places[data_[1] % std::size(places)];
        const std::size_t name_bytes = data_[2];
        skip(head_bytes);
        found->name = take(name_bytes);
        const std::size_t content_bytes =
            size_ < 2 ? 0 : std::size_t(data_[0]) | std::size_t(data_[1]) << 8;
        skip(2);
        found->content = take(content_bytes);
        return true;
    }

private:
    void skip(std::size_t bytes)
    {
        bytes = std::min(bytes, size_);
        data_ += bytes;
        size_ -= bytes;
    }

    std::string take(std::size_t bytes)
    {
        bytes = std::min(bytes, size_);
        std::string taken(reinterpret_cast<const char *>(data_), bytes);
        skip(bytes);
        return taken;
    }

    const std::uint8_t *data_;
    std::size_t size_;
};

// "/" makes folders. No path may leave the tree.
std::string file_name(const entry &found)
{
    std::string name = found.name;
    std::replace(name.begin(), name.end(), '\0', '_');
    switch (found.kind) {
    case entry_kind::duck:
        return name + ".duck";
    case entry_kind::transfer:
    case entry_kind::queue:
        return name + ".cyberducktransfer";
    case entry_kind::companion:
        return "._" + name;
    case entry_kind::known_name:
        return known_names[(found.name.empty() ? 0 : std::uint8_t(found.name[0])) %
                           std::size(known_names)];
    default:
        return name;
    }
}

bool is_makeable(const std::string &path)
{
    std::size_t start = 0;
    while (start <= path.size()) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string name = path.substr(start, end - start);
        if (name == ".." || name.size() > longest_name)
            return false;
        start = end + 1;
    }
    return true;
}

// Makes the folders of a path. Does not follow links that an earlier entry made.
bool make_parents(const std::string &root, const std::string &path)
{
    for (std::size_t end = path.find('/'); end != std::string::npos;
         end = path.find('/', end + 1)) {
        const std::string folder = root + path.substr(0, end);
        struct stat status = {};
        if (::mkdir(folder.c_str(), 0755) != 0 &&
            (::lstat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)))
            return false;
    }
    return true;
}

void write_file(const std::string &path, const std::string &content)
{
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (file < 0)
        return;
    // NOLINTNEXTLINE(bugprone-unused-return-value): a shorter file is a source as well
    [[maybe_unused]] const ssize_t written = ::write(file, content.data(), content.size());
    ::close(file);
}

std::string escaped(const std::string &text)
{
    std::string written;
    for (const char c : text)
        written += c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
    return written;
}

std::string queue_of(const std::string &paths)
{
    std::string list = "<plist><dict><key>Host</key><dict/><key>Items</key><array>";
    for (std::size_t start = 0; start < paths.size();) {
        const std::size_t end = std::min(paths.find('\n', start), paths.size());
        list += "<dict><key>Local Dictionary</key><dict><key>Path</key><string>" +
                escaped(paths.substr(start, end - start)) + "</string></dict></dict>";
        start = end + 1;
    }
    return list + "</array></dict></plist>";
}

void set_attribute(const std::string &path, const std::string &content)
{
    const std::size_t end = content.find('\0');
    if (end == std::string::npos)
        return;
    const std::string name = "user." + content.substr(0, end);
    ::lsetxattr(path.c_str(), name.c_str(), content.data() + end + 1, content.size() - end - 1, 0);
}

void make_entry(const std::string &root, const entry &found)
{
    const std::string below = found.place + file_name(found);
    if (!is_makeable(below) || !make_parents(root, below))
        return;
    const std::string path = root + below;
    switch (found.kind) {
    case entry_kind::link: {
        std::error_code refused;
        fs::create_symlink(found.content, path, refused);
        break;
    }
    case entry_kind::fifo:
        ::mkfifo(path.c_str(), 0644);
        break;
    case entry_kind::folder:
        ::mkdir(path.c_str(), 0755);
        break;
    case entry_kind::attribute:
        set_attribute(path, found.content);
        break;
    case entry_kind::queue:
        write_file(path, queue_of(found.content));
        break;
    default:
        write_file(path, found.content);
        break;
    }
}

} // namespace

void make_source_tree(const std::string &root, const std::uint8_t *data, std::size_t size)
{
    const std::string below = root.back() == '/' ? root : root + '/';
    entry_reader reader(data, size);
    entry found;
    for (int count = 0; count < most_entries && reader.next(&found); ++count)
        make_entry(below, found);
}

void empty_folder(const std::string &root)
{
    for (const fs::directory_entry &one : fs::directory_iterator(root))
        fs::remove_all(one.path());
}

} // namespace samples
