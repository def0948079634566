// A source made of a fuzzer's bytes: homes with lists in both places, local copies with companions,
// images and attributes, an index of the volume, links, FIFOs and odd names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

// The bytes are entries, one after the other: a kind, a place, a name's length and the name, the
// content's size in two bytes, least significant first, and the content. What a file system
// refuses is left out. `root` is a folder that exists; it need not be empty.
void make_source_tree(const std::string &root, const std::uint8_t *data, std::size_t size);

// Every entry below a folder, sorted: name, type and mode, size, time of change and content.
[[nodiscard]] std::vector<std::string> describe_tree(const std::string &root);

// Removes everything below a folder, and leaves the folder.
void empty_folder(const std::string &root);

} // namespace fuzz
