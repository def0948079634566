// The names that macOS has for the times of a file, for the one source that reads them.
#pragma once

#include_next <sys/stat.h>

struct stand_in_stat
{
    mode_t st_mode;
    off_t st_size;
    dev_t st_dev;
    ino_t st_ino;
    uid_t st_uid;
    gid_t st_gid;
    nlink_t st_nlink;
    timespec st_birthtimespec;
    timespec st_mtimespec;
    timespec st_atimespec;
};

int stand_in_lstat(const char *path, stand_in_stat *found);
int stand_in_fstat(int file, stand_in_stat *found);

#define stat stand_in_stat
#define lstat stand_in_lstat
#define fstat stand_in_fstat
