// The rows of the packed name tables, one by one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct NameRow {
    std::wstring name;
    std::uint32_t value; // code page or code point
    bool misplaced;      // not in its name's bucket, so that nobody finds it
};

// In the tables' order; read once.
const std::vector<NameRow>& CharsetRows();
const std::vector<NameRow>& EntityRows();
