// The names that macOS has for the times of a file, for the one source that reads them.
#pragma once

#include_next <sys/stat.h>

struct stand_in_stat
{
    timespec st_birthtimespec;
    timespec st_mtimespec;
    timespec st_atimespec;
};

int stand_in_lstat(const char *path, stand_in_stat *found);

#define stat stand_in_stat
#define lstat stand_in_lstat
