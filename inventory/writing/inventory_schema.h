// The tables of the inventory. docs/inventory.md explains each column.
#pragma once

namespace inventory {

constexpr int schema_version = 1; // also the database's user_version
// "CdIn": tells programs such as file(1) what database this is.
constexpr int application_id = 0x4364496e;

constexpr char schema[] = R"(
create table source(
    id integer primary key,
    path text not null,
    layout text not null,
    root text not null,
    os_version text,
    volume_name text,
    volume_uuid text,
    count_name text not null);
create table list(
    id integer primary key,
    source integer not null references source(id),
    user text not null,
    kind text not null,
    place text not null,
    path text not null,
    file text,
    size integer,
    modified text,
    created text,
    sha256 text,
    status text not null,
    reason text,
    entries integer,
    rows integer,
    rows_differ integer,
    values_whole integer not null);
create table value(
    list integer not null references list(id),
    item integer,
    path text not null,
    class text not null,
    text text,
    bytes integer,
    sha256 text);
create table note(
    id integer primary key,
    source integer not null references source(id),
    user text,
    path text,
    text text not null,
    target text,
    failure integer not null);
create table place(
    source integer not null references source(id),
    user text not null,
    kind text not null,
    name text not null,
    path text not null);
)";

constexpr char insert_source[] = "insert into source(id, path, layout, root, os_version, "
                                 "volume_name, volume_uuid, count_name) values(?,?,?,?,?,?,?,?)";
constexpr char insert_list[] =
    "insert into list(id, source, user, kind, place, path, file, size, modified, created, sha256, "
    "status, reason, entries, values_whole) values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)";
constexpr char insert_value[] =
    "insert into value(list, item, path, class, text, bytes, sha256) values(?,?,?,?,?,?,?)";
constexpr char insert_note[] =
    "insert into note(source, user, path, text, target, failure) values(?,?,?,?,?,?)";
constexpr char insert_place[] =
    "insert into place(source, user, kind, name, path) values(?,?,?,?,?)";

} // namespace inventory
