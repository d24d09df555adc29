#include "tests/e2e/KeptBytes.h"

#include <gtest/gtest.h>

#include <vector>

#include "ObLib/Src/Win32/RegistryView.h"
#include "tests/support/TestFolder.h"
#include "tests/support/Utf8.h"

namespace obtest {
namespace {

constexpr DWORD kLongestName = 16384; // characters, as of a value
constexpr DWORD kLongestData = 1 << 20;

std::wstring UsagePath() {
    const wchar_t* folder = _wgetenv(L"LOCALAPPDATA");
    EXPECT_NE(folder, nullptr);
    return std::wstring(folder ? folder : L"") + L"\\Tavi Ren Computing\\Ombrix\\usage.txt";
}

std::string BytesOf(const std::wstring& text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

void AddValues(HKEY key, std::string& bytes) {
    std::vector<wchar_t> name(kLongestName);
    std::vector<BYTE> data(kLongestData);
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = kLongestName;
        DWORD dataSize = kLongestData;
        const LSTATUS result = RegEnumValueW(key, index, name.data(), &nameSize, nullptr, nullptr,
                                             data.data(), &dataSize);
        if (result == ERROR_NO_MORE_ITEMS) return;
        ASSERT_EQ(result, ERROR_SUCCESS);
        bytes += BytesOf({name.data(), nameSize});
        bytes.append(data.begin(), data.begin() + dataSize);
    }
}

void AddKey(const std::wstring& path, std::string& bytes) {
    const auto key = ObLib::OpenRegistryKey(HKEY_CURRENT_USER, path.c_str(), KEY_READ);
    ASSERT_TRUE(key);
    bytes += BytesOf(path);
    AddValues(key.Get(), bytes);
    wchar_t name[256];
    for (DWORD index = 0;; ++index) {
        DWORD size = static_cast<DWORD>(std::size(name));
        if (RegEnumKeyExW(key.Get(), index, name, &size, nullptr, nullptr, nullptr, nullptr)) {
            return;
        }
        AddKey(path + L'\\' + name, bytes);
    }
}

} // namespace

std::string UsageRecord() { return ReadFileContent(UsagePath()).value_or(""); }

void RemoveUsageRecord() { DeleteFileW(UsagePath().c_str()); }

std::string ProductRegistryBytes() {
    std::string bytes;
    AddKey(L"Software\\Tavi Ren Computing", bytes);
    return bytes;
}

bool HasText(const std::string& bytes, const std::wstring& text) {
    return bytes.find(Utf8(text)) != std::string::npos ||
           bytes.find(BytesOf(text)) != std::string::npos;
}

} // namespace obtest
