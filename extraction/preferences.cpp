#include "extraction/preferences.h"

#include "extraction/lists/list_run.h"
#include "extraction/preferences_table.h"

namespace extraction {

namespace {

constexpr extractor_words make_words()
{
    extractor_words words;
    words.starts = " Starts";
    words.database_failed = "[to open destination database-----FAILED-------";
    words.database_error = "%1";
    words.database_path = "%1";
    words.path_failed = " target_file open  ---FAILED--- ";
    words.list_failed = "[xcode_extract_preferences] m_plist open  ---FAILED--- ";
    words.outside_source = "[xcode_extract_preferences] outside the source ------FAILED------%1";
    words.text_cut = "[xcode_extract_preferences] text too long, cut ------FAILED------%1";
    words.values_left_out =
        "[xcode_extract_preferences] list too large, values left out ------FAILED------%1";
    words.ends = "xcode_extract_preferences Ends";
    words.rows.signature = "void cyberduck_macos::xcode_extract_preferences(QString, QString)";
    words.rows.insert_signature = "void cyberduck_macos::insert_values_fun(QString, QString, "
                                  "QSqlDatabase &, QString, QString)";
    words.rows.insert_starts = "[insert_values_fun] starts";
    words.rows.insert_failed = "Insertion Query -----FAILED-----";
    words.rows.insert_error = "---Error---%1";
    words.rows.insert_query = "Query :- %1";
    words.rows.commit_failed = "[xcode_extract_preferences] commit ------FAILED------%1";
    return words;
}

} // namespace

const extractor_profile preferences::own_profile = {
    make_words(),
    "ch.sudo.cyberduck.plist",
    "insert into "
    "preferences(bookmark,system_user,key,value,source_file,artifacts_relation_source_file,"
    "source_count_name,os_scheme_display) values(0,?,?,?,?,?,?,?)",
};

const extractor_profile &preferences::profile() const
{
    return own_profile;
}

step preferences::read(const loaded_list &list, list_run *run)
{
    preference_row row;
    static_cast<row_origin &>(row) = list.origin;
    for (const preference &entry : known_preferences()) {
        row.value = entry.render(list.root.value(QLatin1String(entry.key)), entry.codes);
        if (row.value.isNull())
            continue;
        row.key = QLatin1String(entry.label);
        run->rows().insert(preference_columns, row);
    }
    return step::done;
}

void insert_preference(const single_preference &preference, const QSqlDatabase &database,
                       const extraction_context &context)
{
    preference_row row;
    static_cast<row_origin &>(row) = origin_of(preference.user, context.source);
    set_place(preference.list_path, path_mapper(context.source.root, context.source.type), &row);
    row.key = preference.label;
    row.value = preference.value;
    results::insert_statement statement(database, preferences::own_profile.statement);
    results::insert_logged(preference_columns, row, preferences::own_profile.words.rows,
                           database.databaseName(), context.log, &context.counter, &statement);
}

} // namespace extraction
