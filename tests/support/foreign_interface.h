// The plug-in's interface as a host declares it for itself: never derived from the plug-in's own
// header, so that a change of the slot order shows.
#pragma once

#include <QFrame>
#include <QList>
#include <QString>
#include <QStringList>

namespace foreign {

struct account
{
    QString system_user;
    QString domain_user;
};

struct source
{
    QString path, type, display, internal, version;
    QList<account> accounts;
    QString seventh, eighth;
    QStringList ninth;
    QString tenth, eleventh, twelfth, thirteenth;
};

struct desktop
{
    QString first, second;
    bool third = false;
    QString fourth, fifth;
};

struct general
{
    bool first = false, debug = false, on_terminal = false, in_file = false, enciphered = false;
    QString file;
};

class parser;

class plugin : public QFrame
{
public:
    virtual void set_engine_type(int) = 0;
    virtual QString get_artifact_name() = 0;
    virtual void set_essentials() = 0;
    virtual void set_source_count(int) = 0;
    virtual void set_ios_uid_backup_pointer(parser *) = 0;
    virtual void set_desktop_info(desktop) = 0;
    virtual void set_general_info(general) = 0;
    virtual void set_source_info(source) = 0;
    virtual void set_essential_for_haldo_bench_extraction(QStringList, QStringList) = 0;
    virtual void set_result_directory(QString) = 0;
    virtual void create_db_tables() = 0;
    virtual void set_clear_db(bool) = 0;
    virtual void cancel_extraction() = 0;
    virtual void find_source_file() = 0;
    virtual void set_extended_attributes_list(QStringList) = 0;
    virtual void extract_artifacts() = 0;
    virtual void generate_chat_html_pages() = 0;
    virtual void remove_temporary_asthetics() = 0;
};

} // namespace foreign
