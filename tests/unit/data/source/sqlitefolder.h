// A folder with SQLite files for one test.
#pragma once

#include <string>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "tests/unit/data/open/datafolder.h"

namespace runtime::data {

class SqliteFolder : public testing::Test {
 protected:
  /// Runs statements on a file, made when it is not there, and gives its path.
  std::string Write(const std::string& sql, const std::string& name = "t.sqlite") const {
    const std::string path = fFolder.path() + "/" + name;
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
    char* problem = nullptr;
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, &problem), SQLITE_OK) << problem;
    sqlite3_close(database);
    return path;
  }

  DataFolder fFolder;
};

}  // namespace runtime::data
