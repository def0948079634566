// What strace saw a program do with files.
#pragma once

#include <QString>
#include <QStringList>

struct traced_run
{
    int status = -1;     // of the program; -1 when it or strace did not run
    QString output;      // what both have printed
    QStringList written; // paths opened for writing, made, removed or changed in any way
    QStringList read;    // paths opened for reading, or whose attributes were read
};

[[nodiscard]] traced_run trace(const QString &program, const QStringList &arguments);

// Those that are none of the allowed files and in none of the allowed folders.
[[nodiscard]] QStringList outside_of(const QStringList &paths, const QStringList &allowed);
