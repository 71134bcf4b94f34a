#include "SqliteSearch.h"

#include <stdexcept>

#include <sqlite3.h>

namespace querlin::bench {

namespace {

using Statement = std::unique_ptr<sqlite3_stmt, Release<sqlite3_finalize>>;

sqlite3_stmt* prepared(sqlite3* database, const char* text) {
    sqlite3_stmt* statement = nullptr;
    if (::sqlite3_prepare_v2(database, text, -1, &statement, nullptr) != SQLITE_OK)
        throw std::runtime_error(::sqlite3_errmsg(database));
    return statement;
}

/// Until the next call the text must stay.
void bindText(sqlite3_stmt* statement, int place, std::string_view text) {
    ::sqlite3_bind_text(statement, place, text.data(), static_cast<int>(text.size()), nullptr);
}

} // namespace

void SqliteSearch::close(sqlite3* database) { ::sqlite3_close(database); }
void SqliteSearch::finish(sqlite3_stmt* statement) { ::sqlite3_finalize(statement); }

std::string_view SqliteSearch::version() { return ::sqlite3_libversion(); }

std::optional<SqliteSearch> SqliteSearch::of(const Corpus& corpus) {
    SqliteSearch search;
    sqlite3* database = nullptr;
    if (::sqlite3_open(":memory:", &database) != SQLITE_OK) throw std::runtime_error("sqlite3_open");
    search.database_.reset(database);
    return search.build(corpus) ? std::optional(std::move(search)) : std::nullopt;
}

bool SqliteSearch::build(const Corpus& corpus) {
    auto* database = database_.get();
    const auto run = [database](const char* text) {
        return ::sqlite3_exec(database, text, nullptr, nullptr, nullptr) == SQLITE_OK;
    };
    if (!run("CREATE VIRTUAL TABLE sections USING fts5(text, tokenize = 'trigram')")) return false;
    run("BEGIN");
    const Statement insertion(prepared(database, "INSERT INTO sections(rowid, text) VALUES(?, ?)"));
    std::int64_t number = 0;
    for (const auto& law : corpus.laws) {
        for (const auto& section : law.sections) {
            ::sqlite3_bind_int64(insertion.get(), 1, number++);
            bindText(insertion.get(), 2, section.text.view());
            ::sqlite3_step(insertion.get());
            ::sqlite3_reset(insertion.get());
        }
    }
    run("COMMIT");
    // One segment is the fastest to search.
    run("INSERT INTO sections(sections) VALUES('optimize')");
    query_.reset(prepared(database, "SELECT rowid FROM sections WHERE sections MATCH ? ORDER BY rowid"));
    return true;
}

const std::vector<std::size_t>& SqliteSearch::search(std::string_view term) {
    found_.clear();
    phrase_.assign("\"").append(term).append("\"");
    bindText(query_.get(), 1, phrase_);
    while (::sqlite3_step(query_.get()) == SQLITE_ROW)
        found_.push_back(static_cast<std::size_t>(::sqlite3_column_int64(query_.get(), 0)));
    ::sqlite3_reset(query_.get());
    return found_;
}

} // namespace querlin::bench
