// The sources of a run: what the examiner named, as the plug-in and the inventory take it.
#pragma once

#include "host/options/exit_status.h"
#include "host/options/extract_options.h"
#include "inventory/layouts/source_layout.h"
#include "inventory/places/list_finder.h"
#include "run/cancellation.h"

#include <optional>
#include <vector>

namespace host {

struct run_source
{
    int number = 1;
    inventory::recognised_source layout;
    QList<account> accounts;
    inventory::found_on_source found; // empty until it was searched
};

struct source_search
{
    std::vector<run_source> sources;
    std::optional<failure> problem;
    QStringList details; // lines that help with the problem
};

// Recognises what `options` name, and takes the accounts that were asked for. Fails when a source
// is missing, cannot be read, or is of no known layout, or when an account does not exist.
[[nodiscard]] source_search find_sources(const extract_options &options,
                                         const run::cancellation &cancelled);

// Finds the lists of all sources.
void search_lists(const extract_options &options, const run::cancellation &cancelled,
                  std::vector<run_source> *sources);

// Fails when none of the sources holds a place of the client, or one that nobody can read.
[[nodiscard]] std::optional<failure> check_anything_found(const std::vector<run_source> &sources,
                                                          QStringList *details);

} // namespace host
