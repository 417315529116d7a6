// What the benchmark found, as text.
#pragma once

#include <string>
#include <vector>

#include "host/bench/bench.h"

namespace host {

/// The line above a table whose first column is `nameWidth` characters wide, and
/// the line of a result. Without a line feed.
std::string tableHeader(size_t nameWidth);
std::string tableLine(const BenchResult& result, size_t nameWidth);

/// {"results": [{"member": …, "size": …, …}, …]}, one result a line.
std::string jsonOf(const std::vector<BenchResult>& results);

/// A self-contained SVG picture, light or dark as its reader wishes: a row for
/// every member, a column for every size, bars against the line of one copy.
std::string plotOf(const std::vector<BenchResult>& results);

}  // namespace host
