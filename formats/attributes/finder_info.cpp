#include "formats/attributes/finder_info.h"

#include <QtEndian>

namespace formats {

namespace {

constexpr int finder_info_bytes = 32;
constexpr int flags_offset = 8;
constexpr int date_added_offset = 20;

constexpr quint16 invisible_flag = 0x4000;
constexpr quint16 extension_hidden_flag = 0x0010;
constexpr quint16 label_mask = 0x000e;

constexpr char date_added[] = "kMDItemDateAdded";
constexpr char invisible[] = "kMDItemFSInvisible";
constexpr char extension_hidden[] = "kMDItemFSIsExtensionHidden";
constexpr char label[] = "kMDItemFSLabel";

} // namespace

finder_info::finder_info(const QByteArray &bytes)
{
    const bool has_server_nul = bytes.size() == finder_info_bytes + 1 && bytes.endsWith('\0');
    if (bytes.size() != finder_info_bytes && !has_server_nul)
        return;
    const QByteArray info = bytes.left(finder_info_bytes);
    if (info.count('\0') != finder_info_bytes)
        bytes_ = info;
}

bool finder_info::knows(const QString &name)
{
    for (const char *own : {date_added, invisible, extension_hidden, label}) {
        if (name == QLatin1String(own))
            return true;
    }
    return false;
}

std::optional<spotlight_value> finder_info::attribute(const QString &name) const
{
    if (bytes_.isEmpty())
        return std::nullopt;
    if (name == QLatin1String(date_added)) {
        const quint32 seconds = qFromBigEndian<quint32>(bytes_.constData() + date_added_offset);
        if (seconds == 0)
            return std::nullopt;
        return spotlight_date{static_cast<double>(seconds)};
    }
    const quint16 flags = qFromBigEndian<quint16>(bytes_.constData() + flags_offset);
    if (name == QLatin1String(invisible))
        return (flags & invisible_flag) != 0;
    if (name == QLatin1String(extension_hidden))
        return (flags & extension_hidden_flag) != 0;
    if (name == QLatin1String(label))
        return qint64{(flags & label_mask) >> 1};
    return std::nullopt;
}

} // namespace formats
