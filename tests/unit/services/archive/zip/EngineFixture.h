// A run of the zip engine of which nothing may be left when it fails: no file, no thread.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "services/archive/zip/ZipRun.h"
#include "tests/support/Allocations.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/archive/zip/EngineSeams.h"

namespace obtest {

// A text that shrinks to about a third; another one for each seed.
inline std::string EngineProse(std::size_t size, unsigned seed = 7) {
    std::mt19937 random(seed);
    std::string text;
    while (text.size() < size) {
        text += "word" + std::to_string(random() % 3000) + (random() % 9 ? " " : ".\n");
    }
    text.resize(size);
    return text;
}

inline std::string EngineNoise(std::size_t size, unsigned seed = 42) {
    std::mt19937 random(seed);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

class EngineFixture : public testing::Test {
protected:
    EngineFixture() { job_.target = out_ / L"result.zip"; }

    std::wstring Add(const std::wstring& name, const std::string& content) {
        return job_.files.emplace_back(in_.File(name, content));
    }

    // So small that each is one call of the compressor, and few enough that the read-ahead takes
    // all at once.
    void AddSmallFiles(std::size_t count) {
        const std::string text = EngineProse(60'000);
        for (std::size_t index = 0; index < count; ++index) {
            Add(L"small" + std::to_wstring(index) + L".txt", text);
        }
    }

    void Encrypt(std::uint32_t method = 8) {
        job_.encryptionMethod = method;
        job_.password = obarchive::Secret("password");
    }

    obarchive::ZipResult Run(const obarchive::ProgressCallback& progress = {}) {
        obarchive::RunPaths paths;
        const auto result = obarchive::RunZip(job_, progress, &paths);
        failedFile_ = paths.failed;
        return result;
    }

    // No file of the run and no thread beyond those that there were before it.
    void ExpectNothingLeft() {
        EXPECT_EQ(ListTree(out_.Path()), std::vector<std::wstring>{});
        EXPECT_TRUE(AwaitThreads(threads_)) << ThreadCount() << " instead of " << threads_;
    }

    TestFolder in_;
    TestFolder out_;
    obarchive::ZipJob job_;
    std::wstring failedFile_;
    const std::size_t threads_ = ThreadCount();
};

} // namespace obtest
