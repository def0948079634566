// Shows a folder at another place, read-only, and lets every request wait. Stands for an image
// mounted by a program, or for a share on a network. Tells how many requests of each kind came once
// it is unmounted.
//
//   slow_mount FOLDER MOUNT_POINT MICROSECONDS [keep]
//
// With "keep" the system keeps what it was told, and opens files without asking.
#define FUSE_USE_VERSION 31
#include <fuse3/fuse.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace {

std::string shown_folder;
std::chrono::microseconds delay(0);
std::mutex requests_mutex;
std::map<std::string, long> requests;

std::string waited_for(const char *kind, const char *path)
{
    {
        const std::lock_guard<std::mutex> lock(requests_mutex);
        ++requests[kind];
    }
    std::this_thread::sleep_for(delay);
    return shown_folder + path;
}

int answer(long result)
{
    return result < 0 ? -errno : int(result);
}

int get_status(const char *path, struct stat *status, fuse_file_info *)
{
    return answer(::lstat(waited_for("status", path).c_str(), status));
}

int read_link(const char *path, char *target, size_t size)
{
    const ssize_t length =
        ::readlink(waited_for("link", path).c_str(), target, size == 0 ? 0 : size - 1);
    if (length < 0)
        return -errno;
    target[length] = '\0';
    return 0;
}

int open_file(const char *path, fuse_file_info *file)
{
    const int opened = ::open(waited_for("open", path).c_str(), O_RDONLY | O_CLOEXEC);
    if (opened < 0)
        return -errno;
    file->fh = static_cast<uint64_t>(opened);
    return 0;
}

int read_file(const char *path, char *bytes, size_t size, off_t from, fuse_file_info *file)
{
    waited_for("read", path);
    return answer(::pread(int(file->fh), bytes, size, from));
}

// Nobody waits for this one.
int release_file(const char *, fuse_file_info *file)
{
    return answer(::close(int(file->fh)));
}

int list_folder(const char *path, void *listing, fuse_fill_dir_t add, off_t, fuse_file_info *,
                fuse_readdir_flags flags)
{
    const bool with_status = (flags & FUSE_READDIR_PLUS) != 0;
    DIR *folder = ::opendir(waited_for("list", path).c_str());
    if (folder == nullptr)
        return -errno;
    while (const dirent *entry = ::readdir(folder)) {
        struct stat status = {};
        status.st_ino = entry->d_ino;
        status.st_mode = DTTOIF(entry->d_type);
        const bool is_whole = with_status && ::fstatat(::dirfd(folder), entry->d_name, &status,
                                                       AT_SYMLINK_NOFOLLOW) == 0;
        if (add(listing, entry->d_name, &status, 0,
                is_whole ? FUSE_FILL_DIR_PLUS : fuse_fill_dir_flags(0)) != 0)
            break;
    }
    ::closedir(folder);
    return 0;
}

int get_attribute(const char *path, const char *name, char *value, size_t size)
{
    return answer(::lgetxattr(waited_for("attribute", path).c_str(), name, value, size));
}

int list_attributes(const char *path, char *names, size_t size)
{
    return answer(::llistxattr(waited_for("attributes", path).c_str(), names, size));
}

// The system may keep what it has read, as for an image, whose content does not change.
void *keep_in_cache(fuse_conn_info *connection, fuse_config *config)
{
    // A listing says what its entries are.
    connection->want &= ~unsigned(FUSE_CAP_READDIRPLUS_AUTO);
    constexpr double long_enough_s = 3600;
    config->kernel_cache = 1;
    config->entry_timeout = long_enough_s;
    config->attr_timeout = long_enough_s;
    return nullptr;
}

// From then on the system does not ask at all when a file is opened.
int need_not_open(const char *, fuse_file_info *)
{
    return -ENOSYS;
}

int open_and_read(const char *path, char *bytes, size_t size, off_t from, fuse_file_info *)
{
    const int opened = ::open(waited_for("read", path).c_str(), O_RDONLY | O_CLOEXEC);
    const int result = answer(opened < 0 ? -1 : ::pread(opened, bytes, size, from));
    if (opened >= 0)
        ::close(opened);
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4 && argc != 5) {
        std::fprintf(stderr, "usage: slow_mount FOLDER MOUNT_POINT MICROSECONDS [keep]\n");
        return 2;
    }
    shown_folder = argv[1];
    delay = std::chrono::microseconds(std::atol(argv[3]));
    fuse_operations operations = {};
    operations.getattr = get_status;
    operations.readlink = read_link;
    operations.open = open_file;
    operations.read = read_file;
    operations.release = release_file;
    operations.readdir = list_folder;
    operations.getxattr = get_attribute;
    operations.listxattr = list_attributes;
    if (argc == 5) {
        operations.init = keep_in_cache;
        operations.open = need_not_open;
        operations.read = open_and_read;
        operations.release = nullptr;
    }
    char foreground[] = "-f";
    char read_only[] = "-oro";
    char *arguments[] = {argv[0], foreground, read_only, argv[2], nullptr};
    const int status = fuse_main(4, arguments, &operations, nullptr);
    for (const auto &[kind, count] : requests)
        std::printf("%s %ld\n", kind.c_str(), count);
    return status;
}
