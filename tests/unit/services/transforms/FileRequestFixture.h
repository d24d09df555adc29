// Requests for one file, carried out in the test's own process: what is written into the target,
// and what is reported.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/WholeTransfer.h"
#include "services/providers/worker/ReplyReader.h"
#include "services/transforms/WorkChannel.h"
#include "tests/support/TestFolder.h"

namespace obtest {

class FileRequestFixture : public testing::Test {
protected:
    void SetUp() override {
        ObLib::UniqueKernelHandle replies;
        ASSERT_TRUE(CreatePipe(answered_.Put(), replies.Put(), nullptr, 1 << 20));
        channel_.emplace(ObLib::UniqueKernelHandle(), std::move(replies));
    }

    ObLib::UniqueKernelHandle Open(const wchar_t* name, DWORD access, DWORD how) const {
        return ObLib::UniqueKernelHandle(
            CreateFileW((folder_ / name).c_str(), access, 0, nullptr, how, 0, nullptr));
    }
    // With the file "source" and a new file "target", which can't be written without the access.
    transforms::WorkRequest Request(obcontract::WorkKind kind, std::vector<std::byte> settings,
                                    DWORD targetAccess = GENERIC_READ | GENERIC_WRITE) const {
        transforms::WorkRequest request;
        request.kind = kind;
        request.settings = std::move(settings);
        request.source = Open(L"source", GENERIC_READ, OPEN_EXISTING);
        request.target = Open(L"target", targetAccess, CREATE_ALWAYS);
        return request;
    }
    void WriteSource(const std::string& content) const {
        ASSERT_TRUE(WriteFileContent(folder_ / L"source", content));
    }
    std::string Target() const { return *ReadFileContent(folder_ / L"target"); }

    void ExpectChanged(const std::optional<transforms::WorkEnd>& end) const {
        ASSERT_TRUE(end);
        ASSERT_FALSE(end->failure);
        EXPECT_EQ(end->outcome, obcontract::WorkOutcome::Changed);
        EXPECT_EQ(end->size, Target().size());
    }
    // Expects the outcome and that nothing was written.
    void ExpectPassed(const std::optional<transforms::WorkEnd>& end,
                      obcontract::WorkOutcome outcome) const {
        ASSERT_TRUE(end);
        EXPECT_FALSE(end->failure);
        EXPECT_EQ(end->outcome, outcome);
        EXPECT_TRUE(Target().empty());
    }
    // The progress records so far; the manager's reader accepts all of them. The last call of a
    // test on the channel.
    int Records() {
        channel_.reset();
        providers::ReplyReader reader;
        reader.Begin();
        int records = 0;
        for (obcontract::WorkHeader header;
             ObLib::ReadWhole(answered_.Get(), &header, sizeof header);) {
            std::byte payload[obcontract::kLargestWorkPayload];
            EXPECT_TRUE(ObLib::ReadWhole(answered_.Get(), payload, header.size));
            const bool isProgress = header.kind == obcontract::WorkKind::Progress;
            EXPECT_TRUE(reader.Take(header.kind, {payload, header.size})) << records;
            records += isProgress;
        }
        reported_ = reader.Report();
        return records;
    }
    static obcontract::WorkFailure FailureOf(const std::optional<transforms::WorkEnd>& end) {
        return end && end->failure ? *end->failure : obcontract::WorkFailure{};
    }

    const TestFolder folder_;
    ObLib::UniqueKernelHandle answered_;
    std::optional<transforms::WorkChannel> channel_;
    providers::WorkReport reported_; // what the manager's reader made of the records; after Records
};

} // namespace obtest
