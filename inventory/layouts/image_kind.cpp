#include "inventory/layouts/image_kind.h"

#include "evidence/files/file_names.h"
#include "evidence/access/held_file.h"

#include <QByteArray>

#include <unistd.h>

namespace inventory {

namespace {

constexpr int trailer_bytes = 512;

QByteArray bytes_at(int file, qint64 offset, int count)
{
    QByteArray bytes(count, '\0');
    const ssize_t got = offset < 0 ? 0 : ::pread(file, bytes.data(), size_t(count), offset);
    return bytes.left(got < 0 ? 0 : int(got));
}

const struct known_image
{
    const char *name;
    const char *commands; // %1: the file
} e01 = {"an E01 image (EnCase)", "ewfmount %1 /mnt/ewf\n"
                                  "losetup --find --show --read-only --partscan /mnt/ewf/ewf1\n"
                                  "mount -o ro,noload LOOP_DEVICE_PARTITION /mnt/source"},
  dmg = {"a disk image (DMG)", "dmg2img %1 image.raw\n"
                               "losetup --find --show --read-only --partscan image.raw\n"
                               "mount -o ro LOOP_DEVICE_PARTITION /mnt/source"},
  zip = {"a ZIP archive", "unzip -q %1 -d /cases/unpacked"},
  gpt = {"a raw image with partitions", "losetup --find --show --read-only --partscan %1\n"
                                        "mount -o ro LOOP_DEVICE_PARTITION /mnt/source"},
  apfs = {"a raw APFS volume", "apfs-fuse -o allow_other %1 /mnt/source"},
  hfs = {"a raw HFS+ volume", "mount -t hfsplus -o ro,loop %1 /mnt/source"};

const known_image *known_by_bytes(int file, qint64 size)
{
    const QByteArray head = bytes_at(file, 0, 2048);
    if (head.startsWith(QByteArray("EVF\x09\x0d\x0a\xff\x00", 8)) ||
        head.startsWith("EVF2\x0d\x0a"))
        return &e01;
    if (head.startsWith("PK\x03\x04") || head.startsWith("PK\x05\x06"))
        return &zip;
    if (head.mid(32, 4) == "NXSB")
        return &apfs;
    const QByteArray volume = head.mid(1024, 2);
    if (volume == "H+" || volume == "HX")
        return &hfs;
    if (head.mid(512, 8) == "EFI PART" || head.mid(510, 2) == "\x55\xaa")
        return &gpt;
    return bytes_at(file, size - trailer_bytes, 4) == "koly" ? &dmg : nullptr;
}

} // namespace

image_kind kind_of_image(const QString &path)
{
    evidence::held_file file;
    if (!file.hold_named_by_host(evidence::encoded_name(path)) || !file.is_regular())
        return {};
    const int descriptor = file.for_reading();
    const known_image *const known =
        descriptor < 0 ? nullptr : known_by_bytes(descriptor, file.status().size);
    if (known == nullptr)
        return {};
    QString quoted = path;
    quoted.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return {QLatin1String(known->name), QString(QLatin1String(known->commands))
                                            .arg(QLatin1Char('\'') + quoted + QLatin1Char('\''))};
}

} // namespace inventory
