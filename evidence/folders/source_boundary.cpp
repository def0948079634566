#include "evidence/folders/source_boundary.h"

#include "evidence/access/source_open.h"
#include "evidence/files/file_names.h"

#include <QList>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <vector>

namespace evidence {

namespace {

constexpr int max_links_followed = 40; // what the system itself allows
// The examined system opens no path of more than 1,024 bytes, this one none of more than 4,096.
constexpr int max_path_bytes = 4096;   // below the root
constexpr int max_names_walked = 4096; // with those of links
// The system walks about as many names in the time of one step here.
constexpr int bytes_per_step = 64;

QByteArray folder_of(const QString &root)
{
    QByteArray folder = evidence::encoded_name(root);
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

// Whether the system finds the same by these names as a walk does, if none of them is a link.
bool is_plain_way(const QByteArray &names)
{
    const QByteArray bounded = '/' + names + '/';
    return !bounded.contains("//") && !bounded.contains("/./") && !bounded.contains("/../");
}

} // namespace

// One resolution: what is still to be walked, and the way that was found so far.
class source_boundary::walk
{
public:
    enum class missing_names { end_it, kept };

    explicit walk(const source_boundary &boundary, missing_names missing = missing_names::end_it)
        : boundary_(boundary)
        , keeps_missing_(missing == missing_names::kept)
    {
    }

    way run(const QByteArray &below_root)
    {
        push(below_root);
        while (!pending_.empty()) {
            const QByteArray name = pending_.back();
            pending_.pop_back();
            if (++names_walked_ > max_names_walked)
                return {reach::missing, {}};
            if (names_walked_ > boundary_.limits_.granted_steps && --boundary_.steps_left_ < 0)
                return {reach::costly, {}};
            const reach after = step(name);
            if (after != reach::inside)
                return {after, names()};
        }
        return {reach::inside, names()};
    }

private:
    void push(const QByteArray &path)
    {
        const QList<QByteArray> names = path.split('/');
        for (auto name = names.crbegin(); name != names.crend(); ++name)
            pending_.push_back(*name);
    }

    [[nodiscard]] QByteArray names() const
    {
        QByteArray joined;
        for (const QByteArray &name : found_)
            joined += joined.isEmpty() ? name : '/' + name;
        return joined;
    }

    reach step(const QByteArray &name)
    {
        if (name.isEmpty() || name == ".")
            return reach::inside;
        if (name == "..")
            return climb();
        if (is_beyond_missing_)
            return arrive_at(name);
        struct stat status = {};
        if (::fstatat(folder(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            return errno == ENOENT ? step_to_missing(name) : failed_look_up(errno);
        if (S_ISLNK(status.st_mode))
            return follow(name);
        if (pending_.empty())
            return arrive_at(name);
        if (!S_ISDIR(status.st_mode))
            return reach::missing;
        descriptor next = hold_folder(folder(), name.constData());
        if (!next.is_open())
            return failed_look_up(errno);
        folder_ = std::move(next);
        return arrive_at(name);
    }

    reach arrive_at(const QByteArray &name)
    {
        found_.push_back(name);
        return reach::inside;
    }

    // The open folder in which names are looked up.
    [[nodiscard]] int folder() const
    {
        return folder_.is_open() ? folder_.get() : boundary_.root_folder_.get();
    }

    reach climb()
    {
        if (found_.empty())
            return reach::outside;
        found_.pop_back();
        is_beyond_missing_ = false;
        folder_.close();
        if (found_.empty())
            return reach::inside;
        boundary_.steps_left_ -= names().size() / bytes_per_step;
        folder_ = boundary_.open_below(names());
        is_beyond_missing_ = keeps_missing_ && !folder_.is_open();
        return folder_.is_open() || keeps_missing_ ? reach::inside : reach::missing;
    }

    // The folder has no entry of that name: goes to the one that the examined Mac would take.
    reach step_to_missing(const QByteArray &name)
    {
        if (keeps_missing_) {
            is_beyond_missing_ = true;
            return arrive_at(name);
        }
        const similar_names::match other =
            boundary_.similar_names_.find(boundary_.real_path(names()), name);
        if (other.is_ambiguous)
            return reach::ambiguous;
        return other.name.isEmpty() || other.name == name ? reach::missing : step(other.name);
    }

    // What was found so far is the folder that refused.
    static reach failed_look_up(int error)
    {
        const bool is_gone = error == ENOENT || error == ENOTDIR || error == ELOOP;
        return is_gone || error == ENAMETOOLONG ? reach::missing : reach::denied;
    }

    reach follow(const QByteArray &name)
    {
        if (++links_followed_ > max_links_followed)
            return reach::missing;
        const QByteArray text = read_link(folder(), name.constData());
        if (text.isEmpty() || text.size() == PATH_MAX)
            return reach::missing;
        return text.startsWith('/') ? follow_absolute(text) : (push(text), reach::inside);
    }

    reach follow_absolute(const QByteArray &target)
    {
        found_.clear();
        folder_.close();
        if (!is_there(target.mid(1))) {
            for (const QByteArray &prefix : {boundary_.root_, boundary_.real_root_}) {
                if (!prefix.isEmpty() && target.startsWith(prefix)) {
                    push(target.mid(prefix.size()));
                    return reach::inside;
                }
            }
        }
        // A dangling link into a folder that the source does have is just dangling.
        const QByteArray first_name = target.mid(1).split('/').constFirst();
        if (first_name.isEmpty() || !is_there(first_name))
            return reach::outside;
        push(target);
        return reach::inside;
    }

    // Whether these names lead somewhere from the root without a link on the way.
    [[nodiscard]] bool is_there(const QByteArray &names) const
    {
        struct stat status = {};
        const int name_start = names.lastIndexOf('/') + 1;
        if (name_start == 0)
            return ::fstatat(boundary_.root_folder_.get(), names.constData(), &status,
                             AT_SYMLINK_NOFOLLOW) == 0;
        boundary_.steps_left_ -= names.size() / bytes_per_step;
        const descriptor folder = boundary_.open_below(names.left(name_start - 1));
        const QByteArray name = names.mid(name_start);
        return folder.is_open() && (name.isEmpty() || ::fstatat(folder.get(), name.constData(),
                                                                &status, AT_SYMLINK_NOFOLLOW) == 0);
    }

    const source_boundary &boundary_;
    const bool keeps_missing_;
    std::vector<QByteArray> pending_; // names to walk, the next one last
    std::vector<QByteArray> found_;   // names below the root, free of links
    descriptor folder_;               // the one that found_ leads to; closed for the root
    bool is_beyond_missing_ = false;  // nothing further is there
    int names_walked_ = 0;
    int links_followed_ = 0;
};

source_boundary::source_boundary(const QString &root, run::cancellation cancelled,
                                 const boundary_limits &limits)
    : root_(folder_of(root))
    , real_root_(without_links(root_))
    , cancelled_(cancelled)
    , limits_(limits)
    , similar_names_(cancelled)
    , steps_left_(limits.steps)
    , ways_(limits.remembered_bytes)
{
    if (!real_root_.isEmpty())
        root_folder_ = hold_folder(AT_FDCWD, real_root_.constData());
}

source_boundary::~source_boundary() = default;

QString source_boundary::real_root() const
{
    return decoded_name(real_root_);
}

QByteArray source_boundary::real_path(const QByteArray &names) const
{
    return real_root_ + names;
}

descriptor source_boundary::open_below(const QByteArray &names) const
{
    return hold_folder(root_folder_.get(), names.isEmpty() ? "." : names.constData());
}

std::optional<QByteArray> source_boundary::below_root(const QString &path, reach *why_not) const
{
    const QByteArray encoded = encoded_name(path);
    *why_not = reach::missing;
    if (encoded.contains('\0'))
        return std::nullopt;
    // A "?" may stand for a character that no name has, as half a surrogate pair.
    if (encoded.contains('?') && decoded_name(encoded) != path)
        return std::nullopt;
    std::optional<QByteArray> below;
    for (const QByteArray &root : {root_, real_root_}) {
        if (!below && !root.isEmpty() && (encoded + '/' == root || encoded.startsWith(root)))
            below = encoded.mid(root.size());
    }
    if (!below && root_ == "./")
        below = encoded;
    if (!below)
        *why_not = reach::outside;
    return below && below->size() <= max_path_bytes && root_folder_.is_open() ? below
                                                                              : std::nullopt;
}

resolved_path source_boundary::resolve(const QString &path) const
{
    reach why_not = reach::missing;
    const std::optional<QByteArray> below = below_root(path, &why_not);
    return below ? resolve_below(*below, nullptr) : resolved_path{why_not, {}, {}, {}};
}

resolved_path source_boundary::hold(const QString &path) const
{
    reach why_not = reach::missing;
    const std::optional<QByteArray> below = below_root(path, &why_not);
    auto file = std::make_shared<held_file>();
    resolved_path place =
        below ? resolve_below(*below, file.get()) : resolved_path{why_not, {}, {}, {}};
    if (place.where == reach::inside)
        place.file = std::move(file);
    return place;
}

QString source_boundary::place_of(const QString &path) const
{
    reach why_not = reach::missing;
    const std::optional<QByteArray> below = below_root(path, &why_not);
    if (!below)
        return {};
    const way found = walk(*this, walk::missing_names::kept).run(*below);
    return found.where == reach::inside ? decoded_name(real_path(found.names)) : QString();
}

resolved_path source_boundary::found(const way &found) const
{
    if (found.where == reach::inside)
        return {found.where, decoded_name(real_path(found.names)), {}, {}};
    const bool is_denied = found.where == reach::denied;
    return {found.where, is_denied ? decoded_name(root_ + found.names) : QString(), {}, {}};
}

source_boundary::way source_boundary::find(const QByteArray &below_root) const
{
    return walk(*this).run(below_root);
}

source_boundary::way source_boundary::find_folder(const QByteArray &below_root,
                                                  descriptor *folder) const
{
    const way *known = ways_.object(below_root);
    if (known == nullptr) {
        way found;
        steps_left_ -= below_root.size() / bytes_per_step;
        if (is_plain_way(below_root))
            *folder = open_below(below_root);
        if (folder->is_open())
            found = {reach::inside, below_root};
        else
            found = find(below_root);
        const int cost = below_root.size() + found.names.size() + 64;
        if (found.where == reach::costly || !ways_.insert(below_root, new way(found), cost))
            return found;
        known = ways_.object(below_root);
    }
    if (known->where == reach::inside && !folder->is_open())
        *folder = open_below(known->names);
    return *known;
}

resolved_path source_boundary::resolve_below(const QByteArray &below_root, held_file *file) const
{
    const int name_start = below_root.lastIndexOf('/') + 1;
    const QByteArray name = below_root.mid(name_start);
    const QByteArray asked = below_root.left(qMax(0, name_start - 1));
    const bool has_name = name_start != 0 && !name.isEmpty() && name != "." && name != "..";
    if (has_name && (!open_folder_.is_open() || open_asked_ != asked)) {
        open_folder_.close();
        open_way_ = find_folder(asked, &open_folder_);
        open_asked_ = asked;
        asked_in_folder_ = 0;
        contents_.reset();
    }
    if (has_name && open_way_.where != reach::inside)
        return found(open_way_);
    if (has_name && open_folder_.is_open()) {
        if (const std::optional<way> entry = entry_of_open_folder(name, file)) {
            resolved_path place = found(*entry);
            place.folder = contents_;
            return place;
        }
    }
    const way walked = find(below_root);
    if (file != nullptr && walked.where == reach::inside && !file->hold(real_path(walked.names)))
        return {};
    return found(walked);
}

void source_boundary::list_open_folder() const
{
    constexpr int worth_a_listing = 4;
    if (++asked_in_folder_ == worth_a_listing)
        contents_ = folder_contents::list(real_path(open_way_.names), cancelled_);
}

mode_t source_boundary::look_at(const QByteArray &name, held_file *file) const
{
    struct stat status = {};
    if (file == nullptr)
        return ::fstatat(open_folder_.get(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0
                   ? status.st_mode
                   : 0;
    const QByteArray &folder = open_way_.names;
    const QByteArray path = real_path(folder.isEmpty() ? name : folder + '/' + name);
    const bool is_held = contents_ && contents_->is_file(name)
                             ? file->hold_listed(open_folder_.get(), name.constData(), path)
                             : file->hold_in(open_folder_.get(), name.constData(), path);
    return is_held ? file->status().mode : 0;
}

std::optional<source_boundary::way> source_boundary::entry_of_open_folder(const QByteArray &name,
                                                                          held_file *file) const
{
    if (file != nullptr)
        list_open_folder();
    const QByteArray &folder = open_way_.names;
    QByteArray entry = name;
    mode_t mode = look_at(entry, file);
    if (mode == 0 && errno != ENOENT)
        return std::nullopt;
    if (mode == 0) {
        const similar_names::match other = similar_names_.find(real_path(folder), name);
        if (other.is_ambiguous)
            return way{reach::ambiguous, {}};
        if (other.name.isEmpty())
            return way();
        entry = other.name;
        mode = look_at(entry, file);
    }
    if (mode == 0 || S_ISLNK(mode))
        return std::nullopt;
    return way{reach::inside, folder.isEmpty() ? entry : folder + '/' + entry};
}

} // namespace evidence
