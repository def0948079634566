#include "evidence/folders/folder_walk.h"

#include "evidence/access/source_open.h"
#include "evidence/files/file_names.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>

namespace evidence {

namespace {

QByteArray with_trailing_slash(const QString &folder)
{
    QByteArray encoded = evidence::encoded_name(folder);
    if (!encoded.endsWith('/'))
        encoded += '/';
    return encoded;
}

// Whether the bytes mean the same in every encoding of names. Such a name needs no slow codec.
bool is_plain(const QByteArray &name)
{
    return std::all_of(name.begin(), name.end(), [](char byte) { return uchar(byte) < 0x80; });
}

} // namespace

folder_walk::folder_walk(const QString &recorded, const QString &real, const walk_limits &limits,
                         walk_extent extent)
    : recorded_(with_trailing_slash(recorded))
    , real_(with_trailing_slash(real))
    , pending_folders_{QByteArray()}
    , limits_(limits)
    , extent_(extent)
{
}

bool folder_walk::open_next_folder()
{
    while (!pending_folders_.empty()) {
        folder_ = pending_folders_.back();
        pending_folders_.pop_back();
        pending_bytes_ -= folder_.size();
        if (open_folder()) {
            shown_.reset();
            return true;
        }
        note_failed();
    }
    return false;
}

bool folder_walk::open_folder()
{
    QByteArray path = real_ + folder_;
    if (path.size() > PATH_MAX)
        return false;
    path.chop(path.size() > 1 ? 1 : 0); // O_NOFOLLOW looks through a trailing "/"
    const int name_start = folder_.lastIndexOf('/', -2) + 1;
    if (above_.is_open() && !folder_.isEmpty() && folder_.left(name_start) == folder_above_)
        return directory_.open(above_.get(), path.constData() + real_.size() + name_start);
    return directory_.open(AT_FDCWD, path.constData());
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
        if (!directory_.is_open() && !open_next_folder())
            return false;
        const dirent *found = directory_.next();
        if (found == nullptr || ++entries_ > limits_.entries) {
            is_whole_ = is_whole_ && found == nullptr && !directory_.is_cut();
            close_folder();
        } else if (take(*found)) {
            return true;
        }
    }
}

const folder_walk::shown_folder &folder_walk::shown() const
{
    if (!shown_) {
        const QByteArray folder = recorded_ + folder_;
        const QString path = decoded_name(folder);
        shown_ = shown_folder{path, encoded_name(path) == folder};
    }
    return *shown_;
}

void folder_walk::close_folder()
{
    if (!is_whole_)
        note_failed();
    if (has_subfolders_) {
        above_ = hold_folder(directory_.descriptor(), ".");
        folder_above_ = folder_;
    }
    directory_.close();
    has_subfolders_ = false;
    entries_ = 0;
    is_whole_ = true;
}

bool folder_walk::take(const dirent &found)
{
    if (found.d_name[0] == '.' && extent_ == walk_extent::shown)
        return false;
    if (!kind_of(found, &kind_))
        return false;
    name_ = QByteArray(found.d_name);
    if (kind_ == entry_kind::folder) {
        const QByteArray found_folder = folder_ + name_ + '/';
        const bool has_room = pending_folders_.size() < limits_.folders &&
                              pending_bytes_ + found_folder.size() <= limits_.path_bytes;
        is_whole_ = is_whole_ && has_room;
        if (has_room) {
            pending_bytes_ += found_folder.size();
            pending_folders_.push_back(found_folder);
            has_subfolders_ = true;
        }
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
        if (::fstatat(directory_.descriptor(), found.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
            is_whole_ = is_whole_ && errno == ENOENT; // deleted meanwhile: nothing was missed
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
    else if (extent_ == walk_extent::everything)
        *kind = entry_kind::special;
    else
        return false;
    return true;
}

QString folder_walk::path() const
{
    return is_plain(name_) ? shown().path + QLatin1String(name_)
                           : evidence::decoded_name(recorded_ + folder_ + name_);
}

QString folder_walk::real_path() const
{
    return evidence::decoded_name(real_ + folder_ + name_);
}

bool folder_walk::is_hidden() const
{
    return name_.startsWith('.') || folder_.startsWith('.') || folder_.contains("/.");
}

bool folder_walk::path_is_text() const
{
    return shown().is_text &&
           (is_plain(name_) || evidence::encoded_name(evidence::decoded_name(name_)) == name_);
}

} // namespace evidence
