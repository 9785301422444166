#pragma once

#include <gtest/gtest.h>

#include <sqlite3.h>
#include <string>

/// Runs statements on a database behind the back of whoever has it: what they select, a value a
/// line.
inline std::string sqlIn(const std::string& path, const std::string& statements) {
    sqlite3* database = nullptr;
    std::string result;
    const auto addRow = [](void* rows, int count, char** values, char**) {
        for (int i = 0; i < count; ++i)
            *static_cast<std::string*>(rows) += std::string(values[i] ? values[i] : "NULL") + '\n';
        return 0;
    };
    char* error = nullptr;
    if (sqlite3_open(path.c_str(), &database) != SQLITE_OK ||
        sqlite3_busy_timeout(database, 5000) != SQLITE_OK ||
        sqlite3_exec(database, statements.c_str(), addRow, &result, &error) != SQLITE_OK)
        ADD_FAILURE() << (error ? error : "the database does not open");
    sqlite3_free(error);
    sqlite3_close(database);
    return result;
}
