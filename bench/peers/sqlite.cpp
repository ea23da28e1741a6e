#include "bench/peers/sqlite.h"

namespace peers::sqlite {

Database::Database(const Path& path)
{
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    Require(::sqlite3_open_v2(path.c_str(), &m_database, kFlags, nullptr) == SQLITE_OK, "opening a data base");
    for (const char* pragma : {"page_size=8192", "journal_mode=OFF", "synchronous=OFF", "locking_mode=EXCLUSIVE",
                               "cache_size=-65536", "mmap_size=1073741824"})
        Execute(std::string("PRAGMA ") + pragma);
}

void Database::Execute(const std::string& statement) const
{
    Require(::sqlite3_exec(m_database, statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, statement.c_str());
}

Statement::Statement(const Database& database, const std::string& text)
{
    Require(::sqlite3_prepare_v2(database.get(), text.c_str(), -1, &m_statement, nullptr) == SQLITE_OK, text.c_str());
}

Statement& Statement::Bind(std::int64_t value)
{
    Check(::sqlite3_bind_int64(m_statement, m_parameter++, value));
    return *this;
}

Statement& Statement::Bind(double value)
{
    Check(::sqlite3_bind_double(m_statement, m_parameter++, value));
    return *this;
}

Statement& Statement::Bind(const std::string& text)
{
    Check(::sqlite3_bind_text(m_statement, m_parameter++, text.data(), static_cast<int>(text.size()), SQLITE_STATIC));
    return *this;
}

Statement& Statement::Bind(std::span<const std::byte> bytes)
{
    Check(::sqlite3_bind_blob(m_statement, m_parameter++, bytes.data(), static_cast<int>(bytes.size()), SQLITE_STATIC));
    return *this;
}

void Statement::Run() { Require(!Next(), "a statement"); }

bool Statement::Next()
{
    const int status = ::sqlite3_step(m_statement);
    m_column = 0;
    if (status == SQLITE_ROW) return true;
    Require(status == SQLITE_DONE, "a statement");
    Restart();
    return false;
}

void Statement::Restart()
{
    Check(::sqlite3_reset(m_statement));
    m_parameter = 1;
}

std::string Statement::Text()
{
    const auto* text = reinterpret_cast<const char*>(::sqlite3_column_text(m_statement, m_column));
    return {text, static_cast<std::size_t>(::sqlite3_column_bytes(m_statement, m_column++))};
}

std::span<const std::byte> Statement::Bytes()
{
    const auto* bytes = static_cast<const std::byte*>(::sqlite3_column_blob(m_statement, m_column));
    return {bytes, static_cast<std::size_t>(::sqlite3_column_bytes(m_statement, m_column++))};
}

} // namespace peers::sqlite
