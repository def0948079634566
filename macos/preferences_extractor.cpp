// One row per known preference of a user's preferences file.
#include "preferences_extractor.h"

#include "support/file_names.h"
#include "cyberduck_macos.h"
#include "platform/foundation_values.h"
#include "preferences_table.h"
#include "support/plugin_static_function.h"

namespace macos {

const char preferences_statement[] =
    "insert into "
    "preferences(bookmark,system_user,key,value,source_file,artifacts_relation_source_file,"
    "source_count_name,os_scheme_display) values(0,?,?,?,?,?,?,?)";

namespace {

constexpr char extract_signature[] =
    "void cyberduck_macos::xcode_extract_preferences(QString, QString)";
constexpr char insert_signature[] =
    "void cyberduck_macos::insert_values_fun(QString, QString, QSqlDatabase &, QString, QString)";

void log_extract(const QString &message)
{
    plugin_static_function::app_debug(message, QLatin1String(extract_signature));
}

void log_insert(const QString &message)
{
    plugin_static_function::app_debug(message, QLatin1String(insert_signature));
}

// Loads the list; false after the one line that says why not.
bool load_preferences(const QString &path, const QString &source_root,
                      platform::property_list *list)
{
    // A path whose characters are lost in the system's encoding opens nothing.
    if (support::decoded_name(support::encoded_name(path)) != path) {
        log_extract(QStringLiteral(" target_file open  ---FAILED--- "));
        return false;
    }
    const support::resolved_path real = support::source_boundary(source_root).resolve(path);
    if (real.where == support::reach::outside) {
        log_extract(
            QStringLiteral("[xcode_extract_preferences] outside the source ------FAILED------") +
            path);
        return false;
    }
    if (real.where == support::reach::inside && list->load(real.path))
        return true;
    log_extract(QStringLiteral("[xcode_extract_preferences] m_plist open  ---FAILED--- "));
    return false;
}

} // namespace

} // namespace macos

void cyberduck_macos::xcode_extract_preferences(QString plist_path, QString user_name)
{
    using namespace macos;
    log_extract(QStringLiteral(" Starts"));
    if (plist_path.trimmed().isEmpty())
        return;
    result_connection connection(QLatin1String(extract_signature), destination_db_path);
    if (!connection.open()) {
        log_extract(QStringLiteral("[to open destination database-----FAILED-------"));
        log_extract(connection.error_text());
        log_extract(destination_db_path);
        return;
    }
    const platform::release_pool pool;
    platform::property_list list;
    if (!load_preferences(plist_path, fs_extraction_source_path, &list))
        return;
    const qint64 committed = record_count;
    const auto rows_lost = [this, committed](const QString &error) {
        log_extract(QStringLiteral("[xcode_extract_preferences] commit ------FAILED------") +
                    error);
        record_count = committed;
    };
    {
        // One for all rows: 2.5 µs a row less than one for each.
        insert_statement statement(connection, preferences_statement);
        for (const preference &entry : preferences()) {
            const QString value =
                entry.render(list.root().value(QLatin1String(entry.key)), entry.codes);
            if (!value.isNull() &&
                !insert_preference(QLatin1String(entry.label), value, plist_path, user_name,
                                   &statement) &&
                connection.begin_after_loss())
                rows_lost(QString());
        }
    }
    if (list.root().take_cut_text())
        log_extract(
            QStringLiteral("[xcode_extract_preferences] text too long, cut ------FAILED------") +
            plist_path);
    if (list.root().has_left_out())
        log_extract(QStringLiteral("[xcode_extract_preferences] list too large, values left out "
                                   "------FAILED------") +
                    plist_path);
    if (!connection.finish())
        rows_lost(connection.error_text());
    log_extract(QStringLiteral("xcode_extract_preferences Ends"));
}

void cyberduck_macos::insert_values_fun(QString label, QString value, QSqlDatabase &database,
                                        QString plist_path, QString user_name)
{
    macos::insert_statement statement(database, macos::preferences_statement);
    insert_preference(label, value, plist_path, user_name, &statement);
}

bool cyberduck_macos::insert_preference(const QString &label, const QString &value,
                                        const QString &plist_path, const QString &user_name,
                                        macos::insert_statement *statement)
{
    using namespace macos;
    log_insert(QStringLiteral("[insert_values_fun] starts"));
    preference_row row;
    const run_environment around = environment();
    static_cast<row_origin &>(row) = origin_of(user_name, around);
    set_place(plist_path, path_mapper(around.source_root, around.source_type), &row);
    row.key = label;
    row.value = value;
    if (statement->insert_row(preference_columns, row)) {
        count_row();
        return true;
    }
    log_insert(QStringLiteral("Insertion Query -----FAILED-----"));
    log_insert(QStringLiteral("---Error---") + statement->error_text());
    log_insert(QStringLiteral("Query :- ") + statement->executed_query());
    return false;
}
