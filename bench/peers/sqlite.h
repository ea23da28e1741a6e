#pragma once

#include "bench/peers/case.h"

#include <sqlite3.h>

#include <cstdint>
#include <span>
#include <string>

// What the cases on SQLite share: a data base tuned for speed, and statements that are prepared once.

namespace peers::sqlite {

class Database {
public:
    explicit Database(const Path& path); // ":memory:" is one in memory
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { (void)::sqlite3_close(m_database); }

    void Execute(const std::string& statement) const;
    [[nodiscard]] sqlite3* get() const { return m_database; }

private:
    sqlite3* m_database = nullptr;
};

// Values are bound and read from left to right.
class Statement {
public:
    Statement(const Database& database, const std::string& text);
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement() { (void)::sqlite3_finalize(m_statement); }

    Statement& Bind(std::int64_t value);
    Statement& Bind(double value);
    Statement& Bind(const std::string& text);          // lent until Run
    Statement& Bind(std::span<const std::byte> bytes); // lent until Run
    void Run();                                        // a statement without rows
    bool Next(); // to the next row; false after the last one, and it can begin again
    void Skip() { ++m_column; }
    void Restart(); // without the other rows
    std::int64_t Integer() { return ::sqlite3_column_int64(m_statement, m_column++); }
    double Real() { return ::sqlite3_column_double(m_statement, m_column++); }
    std::string Text();
    std::span<const std::byte> Bytes(); // valid until the next row

private:
    void Check(int status) const { Require(status == SQLITE_OK, "a call of SQLite"); }

    sqlite3_stmt* m_statement = nullptr;
    int m_parameter = 1;
    int m_column = 0;
};

// Everything between two of these is one transaction.
inline void Begin(const Database& database) { database.Execute("BEGIN"); }
inline void Commit(const Database& database) { database.Execute("COMMIT"); }

} // namespace peers::sqlite
