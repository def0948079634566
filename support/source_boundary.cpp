#include "source_boundary.h"

#include "file_names.h"

#include <QList>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <vector>

namespace support {

namespace {

constexpr int most_links_followed = 40; // what the system itself allows
// The examined system opens no path of more than 1,024 bytes, this one none of more than 4,096.
constexpr int longest_path_bytes = 4096; // below the root
constexpr int most_names_walked = 4096;  // with those of links

QByteArray folder_of(const QString &root)
{
    QByteArray folder = support::encoded_name(root);
    if (folder.isEmpty())
        return QByteArrayLiteral("./");
    // Without a trailing "/" the root is a prefix of names; the folder is what precedes them.
    return folder.left(folder.lastIndexOf('/') + 1);
}

QByteArray without_links(const QByteArray &folder)
{
    char *real = ::realpath(folder.constData(), nullptr);
    if (real == nullptr)
        return {};
    QByteArray path(real);
    std::free(real);
    if (!path.endsWith('/'))
        path += '/';
    return path;
}

bool exists(const QByteArray &path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0;
}

} // namespace

// One resolution: what is still to be walked, and the way that was found so far.
class source_boundary::walk
{
public:
    explicit walk(const source_boundary &boundary)
        : boundary_(boundary)
    {
    }

    reach run(const QByteArray &below_root)
    {
        push(below_root);
        while (!pending_.empty()) {
            const QByteArray name = pending_.back();
            pending_.pop_back();
            if (++names_walked_ > most_names_walked)
                return reach::missing;
            const reach after = step(name);
            if (after != reach::inside)
                return after;
        }
        return reach::inside;
    }

    [[nodiscard]] QByteArray path() const
    {
        QByteArray joined = boundary_.root_;
        for (size_t i = 0; i < found_.size(); ++i) {
            if (i > 0)
                joined += '/';
            joined += found_[i];
        }
        return joined;
    }

private:
    void push(const QByteArray &path)
    {
        const QList<QByteArray> names = path.split('/');
        for (auto name = names.crbegin(); name != names.crend(); ++name)
            pending_.push_back(*name);
    }

    reach step(const QByteArray &name)
    {
        if (name.isEmpty() || name == ".")
            return reach::inside;
        if (name == "..") {
            if (found_.empty())
                return reach::outside;
            found_.pop_back();
            return reach::inside;
        }
        found_.push_back(name);
        struct stat status = {};
        const QByteArray here = path();
        if (::lstat(here.constData(), &status) != 0)
            return failed_look_up(errno);
        if (S_ISLNK(status.st_mode))
            return follow(here);
        if (!S_ISDIR(status.st_mode) && !pending_.empty())
            return reach::missing;
        return reach::inside;
    }

    reach failed_look_up(int error)
    {
        if (error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG)
            return reach::missing;
        found_.pop_back(); // what is left is the folder that refused
        return reach::denied;
    }

    reach follow(const QByteArray &link)
    {
        if (++links_followed_ > most_links_followed)
            return reach::missing;
        char target[PATH_MAX];
        const ssize_t length = ::readlink(link.constData(), target, sizeof target);
        if (length <= 0 || length == static_cast<ssize_t>(sizeof target))
            return reach::missing;
        found_.pop_back();
        const QByteArray text(target, static_cast<int>(length));
        return text.startsWith('/') ? follow_absolute(text) : (push(text), reach::inside);
    }

    reach follow_absolute(const QByteArray &target)
    {
        found_.clear();
        if (exists(boundary_.root_ + target.mid(1))) {
            push(target);
            return reach::inside;
        }
        for (const QByteArray &prefix : {boundary_.root_, boundary_.real_root_}) {
            if (!prefix.isEmpty() && target.startsWith(prefix)) {
                push(target.mid(prefix.size()));
                return reach::inside;
            }
        }
        // A dangling link into a folder that the source does have is just dangling.
        const QByteArray first_name = target.mid(1).split('/').constFirst();
        if (first_name.isEmpty() || !exists(boundary_.root_ + first_name))
            return reach::outside;
        push(target);
        return reach::inside;
    }

    const source_boundary &boundary_;
    std::vector<QByteArray> pending_; // names to walk, the next one last
    std::vector<QByteArray> found_;   // names below the root, free of links
    int names_walked_ = 0;
    int links_followed_ = 0;
};

source_boundary::source_boundary(const QString &root)
    : root_(folder_of(root))
    , real_root_(without_links(root_))
{
}

resolved_path source_boundary::resolve(const QString &path) const
{
    const QByteArray encoded = support::encoded_name(path);
    const bool is_root = encoded + '/' == root_;
    if (!is_root && !encoded.startsWith(root_) && root_ != "./")
        return {reach::outside, {}};
    if (encoded.contains('\0') || encoded.size() - root_.size() > longest_path_bytes)
        return {reach::missing, {}};
    const bool relative = root_ == "./" && !encoded.startsWith(root_);
    return resolve_below(is_root ? QByteArray() : encoded.mid(relative ? 0 : root_.size()));
}

resolved_path source_boundary::find(const QByteArray &below_root) const
{
    walk steps(*this);
    const reach where = steps.run(below_root);
    const bool has_path = where == reach::inside || where == reach::denied;
    return {where, has_path ? support::decoded_name(steps.path()) : QString()};
}

resolved_path source_boundary::resolve_below(const QByteArray &below_root) const
{
    const int name_start = below_root.lastIndexOf('/') + 1;
    const QByteArray name = below_root.mid(name_start);
    if (name_start == 0 || name.isEmpty() || name == "." || name == "..")
        return find(below_root);
    const QByteArray folder = below_root.left(name_start - 1);
    if (!last_folder_ || last_folder_->below_root != folder) {
        const resolved_path found = find(folder);
        last_folder_ = {folder, found.where, support::encoded_name(found.path)};
    }
    QByteArray path = last_folder_->path;
    if (last_folder_->where == reach::denied)
        return {reach::denied, support::decoded_name(path)};
    if (last_folder_->where != reach::inside)
        return {last_folder_->where, {}};
    if (!path.endsWith('/'))
        path += '/';
    path += name;
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0)
        return errno == ENOENT ? resolved_path() : find(below_root);
    if (!S_ISLNK(status.st_mode))
        return {reach::inside, support::decoded_name(path)};
    return find(below_root);
}

} // namespace support
