// The portable platform gets its objects as stand-ins, and metadata in files.
#include "platform_contract.h"

#include "platform/portable/foundation_stand_ins.h"
#include "apple_double_builder.h"
#include "binary_list_builder.h"
#include "image_builder.h"

#include <QFile>
#include <QFileInfo>

#include <cmath>
#include <vector>

namespace {

using platform::property_list;
using platform::property_list_value;

class loaded_dictionary final : public platform::dictionary_source
{
public:
    loaded_dictionary(const QByteArray &first, const QByteArray &later)
    {
        first_.load_bytes(first);
        later_.load_bytes(later);
    }
    property_list_value value(const QString &key) override
    {
        const bool is_first = asked_++ == 0;
        return (is_first ? first_ : later_).root().value(key);
    }

private:
    property_list first_;
    property_list later_;
    int asked_ = 0;
};

QByteArray double_object(char type, double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return type + big_endian(bits);
}

struct listed_scalar
{
    binary_list_builder &builder;

    int operator()(const QString &text) const { return builder.wide_text(text); }
    int operator()(qint64 number) const { return builder.integer(static_cast<quint64>(number), 8); }
    int operator()(const platform::spotlight_floating &number) const
    {
        return builder.raw(double_object('\x23', number.value));
    }
    int operator()(bool value) const { return builder.raw(value ? "\x09" : "\x08"); }
    int operator()(const platform::spotlight_date &date) const
    {
        return builder.raw(double_object('\x33', date.epoch_seconds - 978307200.0));
    }
    int operator()(const platform::spotlight_list &list) const
    {
        std::vector<int> elements;
        for (const platform::spotlight_scalar &scalar : list)
            elements.push_back(std::visit(*this, scalar));
        return builder.array(elements);
    }
};

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

std::vector<rational> parts_of(double degrees)
{
    constexpr quint32 denominator = 10'000'000;
    return {
        {static_cast<quint32>(std::llround(degrees * denominator)), denominator}, {0, 1}, {0, 1}};
}

class portable_fixture final : public contract_fixture
{
public:
    void *key(const QString &text) override
    {
        keys_.push_back(std::make_unique<platform::dictionary_key>());
        keys_.back()->text = text;
        return platform::as_pointer(keys_.back().get());
    }
    const __CFString *cfstring(const QString &text) override
    {
        key(text);
        return platform::as_cfstring(keys_.back().get());
    }
    void *dictionary(const QByteArray &list) override { return changing_dictionary(list, list); }
    void *changing_dictionary(const QByteArray &first, const QByteArray &later) override
    {
        dictionaries_.push_back(std::make_unique<loaded_dictionary>(first, later));
        return platform::as_pointer(dictionaries_.back().get());
    }
    NSDate *date(double epoch_seconds) override
    {
        return platform::as_nsdate(object(platform::value_kind::date, epoch_seconds));
    }
    NSObject *object_of(NSDate *date) override { return reinterpret_cast<NSObject *>(date); }
    NSObject *text_object() override
    {
        return platform::as_nsobject(object(platform::value_kind::text, 0.0));
    }

    bool give_attribute(const QString &path, const QString &name,
                        const platform::spotlight_value &value) override
    {
        binary_list_builder list;
        const int top = std::visit(listed_scalar{list}, value);
        apple_double_builder companion;
        companion.attributes = {
            {"com.apple.metadata:" + name.toUtf8(), list.list(static_cast<quint64>(top))}};
        const QFileInfo file(path);
        return write(file.path() + QLatin1String("/._") + file.fileName(), companion.bytes());
    }
    bool give_position(const QString &path, const platform::gps_position &position) override
    {
        exif_builder exif;
        if (!position.latitude_reference.isNull())
            exif.reference(1, position.latitude_reference.toLatin1() + '\0');
        if (position.latitude)
            exif.coordinate(2, parts_of(*position.latitude));
        if (!position.longitude_reference.isNull())
            exif.reference(3, position.longitude_reference.toLatin1() + '\0');
        if (position.longitude)
            exif.coordinate(4, parts_of(*position.longitude));
        return write(path, exif.block());
    }

    QStringList faults() override { return {}; }

private:
    platform::object_stand_in *object(platform::value_kind kind, double epoch_seconds)
    {
        objects_.push_back(std::make_unique<platform::object_stand_in>());
        *objects_.back() = {kind, epoch_seconds};
        return objects_.back().get();
    }

    std::vector<std::unique_ptr<platform::dictionary_key>> keys_;
    std::vector<std::unique_ptr<loaded_dictionary>> dictionaries_;
    std::vector<std::unique_ptr<platform::object_stand_in>> objects_;
};

} // namespace

std::unique_ptr<contract_fixture> make_contract_fixture()
{
    return std::make_unique<portable_fixture>();
}
