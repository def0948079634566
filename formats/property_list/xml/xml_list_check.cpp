#include "formats/property_list/xml/xml_list_check.h"

#include "formats/property_list/base/property_list_limits.h"
#include "text/foundation_numbers.h"

#include <QLatin1String>
#include <QString>
#include <QtEndian>

#include <array>
#include <cstring>
#include <limits>

namespace formats {

namespace {

enum class element { text, key, integer, real, date, data, boolean, array, dictionary, list };

struct element_name
{
    const char *name;
    uchar length;
    element kind;
};

constexpr element_name array_name = {"array", 5, element::array};
constexpr element_name data_name = {"data", 4, element::data};
constexpr element_name date_name = {"date", 4, element::date};
constexpr element_name dictionary_name = {"dict", 4, element::dictionary};
constexpr element_name false_name = {"false", 5, element::boolean};
constexpr element_name integer_name = {"integer", 7, element::integer};
constexpr element_name key_name = {"key", 3, element::key};
constexpr element_name list_name = {"plist", 5, element::list};
constexpr element_name real_name = {"real", 4, element::real};
constexpr element_name text_name = {"string", 6, element::text};
constexpr element_name true_name = {"true", 4, element::boolean};

// What an open container takes next.
enum class expects : uchar { key, value, element, only_value, end };

struct open_container
{
    const element_name *name;
    expects next;
};

bool is_space(char unit)
{
    return unit == ' ' || unit == '\n' || unit == '\t' || unit == '\r';
}

bool is_digit(char unit)
{
    return unit >= '0' && unit <= '9';
}

// -1 when it is none.
int hexadecimal_digit(char unit)
{
    if (is_digit(unit))
        return unit - '0';
    if (unit >= 'a' && unit <= 'f')
        return unit - 'a' + 10;
    if (unit >= 'A' && unit <= 'F')
        return unit - 'A' + 10;
    return -1;
}

// What a text is made of apart from references, tags and characters beyond ASCII.
constexpr std::array<bool, 256> make_plain_table()
{
    std::array<bool, 256> plain = {};
    for (size_t unit = 1; unit < 0x80; ++unit)
        plain[unit] = unit != '<' && unit != '&';
    return plain;
}

constexpr std::array<bool, 256> is_plain = make_plain_table();

// Bytes of the character beyond ASCII that starts at `at`; 0 when it is not valid UTF-8. Stops at
// the first byte that does not fit, hence at a NUL.
int wide_character_bytes(const char *at)
{
    const auto byte = [at](int index) { return static_cast<uchar>(at[index]); };
    const auto continues = [&](int index) { return (byte(index) & 0xc0) == 0x80; };
    const uchar first = byte(0);
    if (first < 0xc2 || first > 0xf4 || !continues(1))
        return 0;
    if (first < 0xe0)
        return 2;
    if (first < 0xf0) {
        const bool too_long = first == 0xe0 && byte(1) < 0xa0;
        const bool surrogate = first == 0xed && byte(1) > 0x9f;
        return too_long || surrogate || !continues(2) ? 0 : 3;
    }
    const bool too_long = first == 0xf0 && byte(1) < 0x90;
    const bool too_large = first == 0xf4 && byte(1) > 0x8f;
    return too_long || too_large || !continues(2) || !continues(3) ? 0 : 4;
}

// The only element that a name of these letters can mean; the rest of the name is not compared.
const element_name &element_like(char first, char second, char fourth)
{
    switch (first) {
    case 'a':
        return array_name;
    case 'd':
        if (second == 'i')
            return dictionary_name;
        return fourth == 'e' ? date_name : data_name;
    case 'f':
        return false_name;
    case 'i':
        return integer_name;
    case 'k':
        return key_name;
    case 'p':
        return list_name;
    case 'r':
        return real_name;
    case 't':
        return true_name;
    default:
        return text_name;
    }
}

// Stops comparing at a NUL.
bool starts_with(const char *at, const element_name &element)
{
    for (int index = 0; index < element.length; ++index) {
        if (at[index] != element.name[index])
            return false;
    }
    return true;
}

// Null when there is no such element.
const element_name *element_named(const char *name, size_t length)
{
    if (length < 3)
        return nullptr;
    // With three letters there is one more byte behind the name, which decides nothing.
    const element_name &found = element_like(name[0], name[1], name[3]);
    return found.length == length && starts_with(name, found) ? &found : nullptr;
}

// Where the plain bytes that start at `at` end; `end` holds a NUL.
char *behind_plain(char *at, const char *end)
{
    constexpr quint64 ones = 0x0101010101010101;
    constexpr quint64 high_bits = ones << 7;
    // Eight bytes at once: subtracting 1 from each sets a high bit where one was zero, i.e. where
    // the text has a NUL, or the byte that it was compared with. A borrow can only reach bytes
    // behind such a one.
    while (end - at >= 8) {
        const auto word = qFromLittleEndian<quint64>(at);
        const quint64 tag = word ^ (ones * '<');
        const quint64 reference = word ^ (ones * '&');
        if ((((word - ones) | (tag - ones) | (reference - ones) | word) & high_bits) != 0)
            break;
        at += 8;
    }
    while (is_plain[uchar(*at)])
        ++at;
    return at;
}

class checker
{
public:
    checker(char *begin, char *end, qint64 max_element_count)
        : cursor_(begin)
        , end_(end)
        , elements_left_(max_element_count)
    {
    }

    xml_list_extent run();

private:
    bool skip_prolog();
    bool skip_document_type();
    bool skip_inner_document_type();
    bool blank_instruction();
    bool blank_comment();
    bool step();

    bool open_element();
    const element_name *read_start_tag(bool *is_empty);
    bool enter(const element_name &found, expects next);
    bool check_leaf(const element_name &found, bool is_empty);
    bool close_container();
    bool close_element(const element_name &found);
    bool accept_value(element kind);

    bool check_text();
    bool check_cdata();
    bool skip_wide_character();
    bool check_reference();
    bool check_integer();
    bool check_real();
    bool check_date();
    bool check_data();

    void skip_space();
    // Stops comparing at the NUL of the end.
    template <size_t size> bool starts_with(const char (&text)[size]) const
    {
        for (size_t index = 0; index + 1 < size; ++index) {
            if (cursor_[index] != text[index])
                return false;
        }
        return true;
    }
    bool skip_digits(int count);
    bool skip_one(char unit);
    // Moves behind the first `text`; false when there is none.
    template <size_t size> bool skip_behind(const char (&text)[size])
    {
        for (; !starts_with(text); ++cursor_) {
            if (*cursor_ == '\0')
                return false;
        }
        cursor_ += size - 1;
        return true;
    }
    bool count_element();

    char *cursor_;
    char *const end_;
    qint64 elements_left_;
    qint64 tag_count_ = 0;
    bool has_cdata_ = false;
    bool is_ascii_ = true;
    bool finished_ = false;
    int depth_ = 0;
    std::array<open_container, max_list_levels> open_;
};

xml_list_extent checker::run()
{
    if (!skip_prolog())
        return {};
    char *const begin = cursor_;
    while (!finished_) {
        if (!step())
            return {};
    }
    // Only then does the white space between tags become part of the parser's tree.
    if (has_cdata_ && tag_count_ > elements_left_)
        return {};
    return {begin, cursor_, has_cdata_, is_ascii_};
}

// Leaves the cursor at the first tag of an element.
bool checker::skip_prolog()
{
    for (;;) {
        skip_space();
        if (*cursor_ != '<')
            return false;
        if (cursor_[1] == '?') {
            if (!blank_instruction())
                return false;
        } else if (cursor_[1] != '!') {
            return true;
        } else if (!(starts_with("<!--") ? blank_comment() : skip_document_type())) {
            return false;
        }
    }
}

bool checker::skip_document_type()
{
    if (!starts_with("<!DOCTYPE"))
        return false;
    cursor_ += 9;
    while (*cursor_ != '[' && *cursor_ != '>') {
        if (*cursor_ == '\0')
            return false;
        ++cursor_;
    }
    if (*cursor_ == '[' && !skip_inner_document_type())
        return false;
    skip_space();
    return skip_one('>');
}

// Declarations are passed over, never applied: an entity declared here stays unknown.
bool checker::skip_inner_document_type()
{
    ++cursor_;
    for (;;) {
        skip_space();
        if (skip_one(']'))
            return true;
        if (starts_with("<?")) {
            if (!blank_instruction())
                return false;
        } else if (starts_with("<!--")) {
            if (!blank_comment())
                return false;
        } else if (starts_with("<!")) {
            if (!skip_behind(">"))
                return false;
        } else if (*cursor_ != '%' || !skip_behind(";")) {
            return false;
        }
    }
}

bool checker::blank_instruction()
{
    char *const begin = cursor_;
    cursor_ += 2;
    if (!skip_behind("?>"))
        return false;
    std::memset(begin, ' ', size_t(cursor_ - begin));
    return true;
}

bool checker::blank_comment()
{
    char *const begin = cursor_;
    if (!starts_with("<!--"))
        return false;
    cursor_ += 4;
    if (!skip_behind("-->"))
        return false;
    std::memset(begin, ' ', size_t(cursor_ - begin));
    return true;
}

// One tag, with its content when that is no container.
bool checker::step()
{
    skip_space();
    if (*cursor_ != '<')
        return false;
    switch (cursor_[1]) {
    case '/':
        return close_container();
    case '?':
        return blank_instruction();
    case '!':
        return blank_comment();
    default:
        return open_element();
    }
}

bool checker::open_element()
{
    char *const begin = cursor_;
    bool is_empty = false;
    const element_name *const found = read_start_tag(&is_empty);
    if (found == nullptr || !accept_value(found->kind) || !count_element())
        return false;
    if (found->kind == element::list) {
        std::memset(begin, ' ', size_t(cursor_ - begin));
        return !is_empty && enter(*found, expects::only_value);
    }
    if (found->kind == element::dictionary && !is_empty)
        return enter(*found, expects::key);
    if (found->kind == element::array && !is_empty)
        return enter(*found, expects::element);
    finished_ = depth_ == 0;
    return check_leaf(*found, is_empty);
}

// Leaves the cursor behind the tag, whose attributes it blanks; null when it is no known one.
const element_name *checker::read_start_tag(bool *is_empty)
{
    char *const name = cursor_ + 1;
    char *name_end = name;
    while (!is_space(*name_end) && *name_end != '/' && *name_end != '>' && *name_end != '\0')
        ++name_end;
    cursor_ = name_end;
    if (is_space(*cursor_)) {
        // A tag ends at its first ">", even at one inside an attribute.
        if (!skip_behind(">"))
            return nullptr;
        *is_empty = cursor_[-2] == '/';
        std::memset(name_end, ' ', size_t(cursor_ - name_end - (*is_empty ? 2 : 1)));
    } else {
        *is_empty = skip_one('/');
        if (!skip_one('>'))
            return nullptr;
    }
    return element_named(name, size_t(name_end - name));
}

bool checker::enter(const element_name &found, expects next)
{
    if (depth_ == max_list_levels)
        return false;
    open_[size_t(depth_)] = {&found, next};
    ++depth_;
    return true;
}

bool checker::check_leaf(const element_name &found, bool is_empty)
{
    switch (found.kind) {
    case element::text:
    case element::key:
        return is_empty || (check_text() && close_element(found));
    case element::integer:
        return !is_empty && check_integer() && close_element(found);
    case element::real:
        return !is_empty && check_real() && close_element(found);
    case element::date:
        return !is_empty && check_date() && close_element(found);
    case element::data:
        return !is_empty && check_data() && close_element(found);
    case element::array:
    case element::dictionary:
        return is_empty;
    case element::boolean:
        return is_empty || close_element(found);
    case element::list:
        break;
    }
    return false;
}

bool checker::close_element(const element_name &found)
{
    if (!starts_with("</"))
        return false;
    cursor_ += 2;
    if (!::formats::starts_with(cursor_, found))
        return false;
    cursor_ += found.length;
    skip_space();
    ++tag_count_;
    return skip_one('>');
}

bool checker::close_container()
{
    if (depth_ == 0)
        return false;
    const open_container &closed = open_[size_t(depth_ - 1)];
    if (closed.next == expects::value || closed.next == expects::only_value)
        return false;
    char *const begin = cursor_;
    if (!close_element(*closed.name))
        return false;
    if (closed.name->kind == element::list)
        std::memset(begin, ' ', size_t(cursor_ - begin));
    --depth_;
    finished_ = depth_ == 0;
    return true;
}

// Whether a value of this kind may stand here.
bool checker::accept_value(element kind)
{
    if (depth_ == 0)
        return true;
    expects &next = open_[size_t(depth_ - 1)].next;
    switch (next) {
    case expects::element:
        return true;
    case expects::key:
        next = expects::value;
        return kind == element::key;
    case expects::value:
        // A key stands for a text here.
        next = expects::key;
        return true;
    case expects::only_value:
        next = expects::end;
        return true;
    case expects::end:
        break;
    }
    return false;
}

// Leaves the cursor at the first tag that is no CDATA section.
bool checker::check_text()
{
    for (;;) {
        cursor_ = behind_plain(cursor_, end_);
        if (*cursor_ == '<') {
            if (cursor_[1] != '!')
                return true;
            if (!check_cdata())
                return false;
        } else if (*cursor_ == '&') {
            if (!check_reference())
                return false;
        } else {
            if (!skip_wide_character())
                return false;
        }
    }
}

bool checker::skip_wide_character()
{
    const int bytes = wide_character_bytes(cursor_);
    cursor_ += bytes;
    is_ascii_ = false;
    return bytes > 0;
}

bool checker::check_cdata()
{
    if (!starts_with("<![CDATA[") || !count_element())
        return false;
    has_cdata_ = true;
    cursor_ += 9;
    while (!starts_with("]]>")) {
        if (*cursor_ != '\0' && uchar(*cursor_) < 0x80)
            ++cursor_;
        else if (!skip_wide_character())
            return false;
    }
    cursor_ += 3;
    return true;
}

bool checker::check_reference()
{
    if (starts_with("&amp;") || starts_with("&lt;") || starts_with("&gt;") ||
        starts_with("&quot;") || starts_with("&apos;")) {
        return skip_behind(";");
    }
    if (!starts_with("&#"))
        return false;
    cursor_ += 2;
    const uint base = skip_one('x') ? 16 : 10;
    uint code_point = 0;
    for (; *cursor_ != ';'; ++cursor_) {
        const int digit = hexadecimal_digit(*cursor_);
        if (digit < 0 || uint(digit) >= base)
            return false;
        code_point = code_point * base + uint(digit);
        if (code_point > 0x10ffff)
            return false;
    }
    ++cursor_;
    is_ascii_ = is_ascii_ && code_point < 0x80;
    // A NUL, which "&#;" would be too, and half a surrogate pair are no characters.
    return code_point != 0 && (code_point < 0xd800 || code_point > 0xdfff);
}

// Blanks may stand before the sign and behind it, but not behind the digits.
bool checker::check_integer()
{
    skip_space();
    const bool is_negative = *cursor_ == '-';
    if (is_negative || *cursor_ == '+') {
        ++cursor_;
        skip_space();
    }
    const bool is_hexadecimal = *cursor_ == '0' && (cursor_[1] == 'x' || cursor_[1] == 'X');
    if (is_hexadecimal)
        cursor_ += 2;
    const quint64 base = is_hexadecimal ? 16 : 10;
    const quint64 largest = is_negative ? quint64(1) << 63 : std::numeric_limits<quint64>::max();
    const char *const digits = cursor_;
    quint64 value = 0;
    for (; *cursor_ != '<'; ++cursor_) {
        const int digit = hexadecimal_digit(*cursor_);
        if (digit < 0 || quint64(digit) >= base || value > (largest - quint64(digit)) / base)
            return false;
        value = value * base + quint64(digit);
    }
    return cursor_ > digits;
}

bool checker::check_real()
{
    char *const begin = cursor_;
    cursor_ += std::strcspn(cursor_, "<");
    const QLatin1String written(begin, cursor_);
    for (const char *name : {"nan", "inf", "+inf", "-inf", "infinity", "+infinity", "-infinity"}) {
        if (written.compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
            return true;
    }
    const QString text = QString(written);
    QStringView number(text);
    while (!number.isEmpty() && is_space(number.front().toLatin1()))
        number = number.mid(1);
    return !number.isEmpty() && text::decimal_number_length(number) == number.size();
}

bool checker::check_date()
{
    skip_one('-');
    const char *const year = cursor_;
    while (is_digit(*cursor_))
        ++cursor_;
    const auto year_digits = cursor_ - year;
    return year_digits >= 1 && year_digits <= 9 && skip_one('-') && skip_digits(2) &&
           skip_one('-') && skip_digits(2) && skip_one('T') && skip_digits(2) && skip_one(':') &&
           skip_digits(2) && skip_one(':') && skip_digits(2) && skip_one('Z');
}

// Foundation passes over what is no base64 digit.
bool checker::check_data()
{
    cursor_ += std::strcspn(cursor_, "<");
    return *cursor_ == '<';
}

void checker::skip_space()
{
    while (is_space(*cursor_))
        ++cursor_;
}

bool checker::skip_digits(int count)
{
    for (int index = 0; index < count; ++index) {
        if (!is_digit(cursor_[index]))
            return false;
    }
    cursor_ += count;
    return true;
}

bool checker::skip_one(char unit)
{
    if (*cursor_ != unit)
        return false;
    ++cursor_;
    return true;
}

bool checker::count_element()
{
    ++tag_count_;
    --elements_left_;
    return elements_left_ >= 0;
}

} // namespace

xml_list_extent check_xml_list(char *begin, char *end, qint64 max_element_count)
{
    return checker(begin, end, max_element_count).run();
}

} // namespace formats
