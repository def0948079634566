// What a property list may cost at most. Far beyond any list that the client writes; they bound the
// time and memory that a forged one can take. docs/limits.md repeats them.
#pragma once

#include <QtGlobal>

#include <cstddef>

namespace formats {

constexpr qint64 mebibyte = 1 << 20;

// A larger file is no list.
constexpr qint64 max_list_bytes = 32 * mebibyte;
// The same for a text that has to be converted to UTF-8, which can double its size.
constexpr qint64 max_converted_list_bytes = 16 * mebibyte;
// Bytes, converted text and elements of one XML list together.
constexpr qint64 max_list_memory_bytes = 64 * mebibyte;
// Memory that one element of an XML list takes in the parser's tree.
constexpr qint64 xml_element_bytes = 64;
// A dictionary of more entries gets no index; looking up a key goes through it.
constexpr size_t max_indexed_count = 4096;
// Containers inside one another in an XML list.
constexpr int max_list_levels = 512;
// Entries of one array or dictionary of a binary list. An entry there can be one byte, and all may
// name the same value.
constexpr quint64 max_container_count = 1'000'000;
// UTF-16 units of one text. A longer text is cut.
constexpr int max_text_units = 1 << 20;
// Work that all questions about one binary list may take together. Each look at a byte of text
// counts one, a compared key several. Without this limit a few bytes that name the same large text
// or dictionary many times would take hours. Once it is used up, nothing more is found or read.
constexpr quint64 max_list_work = quint64(1) << 30;
constexpr quint64 compared_key_work = 16;
// A buffer larger than this is given back before the next list.
constexpr int max_kept_buffer_bytes = 1 << 20;

} // namespace formats
