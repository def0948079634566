#include "evidence/access/held_file.h"

#include "evidence/access/source_open.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace evidence {

namespace {

// Between the look at a file and its opening another one can take its place.
constexpr int careful_flags = O_NONBLOCK | O_NOCTTY;

} // namespace

bool held_file::hold(const QByteArray &encoded_path)
{
    errno = ENOENT;
    if (encoded_path.isEmpty() || encoded_path.contains('\0'))
        return false;
    return take(evidence::hold(AT_FDCWD, encoded_path.constData()), encoded_path);
}

bool held_file::hold_named_by_host(const QByteArray &encoded_path)
{
    const int name_start = encoded_path.lastIndexOf('/') + 1;
    const QByteArray folder = name_start == 0 ? QByteArray(".") : encoded_path.left(name_start);
    const bool is_path = !encoded_path.isEmpty() && !encoded_path.contains('\0');
    char *real = !is_path ? nullptr : ::realpath(folder.constData(), nullptr);
    if (real == nullptr)
        return false;
    const QByteArray path = QByteArray(real) + '/' + encoded_path.mid(name_start);
    std::free(real);
    return hold(path);
}

bool held_file::hold_in(int parent, const char *name, const QByteArray &encoded_path)
{
    return take(evidence::hold(parent, name), encoded_path);
}

bool held_file::take(descriptor held, const QByteArray &encoded_path)
{
    const bool can_hold = held.is_open() || errno != ENOSYS;
    read_.close();
    held_ = std::move(held);
    path_ = encoded_path;
    if (can_hold && !held_.is_open())
        return false;
    const std::optional<file_status> status = status_of(held_.get(), path_.constData());
    if (status)
        status_ = *status;
    return status.has_value();
}

bool held_file::hold_listed(int parent, const char *name, const QByteArray &encoded_path)
{
    descriptor opened = open_unchanged(parent, name, careful_flags);
    if (!opened.is_open())
        return hold_in(parent, name, encoded_path);
    held_.close();
    read_ = std::move(opened);
    path_ = encoded_path;
    const std::optional<file_status> status = status_of(read_.get(), nullptr);
    if (!status)
        return false;
    status_ = *status;
    return true;
}

descriptor held_file::read(int flags) const
{
    flags |= careful_flags;
    if (held_.is_open())
        return read_held(held_, flags);
    descriptor opened = open_unchanged(AT_FDCWD, path_.constData(), flags);
    if (!opened.is_open())
        return opened;
    const std::optional<file_status> found = status_of(opened.get(), nullptr);
    if (found && found->device == status_.device && found->inode == status_.inode)
        return opened;
    errno = ENOENT;
    return {};
}

int held_file::for_reading() const
{
    errno = ENOENT;
    if (is_regular() && !read_.is_open())
        read_ = read(0);
    return is_regular() ? read_.get() : -1;
}

int held_file::for_attributes() const
{
    if (read_.is_open() || !(is_regular() || is_folder()))
        return read_.get();
    if (held_.is_open())
        return held_.get();
    read_ = read(0);
    return read_.get();
}

descriptor held_file::for_listing() const
{
    errno = ENOTDIR;
    return is_folder() ? read(O_DIRECTORY) : descriptor();
}

} // namespace evidence
