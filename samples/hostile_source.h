// A source as an adversary would leave it.
#pragma once

#include "samples/filled_source.h"

#include <QFile>

#include <sys/xattr.h>

// A folder "private" lies beside the source. No run may open it.
inline void add_private_neighbour(const forged_source &source)
{
    for (const char *name : {"secret.duck", "secret.cyberducktransfer", "._secret", "0"})
        source.write(QStringLiteral("../private/") + QLatin1String(name), connection_list(1, 5));
}

inline void add_links_and_special_files(const forged_source &source, const QString &folder)
{
    const QString beside = source.outside(QStringLiteral("private"));
    source.link(folder + "away.duck", beside + "/secret.duck");
    source.link(folder + "climbs.duck", "../../../../../../../private/secret.duck");
    source.link(folder + "away.cyberducktransfer", beside + "/secret.cyberducktransfer");
    source.link(folder + "folder", beside);
    source.link(folder + "inside.duck", "0.duck");
    source.link(folder + "loop.duck", "loop.duck");
    source.link(folder + "dangling.duck", "nowhere");
    source.fifo(folder + "fifo.duck");
    source.link(folder + "to_fifo.duck", "fifo.duck");
    source.hard_link(folder + "hard.duck", folder + "0.duck");
}

inline void add_broken_lists(const forged_source &source, const QString &folder)
{
    source.write(folder + "empty.duck", {});
    source.write(folder + "cut.duck", connection_list(1, 50).left(90));
    source.write(folder + "noise.duck", QByteArray(100'000, '\x80'));
    source.write(folder + "deep.duck", QByteArray("<plist>") + QByteArray(300'000, '<'));
    source.write(folder + "nested.duck",
                 "<plist><dict><key>a</key>" + QByteArray("<array>").repeated(100'000));
    source.write(folder + "claims.duck", "bplist00" + QByteArray(32, '\xff'));
    source.write(folder + "line\nbreak\x1b[31m.duck", "broken");
    source.write(folder + "a/b/c/d/e/f/.hidden.duck", "broken");
}

// Local copies with metadata of every kind, and transfers that name places outside.
inline void add_hostile_copies(const forged_source &source, const QString &home)
{
    source.write(home + "/Downloads/._0", QByteArray("\x00\x05\x16\x07", 4) + QByteArray(200, 'x'));
    source.write(home + "/Downloads/photo.jpg", QByteArray("\xff\xd8\xff\xe1", 4) + "Exif");
    source.write(home + "/Downloads/__MACOSX/._photo.jpg", "x");
    source.write(home + "/Downloads/tree/a/b/c", "content");
    source.fifo(home + "/Downloads/pipe.jpg");
    source.fifo(home + "/Downloads/._photo.jpg");
    source.link(home + "/Downloads/out", source.outside(QStringLiteral("private/0")));
    source.write(QStringLiteral(".Spotlight-V100/Store-V2/X/store.db"), QByteArray(9000, '\xff'));
    const QByteArray copy = QFile::encodeName(source.root() + home + "/Downloads/0");
    ::setxattr(copy, "user.com.apple.metadata:kMDItemWhereFroms", "bplist00", 8, 0);
    QByteArray items;
    for (const char *path :
         {"~/Downloads/photo.jpg", "~/Downloads/pipe.jpg", "~/Downloads/tree", "~/Downloads/out",
          "~/../../../private/0", "~/../../private", "~/Downloads"})
        items +=
            "<dict><key>Local Dictionary</key><dict>" + text_entry("Path", path) + "</dict></dict>";
    source.write(
        home + QLatin1String(older_transfers) + "hostile.cyberducktransfer",
        xml_dictionary("<key>Host</key><dict/><key>Items</key><array>" + items + "</array>"));
}

// A good home, and one like it with all of the above.
inline void fill_hostile_source(const forged_source &source)
{
    add_private_neighbour(source);
    const list_counts counts = {5, 5, 2, 3};
    fill_home(source, QStringLiteral("alice"), counts);
    const QString mallory = QStringLiteral("mallory");
    fill_home(source, mallory, counts);
    for (const char *place : {older_bookmarks, older_history}) {
        add_links_and_special_files(source, home_of(mallory) + QLatin1String(place));
        add_broken_lists(source, home_of(mallory) + QLatin1String(place));
    }
    source.write_sparse(home_of(mallory) + QLatin1String(older_history) + "vast.duck", "<plist>",
                        33 << 20);
    add_hostile_copies(source, home_of(mallory));
    source.link(QStringLiteral("Users/stranger"), source.outside(QStringLiteral("private")));
}
