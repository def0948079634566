#include "results/rows/query_row_writer.h"

#include "text/stored_text.h"

#include <QSqlError>
#include <QVariant>

namespace results {

query_row_writer::query_row_writer(const QSqlDatabase &database, const char *statement)
    : query_(database)
    , statement_(QLatin1String(statement))
    , prepared_(query_.prepare(statement_))
{
}

bool query_row_writer::insert(const QString *const *values, int count)
{
    if (!prepared_)
        prepared_ = query_.prepare(statement_);
    // Executing an unprepared statement would replace the error of the preparation.
    if (!prepared_)
        return false;
    bound_.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        QString &bound = bound_[static_cast<size_t>(i)];
        // Neighbouring rows share many texts: do not bind those again.
        if (query_.isActive() && is_same_object(bound, *values[i]))
            continue;
        query_.bindValue(i, text::text_for_query(*values[i]));
        bound = *values[i];
    }
    return query_.exec();
}

QString query_row_writer::error_text() const
{
    return query_.lastError().text();
}

} // namespace results
