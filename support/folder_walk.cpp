#include "folder_walk.h"

#include "evidence_file.h"
#include "file_names.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace support {

namespace {

constexpr int folder_flags = O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

QByteArray with_trailing_slash(const QString &folder)
{
    QByteArray encoded = support::encoded_name(folder);
    if (!encoded.endsWith('/'))
        encoded += '/';
    return encoded;
}

// Whether the bytes mean the same in every encoding of names: then they need no codec, which costs
// 0.1 µs each time.
bool is_plain(const QByteArray &name)
{
    return std::all_of(name.begin(), name.end(), [](char byte) { return uchar(byte) < 0x80; });
}

} // namespace

folder_walk::folder_walk(const QString &recorded, const QString &real, const walk_limits &limits)
    : recorded_(with_trailing_slash(recorded))
    , real_(with_trailing_slash(real))
    , pending_folders_{QByteArray()}
    , limits_(limits)
{
}

bool folder_walk::open_next_folder()
{
    while (!pending_folders_.empty()) {
        folder_ = pending_folders_.back();
        pending_folders_.pop_back();
        QByteArray path = real_ + folder_;
        path.chop(path.size() > 1 ? 1 : 0); // O_NOFOLLOW looks through a trailing "/"
        const int descriptor = open_unchanged(AT_FDCWD, path.constData(), folder_flags);
        if (descriptor >= 0) {
            directory_.reset(::fdopendir(descriptor));
            if (directory_) {
                shown_folder_ = support::decoded_name(recorded_ + folder_);
                folder_is_text_ = support::encoded_name(shown_folder_) == recorded_ + folder_;
                return true;
            }
            ::close(descriptor);
        }
        note_failed();
    }
    return false;
}

void folder_walk::note_failed()
{
    failed_.append(decoded_name(recorded_ + folder_));
}

QStringList folder_walk::take_failed()
{
    return std::exchange(failed_, {});
}

bool folder_walk::next()
{
    for (;;) {
        if (!directory_ && !open_next_folder())
            return false;
        errno = 0;
        const dirent *found = ::readdir(directory_.get());
        if (found == nullptr || ++entries_ > limits_.entries) {
            is_whole_ = is_whole_ && found == nullptr && errno == 0;
            close_folder();
        } else if (take(*found)) {
            return true;
        }
    }
}

void folder_walk::close_folder()
{
    if (!is_whole_)
        note_failed();
    directory_.reset();
    entries_ = 0;
    is_whole_ = true;
}

bool folder_walk::take(const dirent &found)
{
    if (found.d_name[0] == '.')
        return false;
    if (!kind_of(found, &kind_))
        return false;
    name_ = QByteArray(found.d_name);
    if (kind_ == entry_kind::folder) {
        if (pending_folders_.size() < limits_.folders)
            pending_folders_.push_back(folder_ + name_ + '/');
        else
            is_whole_ = false;
    }
    return true;
}

bool folder_walk::kind_of(const dirent &found, entry_kind *kind)
{
    mode_t mode = 0;
    if (found.d_type != DT_UNKNOWN) {
        mode = static_cast<mode_t>(DTTOIF(found.d_type));
    } else {
        struct stat status = {};
        if (::fstatat(::dirfd(directory_.get()), found.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
            is_whole_ = is_whole_ && errno == ENOENT; // what is gone is not left out
            return false;
        }
        mode = status.st_mode;
    }
    if (S_ISREG(mode))
        *kind = entry_kind::file;
    else if (S_ISDIR(mode))
        *kind = entry_kind::folder;
    else if (S_ISLNK(mode))
        *kind = entry_kind::link;
    else
        return false;
    return true;
}

QString folder_walk::path() const
{
    return is_plain(name_) ? shown_folder_ + QLatin1String(name_)
                           : support::decoded_name(recorded_ + folder_ + name_);
}

QString folder_walk::real_path() const
{
    return support::decoded_name(real_ + folder_ + name_);
}

bool folder_walk::path_is_text() const
{
    return folder_is_text_ &&
           (is_plain(name_) || support::encoded_name(support::decoded_name(name_)) == name_);
}

} // namespace support
