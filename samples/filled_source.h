// A source with many lists of every kind.
#pragma once

#include "samples/forged_source.h"

#include <QByteArray>
#include <QString>

struct list_counts
{
    int bookmarks = 0;
    int history = 0;
    int transfers = 0;
    int items = 1;          // of each transfer; every one names a local copy that exists
    int preferences = 4;    // at most
    int comment_bytes = 10; // of each bookmark and connection

    [[nodiscard]] int rows() const { return bookmarks + history + transfers * items + preferences; }
};

[[nodiscard]] inline QString home_of(const QString &user)
{
    return QStringLiteral("Users/") + user;
}

[[nodiscard]] inline QByteArray connection_list(int number, int comment_bytes)
{
    return xml_dictionary(text_entry("Nickname", QByteArray::number(number).constData()) +
                          text_entry("Hostname", "host.example.org") +
                          text_entry("Comment", QByteArray(comment_bytes, 'c').constData()));
}

[[nodiscard]] inline QByteArray transfer_list(int items)
{
    QByteArray list = "<key>Host</key><dict>" + text_entry("Hostname", "host.example.org") +
                      "</dict><key>Items</key><array>";
    for (int i = 0; i < items; ++i)
        list += "<dict><key>Local Dictionary</key><dict>" +
                text_entry("Path", ("~/Downloads/" + QByteArray::number(i)).constData()) +
                "</dict></dict>";
    return xml_dictionary(list + "</array>");
}

inline void fill_home(const forged_source &source, const QString &user, const list_counts &counts)
{
    const QString home = home_of(user);
    for (int i = 0; i < counts.bookmarks; ++i)
        source.write(home + QLatin1String(older_bookmarks) + QString::number(i) + ".duck",
                     connection_list(i, counts.comment_bytes));
    for (int i = 0; i < counts.history; ++i)
        source.write(home + QLatin1String(older_history) + QString::number(i) + ".duck",
                     connection_list(i, counts.comment_bytes));
    for (int i = 0; i < counts.transfers; ++i)
        source.write(home + QLatin1String(older_transfers) + QString::number(i) +
                         ".cyberducktransfer",
                     transfer_list(counts.items));
    for (int i = 0; i < counts.items; ++i)
        source.write(home + "/Downloads/" + QString::number(i), "content");
    QByteArray preferences;
    const char *const keys[] = {"browser.serialize", "browser.showHidden", "queue.download.folder",
                                "browser.charset.encoding"};
    for (int i = 0; i < counts.preferences; ++i)
        preferences += text_entry(keys[i], "value");
    source.write(home + QLatin1String(preferences_path), xml_dictionary(preferences));
}
