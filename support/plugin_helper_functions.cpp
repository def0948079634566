#include "plugin_helper_functions.h"

#include "evidence_file.h"
#include "media_extensions.h"
#include "plugin_static_function.h"

#include <QFile>
#include <QFileInfo>
#include <QStringView>

#include <algorithm>

namespace {

constexpr char database_signature[] =
    "QString plugin_helper_functions::get_adhoc_path_for_database(QString)";
constexpr char regular_file_signature[] =
    "QString plugin_helper_functions::get_adhoc_path_for_regular_file(QString)";
constexpr const char *database_companions[] = {"-shm", "-wal"};
constexpr int copy_block_bytes = 256 * 1024;
constexpr int no_bucket = -1;

int bucket_of(QChar first)
{
    const ushort code = first.unicode();
    if (code >= '0' && code <= '9')
        return code - '0';
    if (code >= 'a' && code <= 'z')
        return 10 + code - 'a';
    return no_bucket;
}

template <typename buckets_type, size_t count>
void append_extensions(buckets_type *buckets, const support::extension_text (&extensions)[count])
{
    for (const support::extension_text extension : extensions) {
        const int bucket = bucket_of(QLatin1Char(extension[1]));
        (*buckets)[static_cast<size_t>(bucket)].append(QLatin1String(extension));
    }
}

// What follows the last "." of the trimmed name, in lower case; empty when there is nothing.
QString suffix_of(QStringView file_name)
{
    const QStringView name = file_name.trimmed();
    const auto last_dot = name.lastIndexOf(QLatin1Char('.'));
    // Only the suffix is lowered: no character becomes a dot or a blank by it.
    return last_dot < 0 ? QString() : name.mid(last_dot + 1).toString().toLower();
}

// Compares without the entry's dots and without making a text of the rest: this runs for every
// entry of a bucket, for every file of a source.
bool names_suffix(QStringView entry, QStringView suffix)
{
    auto rest = suffix.begin();
    for (const QChar character : entry) {
        if (character == QLatin1Char('.'))
            continue;
        if (rest == suffix.end() || *rest != character)
            return false;
        ++rest;
    }
    return rest == suffix.end();
}

bool is_same_file(const QString &first, const QString &second)
{
    const QString canonical = QFileInfo(first).canonicalFilePath();
    return !canonical.isEmpty() && canonical == QFileInfo(second).canonicalFilePath();
}

// False on a failure and when cancelled half-way. The source's size at the start is the limit, so
// that a file that somebody keeps writing to comes to an end.
bool copy_bytes(const support::evidence_file &source, QFile *copy)
{
    QByteArray block(copy_block_bytes, Qt::Uninitialized);
    qint64 offset = 0;
    while (offset < source.size()) {
        if (plugin_static_function::bool_cancel_extraction)
            return false;
        const qint64 wanted = std::min<qint64>(block.size(), source.size() - offset);
        const qint64 length = source.read_at(offset, block.data(), wanted);
        if (length < 0 || copy->write(block.constData(), length) != length)
            return false;
        if (length == 0)
            break;
        offset += length;
    }
    return copy->flush();
}

enum class copy_outcome { copied, no_file, failed };

// Replaces `destination`, but never by itself: deleting it would delete the evidence. What lay
// there goes even if there is nothing to copy, and a failure leaves nothing behind.
copy_outcome copy_evidence(const QString &source_path, const QString &destination)
{
    if (is_same_file(source_path, destination))
        return copy_outcome::failed;
    QFile::remove(destination);
    support::evidence_file source;
    if (!source.open(source_path))
        return copy_outcome::no_file;
    QFile copy(destination);
    if (!copy.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return copy_outcome::failed;
    if (copy_bytes(source, &copy))
        return copy_outcome::copied;
    copy.remove();
    return copy_outcome::failed;
}

// A log that an earlier copy left under the destination's name would be played into this database,
// so it goes; and a database whose own log broke off would miss rows, so it goes with its log.
void copy_database(const QString &source_path, const QString &destination)
{
    if (copy_evidence(source_path, destination) != copy_outcome::copied)
        return;
    for (const char *companion : database_companions) {
        const QLatin1String ending(companion);
        if (copy_evidence(source_path + ending, destination + ending) == copy_outcome::failed) {
            for (const char *copied : {"", "-shm", "-wal"})
                QFile::remove(destination + QLatin1String(copied));
            return;
        }
    }
}

// Null when cancelled: then no name was found to be free.
QString free_name(const QString &source_path, const QString &folder, const char *signature)
{
    return plugin_static_function::get_available_file(QFileInfo(source_path).fileName(), folder,
                                                      QLatin1String(signature));
}

} // namespace

plugin_helper_functions::plugin_helper_functions(QWidget *parent)
    : QWidget(parent)
{
    initialize_image_extension_list();
    initialize_audio_extension_list();
    initialize_video_extension_list();
}

void plugin_helper_functions::initialize_image_extension_list()
{
    append_extensions(&image_extensions_, support::image_extensions);
}

void plugin_helper_functions::initialize_audio_extension_list()
{
    append_extensions(&audio_extensions_, support::audio_extensions);
}

void plugin_helper_functions::initialize_video_extension_list()
{
    append_extensions(&video_extensions_, support::video_extensions);
}

bool plugin_helper_functions::is_listed(const QString &suffix,
                                        const extension_buckets &buckets) const
{
    const int bucket = suffix.isEmpty() ? no_bucket : bucket_of(suffix.at(0));
    if (bucket == no_bucket)
        return false;
    for (const QString &entry : buckets[static_cast<size_t>(bucket)]) {
        if (cancel_extraction_flag_.load(std::memory_order_relaxed))
            return false;
        if (names_suffix(entry, suffix))
            return true;
    }
    return false;
}

bool plugin_helper_functions::check_is_image_by_extn(QString file_name)
{
    return is_listed(suffix_of(file_name), image_extensions_);
}

bool plugin_helper_functions::check_is_audio_by_extn(QString file_name)
{
    return is_listed(suffix_of(file_name), audio_extensions_);
}

bool plugin_helper_functions::check_is_video_by_extn(QString file_name)
{
    const QString suffix = suffix_of(file_name);
    if (is_listed(suffix, video_extensions_))
        return true;
    return !suffix.isEmpty() && suffix.at(0).isLetter() && is_listed(suffix, audio_extensions_);
}

QString plugin_helper_functions::get_adhoc_path_for_database(QString source_path)
{
    // Without a folder the copy would land in the host's working directory.
    if (source_path.trimmed().isEmpty() || adhoc_parent_path_.isEmpty())
        return QString();
    const QString name = free_name(source_path, adhoc_parent_path_, database_signature);
    QString destination = adhoc_parent_path_ + name;
    if (!name.isEmpty())
        copy_database(source_path, destination);
    return destination;
}

QString plugin_helper_functions::get_adhoc_path_for_regular_file(QString source_path)
{
    if (source_path.trimmed().isEmpty() || adhoc_parent_path_.isEmpty())
        return QString();
    const QString name = free_name(source_path, adhoc_parent_path_, regular_file_signature);
    QString destination = adhoc_parent_path_ + name;
    if (!name.isEmpty())
        copy_evidence(source_path, destination);
    return destination;
}

void plugin_helper_functions::set_adhoc_parent_path(QString path)
{
    adhoc_parent_path_ = path;
}

void plugin_helper_functions::set_essentials()
{
    cancel_extraction_flag_ = false;
}

void plugin_helper_functions::set_cancel_extraction(bool cancel)
{
    cancel_extraction_flag_ = cancel;
}
