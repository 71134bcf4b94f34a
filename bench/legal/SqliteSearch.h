#pragma once

#include "Corpus.h"

#include "foundation/Release.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace querlin::bench {

/// The peer with an index: SQLite's full text search over groups of three characters, in memory.
class SqliteSearch {
public:
    /// Builds the index; nothing if this SQLite can't.
    static std::optional<SqliteSearch> of(const Corpus& corpus);
    static std::string_view version();

    /// The numbers of all sections with the term, in the order of all laws; until the next search.
    const std::vector<std::size_t>& search(std::string_view term);

private:
    SqliteSearch() = default;

    static void close(sqlite3* database);
    static void finish(sqlite3_stmt* statement);
    bool build(const Corpus& corpus);

    std::unique_ptr<sqlite3, Release<close>> database_;
    std::unique_ptr<sqlite3_stmt, Release<finish>> query_;
    std::string phrase_;
    std::vector<std::size_t> found_;
};

} // namespace querlin::bench
