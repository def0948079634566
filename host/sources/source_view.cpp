#include "host/sources/source_view.h"

#include "evidence/access/file_status.h"
#include "evidence/files/evidence_file.h"
#include "evidence/files/file_names.h"
#include "formats/property_list/base/property_list_limits.h"
#include "inventory/reading/sha256.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>

namespace host {

namespace {

void keep_times(int file, const evidence::file_status &status)
{
    const auto as_time = [](const std::optional<qint64> &milliseconds) {
        timespec time = {0, UTIME_OMIT};
        if (milliseconds) {
            time.tv_sec = *milliseconds / 1000;
            time.tv_nsec = *milliseconds % 1000 * 1'000'000;
        }
        return time;
    };
    const timespec times[2] = {as_time(status.times.accessed_ms),
                               as_time(status.times.modified_ms)};
    ::futimens(file, times);
}

enum class copying { done, unreadable, unwritable };

copying copy_list(const QByteArray &from, const QString &to, QByteArray *sha256)
{
    evidence::evidence_file source;
    QByteArray bytes;
    // The plug-in reads no larger list.
    if (!source.open(from) || !source.read_all(&bytes, formats::max_list_bytes))
        return copying::unreadable;
    const auto status = evidence::status_of(source.descriptor(), from.constData());
    QFile target(to);
    if (!QDir().mkpath(QFileInfo(to).path()) ||
        !target.open(QIODevice::WriteOnly | QIODevice::NewOnly) ||
        target.write(bytes) != bytes.size() || !target.flush())
        return copying::unwritable;
    if (status)
        keep_times(target.handle(), *status);
    *sha256 = inventory::sha256_of(bytes);
    return copying::done;
}

} // namespace

source_view make_view(const run_source &source, const QString &root,
                      const run::cancellation &cancelled)
{
    source_view view;
    view.root = root;
    bool is_made = QDir().mkpath(root + QStringLiteral("Users"));
    for (const inventory::found_list &list : source.found.lists) {
        if (!is_made || cancelled.is_requested())
            break;
        if (list.status != inventory::list_status::read || list.real_path.isEmpty())
            continue;
        copied_list copy = {
            evidence::decoded_name(list.real_path), root.chopped(1) + list.path, {}};
        const copying outcome = copy_list(list.real_path, copy.to, &copy.sha256);
        is_made = outcome != copying::unwritable;
        if (outcome == copying::done)
            view.copies.push_back(std::move(copy));
    }
    if (!is_made) {
        view.problem = failure{exit_status::result_unusable,
                               QStringLiteral("the lists cannot be copied to %1; give a RESULT_DIR "
                                              "that can be written and has room.")
                                   .arg(root)};
    }
    return view;
}

} // namespace host
