// Runs the extractors of the selected tabs. The host relies on their order.
#pragma once

#include "extraction/source/extraction_context.h"
#include "extraction/source/source_discovery.h"

#include <QString>
#include <QStringList>

namespace extraction {

class progress_listener
{
public:
    virtual ~progress_listener() = default;

    virtual void extractor_ended() = 0;
    virtual void tab_ended() = 0;
};

struct selected_tabs
{
    int engine_type = -1; // only 0, 1 and 2 extract
    QStringList names;    // as the tables are called
};

// Each writes its rows in one transaction.
void extract_bookmarks(const QStringList &folders, const extraction_context &context);
void extract_history(const QStringList &folders, const extraction_context &context);
void extract_transfers(const QStringList &folders, const extraction_context &context);
void extract_preferences(const QString &file, const QString &user,
                         const extraction_context &context);

void extract_tabs(const selected_tabs &tabs, const client_data &data,
                  const extraction_context &context, progress_listener *listener);

} // namespace extraction
