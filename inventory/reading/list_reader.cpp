#include "inventory/reading/list_reader.h"

#include "evidence/files/evidence_file.h"
#include "formats/property_list/base/property_list_limits.h"
#include "inventory/reading/list_values.h"
#include "inventory/reading/sha256.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <new>

namespace inventory {

namespace {

using formats::property_list_value;
using formats::value_kind;

void fail(const QString &reason, list_account *account)
{
    found_list &list = account->list;
    if (list.status == list_status::skipped) {
        list.reason += QStringLiteral("; and ") + reason;
        return;
    }
    list.status = list_status::failed;
    list.reason = reason;
}

QString reason_of_error(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return QStringLiteral("it may not be read");
    case ENOENT:
        return QStringLiteral("it is no regular file");
    default:
        return QStringLiteral("it cannot be opened: ") + QString::fromLocal8Bit(strerror(error));
    }
}

// What a queue promises: a row for each item that is a dictionary. `reason` says why there is none.
qint64 rows_of_queue(const property_list_value &queue, QString *reason)
{
    if (!queue.value(QStringLiteral("Host")).is(value_kind::dictionary)) {
        *reason = QStringLiteral("it names no server");
        return 0;
    }
    const property_list_value items = queue.value(QStringLiteral("Items"));
    if (!items.is(value_kind::array)) {
        *reason = QStringLiteral("it has no items");
        return 0;
    }
    const int count = items.count();
    qint64 rows = 0;
    for (int i = 0; i < count; ++i)
        rows += items.at(i).is(value_kind::dictionary) ? 1 : 0;
    if (rows == 0)
        *reason = QStringLiteral("it has no items");
    return rows;
}

} // namespace

list_account list_reader::read(const found_list &found)
{
    list_account account;
    account.list = found;
    if (found.real_path.isEmpty())
        return account;
    try {
        evidence::evidence_file file;
        const bool is_open = found.is_listed_file
                                 ? file.open_listed(AT_FDCWD, found.real_path.constData())
                                 : file.open(found.real_path);
        if (!is_open) {
            fail(reason_of_error(errno), &account);
            account.file = evidence::status_of(-1, found.real_path.constData());
            return account;
        }
        account.file = evidence::status_of(file.descriptor(), found.real_path.constData());
        read_content(file, &account);
    } catch (const std::bad_alloc &) {
        account.values.clear();
        account.values_are_whole = false;
        fail(QStringLiteral("there is not enough memory for it"), &account);
    }
    parser_.forget();
    return account;
}

void list_reader::read_content(const evidence::evidence_file &file, list_account *account)
{
    if (file.size() > formats::max_list_bytes)
        return fail(QStringLiteral("it is larger than any list of the client"), account);
    if (!file.read_all(&bytes_, formats::max_list_bytes))
        return fail(QStringLiteral("it cannot be read to its end"), account);
    account->sha256 = sha256_of(bytes_);
    if (bytes_.isEmpty())
        return fail(QStringLiteral("it is empty"), account);
    take_apart(account);
}

void list_reader::take_apart(list_account *account)
{
    const int size = bytes_.size();
    parser_.parse_swapped(&bytes_);
    if (parser_.contents() == nullptr)
        return fail(QStringLiteral("it is no property list, or only a part of one"), account);
    const property_list_value root = parser_.root();
    if (!root.is(value_kind::dictionary))
        fail(QStringLiteral("it is a property list, but holds no keys"), account);
    account->values_are_whole = collect_values(parser_, value_limits_of(size), &account->values);
    if (!root.is(value_kind::dictionary) || account->list.kind == list_kind::preferences)
        return;
    QString reason;
    account->entries =
        account->list.kind == list_kind::transfer ? rows_of_queue(root, &reason) : qint64{1};
    if (account->list.reason.isEmpty())
        account->list.reason = reason;
}

} // namespace inventory
