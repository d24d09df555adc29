// What the work process accepts as a request, and the bytes of its replies.
#include "services/transforms/WorkChannel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>

#include "ObLib/Src/Win32/WholeTransfer.h"
#include "services/providers/worker/ReplyReader.h"
#include "services/transforms/CleanWork.h"
#include "services/transforms/FileRequests.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/transforms/SamplePhoto.h"

using namespace obcontract;
using ObLib::UniqueKernelHandle;
using transforms::WorkChannel;
using transforms::WorkEnd;

namespace {

class WorkChannelTest : public testing::Test {
protected:
    void SetUp() override {
        UniqueKernelHandle requests;
        UniqueKernelHandle replies;
        ASSERT_TRUE(CreatePipe(requests.Put(), asked_.Put(), nullptr, 0));
        ASSERT_TRUE(CreatePipe(answered_.Put(), replies.Put(), nullptr, 0));
        channel_.emplace(std::move(requests), std::move(replies));
    }

    // A new handle of a file, which the channel closes with its request.
    std::uint64_t File(const wchar_t* name) const {
        return reinterpret_cast<std::uintptr_t>(CreateFileW((folder_ / name).c_str(),
                                                            GENERIC_READ | GENERIC_WRITE, 0,
                                                            nullptr, CREATE_ALWAYS, 0, nullptr));
    }
    void Send(const void* bytes, std::size_t size) {
        ASSERT_TRUE(ObLib::WriteWhole(asked_.Get(), bytes, size));
    }
    // Sends the record for these files, with as many bytes of settings as the header announces.
    void Ask(const WorkHeader& header, const WorkFiles& files, std::string settings = {}) {
        settings.resize(header.size - sizeof files);
        Send(&header, sizeof header);
        Send(&files, sizeof files);
        Send(settings.data(), settings.size());
    }
    void SendPassword(const std::string& password) {
        const WorkHeader header{kWorkMagic, WorkKind::Password,
                                static_cast<std::uint32_t>(password.size()), 0};
        Send(&header, sizeof header);
        Send(password.data(), password.size());
    }
    static WorkHeader Header(WorkKind kind) {
        const auto* const form = std::ranges::find(kWorkRequests, kind, &WorkRequestForm::kind);
        const bool isKnown = form != std::end(kWorkRequests);
        return {kWorkMagic, kind,
                static_cast<std::uint32_t>(sizeof(WorkFiles) + (isKnown ? form->least : 8)), 0};
    }
    bool Accepts(const WorkHeader& header, const WorkFiles& files) {
        Ask(header, files);
        return channel_->Next().has_value();
    }

    const obtest::TestFolder folder_;
    UniqueKernelHandle asked_;
    UniqueKernelHandle answered_;
    std::optional<WorkChannel> channel_;
};

TEST_F(WorkChannelTest, TakesARequestWithItsFiles) {
    Ask(Header(WorkKind::Clean), {File(L"a"), File(L"b")});
    const auto request = channel_->Next();
    ASSERT_TRUE(request);
    EXPECT_EQ(request->kind, WorkKind::Clean);
    EXPECT_TRUE(request->source);
    EXPECT_TRUE(request->target);
}

TEST_F(WorkChannelTest, TakesACheckWithoutATarget) {
    Ask(Header(WorkKind::CheckClean), {File(L"a"), 0});
    const auto request = channel_->Next();
    ASSERT_TRUE(request);
    EXPECT_FALSE(request->target);
}

// What the manager needs to see of a large file on a slow disk.
TEST_F(WorkChannelTest, ReportsTheProgressOfALargeFileWhileItIsReadAndWritten) {
    std::string photo = samples::Photo();
    ASSERT_EQ(photo.substr(photo.size() - 2), "\xff\xd9");
    photo.insert(photo.size() - 2, std::size_t{9} << 20, 'x'); // of the coded picture
    ASSERT_TRUE(obtest::WriteFileContent(folder_ / L"large", photo));
    transforms::WorkRequest request;
    request.kind = WorkKind::Clean;
    request.settings.resize(sizeof(WorkClean));
    request.source.Reset(CreateFileW((folder_ / L"large").c_str(), GENERIC_READ, 0, nullptr,
                                     OPEN_EXISTING, 0, nullptr));
    request.target.Reset(reinterpret_cast<HANDLE>(File(L"clean")));
    const auto end = transforms::Clean(request, *channel_);
    ASSERT_TRUE(end && end->outcome == WorkOutcome::Changed);
    channel_.reset(); // no more replies
    providers::ReplyReader reader;
    reader.Begin();
    int reports = 0;
    for (WorkHeader header; ObLib::ReadWhole(answered_.Get(), &header, sizeof header);) {
        std::byte payload[kLargestWorkPayload];
        ASSERT_TRUE(ObLib::ReadWhole(answered_.Get(), payload, header.size));
        EXPECT_TRUE(reader.Take(header.kind, {payload, header.size}));
        reports += header.kind == WorkKind::Progress;
    }
    EXPECT_EQ(reports, 6); // three blocks are read and three are written
}

TEST_F(WorkChannelTest, EndsWithThePipe) {
    asked_.Reset();
    EXPECT_FALSE(channel_->Next());
}

TEST_F(WorkChannelTest, RefusesAHeaderThatIsNotARequest) {
    WorkHeader wrong = Header(WorkKind::Clean);
    wrong.magic ^= 1;
    EXPECT_FALSE(Accepts(wrong, {File(L"a"), File(L"b")}));
    SetUp();
    EXPECT_FALSE(Accepts(Header(WorkKind::Done), {File(L"c"), File(L"d")}));
    SetUp();
    wrong = Header(WorkKind::Clean);
    wrong.size -= 1;
    EXPECT_FALSE(Accepts(wrong, {File(L"e"), File(L"f")}));
    SetUp();
    wrong = Header(WorkKind::Clean);
    wrong.reserved = 1;
    EXPECT_FALSE(Accepts(wrong, {File(L"g"), File(L"h")}));
}

TEST_F(WorkChannelTest, RefusesARequestWithoutTheFilesOfItsKind) {
    EXPECT_FALSE(Accepts(Header(WorkKind::Clean), {0, File(L"a")}));
    EXPECT_FALSE(Accepts(Header(WorkKind::Clean), {File(L"b"), 0}));
    EXPECT_FALSE(Accepts(Header(WorkKind::CheckClean), {File(L"c"), File(L"d")}));
}

TEST_F(WorkChannelTest, TakesTheSettingsOfItsKindAndNoOthers) {
    const WorkResize settings{WorkAim::Percent, 90, 50};
    std::string bytes(sizeof settings, '\0');
    std::memcpy(bytes.data(), &settings, sizeof settings);
    Ask(Header(WorkKind::Resize), {File(L"a"), File(L"b")}, bytes);
    const auto request = channel_->Next();
    ASSERT_TRUE(request);
    const auto taken = request->SettingsAs<WorkResize>();
    EXPECT_EQ(taken.aim, WorkAim::Percent);
    EXPECT_EQ(taken.quality, 90u);
    EXPECT_EQ(taken.value, 50u);
    for (const std::uint32_t size : {0u, 15u, 31u, 33u, 4096u, 0xffffffffu}) {
        SetUp();
        WorkHeader wrong = Header(WorkKind::Resize);
        ASSERT_EQ(wrong.size, 32u);
        wrong.size = size;
        Send(&wrong, sizeof wrong);
        EXPECT_FALSE(channel_->Next()) << size;
    }
}

// Settings of the right size whose values the contract lacks end the process too.
TEST_F(WorkChannelTest, CarriesOutNoRequestWithValuesThatTheContractLacks) {
    const auto carriesOut = [&](WorkKind kind, const auto& settings) {
        transforms::WorkRequest request;
        request.kind = kind;
        const auto bytes = std::as_bytes(std::span(&settings, 1));
        request.settings.assign(bytes.begin(), bytes.end());
        request.source.Reset(reinterpret_cast<HANDLE>(File(L"source")));
        request.target.Reset(reinterpret_cast<HANDLE>(File(L"target")));
        transforms::SeriesWork series(*channel_);
        return transforms::CarryOut(request, *channel_, series).has_value();
    };
    EXPECT_TRUE(carriesOut(WorkKind::Clean, WorkClean{0}));
    EXPECT_FALSE(carriesOut(WorkKind::Clean, WorkClean{1}));
    EXPECT_TRUE(carriesOut(WorkKind::Resize, WorkResize{WorkAim::Percent, 1, 99}));
    EXPECT_FALSE(carriesOut(WorkKind::Resize, WorkResize{WorkAim::Percent, 1, 100}));
    EXPECT_FALSE(carriesOut(WorkKind::Resize, WorkResize{WorkAim::Percent, 1, 0}));
    EXPECT_FALSE(carriesOut(WorkKind::Resize, WorkResize{WorkAim::LongestEdge, 0, 100}));
    EXPECT_FALSE(carriesOut(WorkKind::Resize, WorkResize{WorkAim::LongestEdge, 101, 100}));
    EXPECT_FALSE(carriesOut(WorkKind::Resize, WorkResize{WorkAim::LongestEdge, 90, 0x100000000}));
    EXPECT_FALSE(carriesOut(WorkKind::Resize, WorkResize{static_cast<WorkAim>(0), 90, 5}));
    EXPECT_FALSE(carriesOut(WorkKind::Resize, WorkResize{static_cast<WorkAim>(4), 90, 5}));
}

TEST_F(WorkChannelTest, TakesAPasswordForTheNextRequestAlone) {
    SendPassword("p\xC3\xA4ss");
    Ask(Header(WorkKind::CheckClean), {File(L"a"), 0});
    Ask(Header(WorkKind::CheckClean), {File(L"b"), 0});
    const auto request = channel_->Next();
    ASSERT_TRUE(request);
    EXPECT_EQ(request->kind, WorkKind::CheckClean);
    EXPECT_STREQ(request->password.Text(), "p\xC3\xA4ss");
    const auto next = channel_->Next();
    ASSERT_TRUE(next);
    EXPECT_TRUE(next->password.Empty());
}

TEST_F(WorkChannelTest, TakesTheLongestPassword) {
    const std::string longest(kMostPasswordBytes, 'x');
    SendPassword(longest);
    Ask(Header(WorkKind::CheckClean), {File(L"a"), 0});
    EXPECT_EQ(channel_->Next()->password.Text(), longest);
}

TEST_F(WorkChannelTest, RefusesPasswordsThatTheContractLacks) {
    for (const std::string& password :
         {std::string(), std::string(kMostPasswordBytes + 1, 'x'), std::string("a\0b", 3)}) {
        SendPassword(password);
        Ask(Header(WorkKind::CheckClean), {File(L"a"), 0});
        EXPECT_FALSE(channel_->Next()) << password.size();
        SetUp();
    }
    SendPassword("one");
    SendPassword("two");
    EXPECT_FALSE(channel_->Next());
}

TEST_F(WorkChannelTest, TakesAPictureAtTheEndOfTheSettings) {
    const auto ask = [&](std::uint64_t picture) {
        const WorkPictureWatermark settings{WorkPlace::Centre, 50, picture};
        Ask(Header(WorkKind::PictureWatermark), {File(L"a"), File(L"b")},
            {reinterpret_cast<const char*>(&settings), sizeof settings});
        return channel_->Next();
    };
    const std::uint64_t picture = File(L"picture");
    const auto request = ask(picture);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->picture.Get(), reinterpret_cast<HANDLE>(picture));
    EXPECT_EQ(request->SettingsAs<WorkPictureWatermark>().opacity, 50u);
    channel_.reset();
    SetUp();
    EXPECT_FALSE(ask(0));
}

TEST_F(WorkChannelTest, RefusesAHandleThatIsNoFile) {
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    EXPECT_FALSE(
        Accepts(Header(WorkKind::CheckClean), {reinterpret_cast<std::uintptr_t>(event), 0}));
}

// Every reply, read by the manager's own reader.
TEST_F(WorkChannelTest, SendsRepliesThatTheManagerAccepts) {
    ASSERT_TRUE(channel_->SendProgress(1, 2));
    ASSERT_TRUE(channel_->SendFinding("maker-notes", 3));
    ASSERT_TRUE(channel_->SendFinding(std::string(100, 'k'), 1));
    ASSERT_TRUE(channel_->SendEnd(WorkEnd(WorkOutcome::Changed, 42)));
    providers::ReplyReader reader;
    reader.Begin();
    while (!reader.IsComplete()) {
        WorkHeader header;
        ASSERT_TRUE(ObLib::ReadWhole(answered_.Get(), &header, sizeof header));
        const auto size = providers::ReplyPayload(header);
        ASSERT_TRUE(size);
        std::byte payload[kLargestWorkPayload];
        ASSERT_TRUE(ObLib::ReadWhole(answered_.Get(), payload, *size));
        ASSERT_TRUE(reader.Take(header.kind, {payload, *size}));
    }
    EXPECT_EQ(reader.Report().size, 42u);
    ASSERT_EQ(reader.Report().found.size(), 2u);
    EXPECT_EQ(reader.Report().found[0], (providers::WorkFound{"maker-notes", 3}));
    EXPECT_EQ(reader.Report().found[1].key, std::string(kWorkKeyCapacity - 1, 'k'));
}

TEST_F(WorkChannelTest, ReportsThatTheManagerNoLongerReads) {
    answered_.Reset();
    EXPECT_FALSE(channel_->SendEnd(WorkEnd(WorkFailure::Damaged)));
}

} // namespace
