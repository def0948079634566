// Makes a source of any bytes: homes with lists in both places, local copies with companions,
// images and attributes, an index of the volume, links, FIFOs and odd names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace samples {

// The bytes are an input of a fuzz target, like the seeds in fuzz/corpus/source_tree. They are
// entries, one after the other: a kind, a place, the name's length, the name, the content's size in
// two bytes, least significant first, and the content. Entries that the file system refuses are
// left out. `root` must exist. It need not be empty.
void make_source_tree(const std::string &root, const std::uint8_t *data, std::size_t size);

// Removes everything in a folder, but not the folder.
void empty_folder(const std::string &root);

} // namespace samples
