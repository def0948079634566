#include "foundation_list_reader.h"

#include "foundation_texts.h"

#include "support/foundation_numbers.h"

#import <Foundation/Foundation.h>

#include <cstring>
#include <limits>

namespace platform {

namespace {

id object_of(property_list_node node) { return reinterpret_cast<id>(node); }

// `fallback` when Foundation throws.
template <typename answer, typename question> answer guarded(answer fallback, question ask) {
    @try {
        return ask();
    } @catch (...) {
    }
    return fallback;
}

bool is_boolean(NSNumber *number) {
    // The two booleans have a class of their own. Their encoded type is that of a character on some
    // systems and tells nothing.
    return [number isKindOfClass:[[NSNumber numberWithBool:YES] class]];
}

value_kind kind_of(id object) {
    if ([object isKindOfClass:[NSString class]])
        return value_kind::text;
    if ([object isKindOfClass:[NSNumber class]])
        return is_boolean(object) ? value_kind::boolean : value_kind::number;
    if ([object isKindOfClass:[NSDate class]])
        return value_kind::date;
    if ([object isKindOfClass:[NSData class]])
        return value_kind::data;
    if ([object isKindOfClass:[NSArray class]])
        return value_kind::array;
    if ([object isKindOfClass:[NSDictionary class]])
        return value_kind::dictionary;
    return value_kind::absent;
}

int bounded_count(NSUInteger count) {
    constexpr auto largest = static_cast<NSUInteger>(std::numeric_limits<int>::max());
    return static_cast<int>(count < largest ? count : largest);
}

class reader final : public property_list_reader {
  public:
    [[nodiscard]] value_kind kind(property_list_node node) const override {
        return guarded(value_kind::absent, [node] { return kind_of(object_of(node)); });
    }
    [[nodiscard]] QString class_name(property_list_node node) const override {
        const autorelease_scope pool;
        return guarded(QString(), [node] {
            return text_of_string(NSStringFromClass([object_of(node) class]));
        });
    }
    [[nodiscard]] QString text(property_list_node node) const override {
        if (kind(node) != value_kind::text)
            return {};
        return guarded(QString(), [node] { return text_of_string(object_of(node)); });
    }
    [[nodiscard]] double double_value(property_list_node node) const override {
        const value_kind own = kind(node);
        if (own != value_kind::number && own != value_kind::boolean && own != value_kind::text)
            return 0;
        // Texts and numbers both answer it.
        return guarded(0.0, [node] {
            const double value = [static_cast<NSNumber *>(object_of(node)) doubleValue];
            return value;
        });
    }
    [[nodiscard]] double seconds_since_reference_date(property_list_node node) const override {
        if (kind(node) != value_kind::date)
            return 0;
        return guarded(0.0, [node] {
            const double seconds =
                [static_cast<NSDate *>(object_of(node)) timeIntervalSinceReferenceDate];
            return seconds;
        });
    }
    [[nodiscard]] bool is_floating(property_list_node node) const override {
        if (kind(node) != value_kind::number)
            return false;
        return guarded(false, [node] {
            const char *const type = [static_cast<NSNumber *>(object_of(node)) objCType];
            return std::strcmp(type, @encode(double)) == 0 ||
                   std::strcmp(type, @encode(float)) == 0;
        });
    }
    [[nodiscard]] qint64 integer_value(property_list_node node) const override {
        const value_kind own = kind(node);
        if (own != value_kind::number && own != value_kind::boolean)
            return 0;
        if (is_floating(node))
            return support::truncated_to_int64(double_value(node));
        return guarded(qint64(0), [node] {
            return static_cast<qint64>([static_cast<NSNumber *>(object_of(node)) longLongValue]);
        });
    }
    [[nodiscard]] int count(property_list_node node) const override {
        const value_kind own = kind(node);
        if (own == value_kind::array) {
            return guarded(0, [node] {
                return bounded_count([static_cast<NSArray *>(object_of(node)) count]);
            });
        }
        if (own != value_kind::dictionary)
            return 0;
        return guarded(0, [node] {
            return bounded_count([static_cast<NSDictionary *>(object_of(node)) count]);
        });
    }
    bool look_up(property_list_node dictionary, const QString &key,
                 property_list_node *found) const override {
        if (kind(dictionary) != value_kind::dictionary)
            return false;
        return guarded(false, [dictionary, &key, found] {
            const owned_object wanted(new_string(key));
            const id value =
                [static_cast<NSDictionary *>(object_of(dictionary)) objectForKey:wanted.get()];
            if (value == nil)
                return false;
            *found = reinterpret_cast<property_list_node>(value);
            return true;
        });
    }
    bool element(property_list_node array, int index, property_list_node *found) const override {
        if (index < 0 || index >= count(array) || kind(array) != value_kind::array)
            return false;
        return guarded(false, [array, index, found] {
            *found = reinterpret_cast<property_list_node>([static_cast<NSArray *>(object_of(array))
                objectAtIndex:static_cast<NSUInteger>(index)]);
            return true;
        });
    }
};

} // namespace

const property_list_reader &foundation_list_reader() {
    static const reader only;
    return only;
}

} // namespace platform
