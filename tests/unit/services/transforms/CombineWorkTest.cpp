// The requests by which PDFs become one, carried out on files: what is written and reported.
#include "services/transforms/CombineWork.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>

#include "ObLib/Src/Win32/WholeTransfer.h"
#include "services/providers/worker/ReplyReader.h"
#include "tests/unit/services/transforms/FileRequestFixture.h"
#include "tests/unit/services/transforms/documents/PdfSamples.h"

using namespace obcontract;
using transforms::WorkEnd;

namespace {

class CombineWork : public obtest::FileRequestFixture {
protected:
    void SetUp() override {
        FileRequestFixture::SetUp();
        work_.emplace(*channel_);
    }
    void TearDown() override { work_.reset(); }

    static std::vector<std::byte> Settings(const WorkCombineAdd& record,
                                           const std::wstring& title) {
        std::vector<std::byte> bytes(sizeof record + title.size() * sizeof(wchar_t));
        std::memcpy(bytes.data(), &record, sizeof record);
        std::memcpy(bytes.data() + sizeof record, title.data(), title.size() * sizeof(wchar_t));
        return bytes;
    }
    std::optional<WorkEnd> Add(const std::string& file, const WorkCombineAdd& record = {},
                               const std::wstring& title = L"Gr\u00fc\u00dfe") {
        return Add(file, Settings(record, title));
    }
    // Each source has a name of its own, as the work keeps it mapped.
    std::optional<WorkEnd> Add(const std::string& file, std::vector<std::byte> settings) {
        const std::wstring name = L"source" + std::to_wstring(++sources_);
        EXPECT_TRUE(obtest::WriteFileContent(folder_ / name, file));
        transforms::WorkRequest request;
        request.kind = WorkKind::CombineAdd;
        request.settings = std::move(settings);
        request.source = Open(name.c_str(), GENERIC_READ, OPEN_EXISTING);
        return work_->Add(request);
    }
    std::optional<WorkEnd> Write(DWORD access = GENERIC_READ | GENERIC_WRITE,
                                 std::uint64_t reserved = 0) {
        transforms::WorkRequest request;
        request.kind = WorkKind::CombineWrite;
        request.settings.resize(sizeof(WorkPlain));
        std::memcpy(request.settings.data(), &reserved, sizeof reserved);
        request.target = Open(L"target", access, CREATE_ALWAYS);
        return work_->Write(request);
    }
    static void ExpectAdded(const std::optional<WorkEnd>& end) {
        ASSERT_TRUE(end);
        EXPECT_FALSE(end->failure);
        EXPECT_EQ(end->outcome, WorkOutcome::Changed);
        EXPECT_EQ(end->size, 0u);
    }
    static std::string Signed() {
        samples::PdfBuilder pdf = samples::OnePage("", "/Perms <</DocMDP 5 0 R>>");
        pdf.Add("<</Type /Sig /ByteRange [0 1 2 3] /Contents <00>>>");
        return pdf.File();
    }
    std::size_t PagesOfTarget() const {
        const std::string file = Target();
        QPDF pdf;
        pdf.processMemoryFile("target", file.data(), file.size());
        return pdf.getAllPages().size();
    }

    std::optional<transforms::CombineWork> work_;
    int sources_ = 0;
};

TEST_F(CombineWork, WritesAllThatWereAddedIntoOneFile) {
    ExpectAdded(Add(samples::OnePage().File()));
    ExpectAdded(Add(samples::OnePage().File()));
    ExpectChanged(Write());
    EXPECT_EQ(PagesOfTarget(), 2u);
    const std::string file = Target();
    QPDF pdf;
    pdf.processMemoryFile("target", file.data(), file.size());
    auto bookmarks = pdf.getRoot().getKey("/Outlines");
    EXPECT_EQ(bookmarks.getKey("/First").getKey("/Title").getUTF8Value(), "Gr\xC3\xBC\xC3\x9F"
                                                                          "e");
}

TEST_F(CombineWork, GoesOnAfterAFileThatIsNotAdded) {
    ExpectAdded(Add(samples::OnePage().File()));
    EXPECT_EQ(Add("a text")->outcome, WorkOutcome::NotSupported);
    EXPECT_EQ(Add("")->outcome, WorkOutcome::NotSupported);
    EXPECT_EQ(FailureOf(Add("%PDF-1.7")), WorkFailure::Damaged);
    EXPECT_EQ(FailureOf(Add(Signed())), WorkFailure::Signed);
    ExpectAdded(Add(Signed(), {WorkSignatures::Break, 0}));
    ExpectChanged(Write());
    EXPECT_EQ(PagesOfTarget(), 2u);
}

TEST_F(CombineWork, ReportsATargetThatCannotBeWritten) { // as on a full disk
    ExpectAdded(Add(samples::OnePage().File()));
    EXPECT_EQ(FailureOf(Write(GENERIC_READ)), WorkFailure::Unwritable);
}

TEST_F(CombineWork, TakesNoValueThatTheContractLacks) {
    const std::string file = samples::OnePage().File();
    EXPECT_FALSE(Add(file, {WorkSignatures{2}, 0}));
    EXPECT_FALSE(Add(file, {WorkSignatures::Keep, 1}));
    EXPECT_FALSE(Add(file, {}, std::wstring(L"a\0b", 3)));
    auto half = Settings({}, L"ab");
    half.pop_back();
    EXPECT_FALSE(Add(file, half));
}

TEST_F(CombineWork, TakesNoRequestOutOfItsOrder) {
    EXPECT_FALSE(Write());
    EXPECT_EQ(Add("a text")->outcome, WorkOutcome::NotSupported);
    EXPECT_FALSE(Write());
    ExpectAdded(Add(samples::OnePage().File()));
    EXPECT_FALSE(Write(GENERIC_READ | GENERIC_WRITE, 1));
    ExpectChanged(Write());
    EXPECT_FALSE(Write());
    EXPECT_FALSE(Add(samples::OnePage().File()));
}

// The manager's own reader takes every record, and learns which PDF was read last.
TEST_F(CombineWork, ReportsItsProgressAndThePdfThatItReads) {
    ExpectAdded(Add(samples::OnePage().File()));
    providers::ReplyReader reader;
    const auto takeAll = [&] {
        reader.Begin();
        DWORD there = 0;
        int records = 0;
        while (PeekNamedPipe(answered_.Get(), nullptr, 0, nullptr, &there, nullptr) && there > 0) {
            WorkHeader header;
            std::byte payload[kLargestWorkPayload];
            EXPECT_TRUE(ObLib::ReadWhole(answered_.Get(), &header, sizeof header));
            EXPECT_EQ(header.kind, WorkKind::Progress);
            EXPECT_TRUE(ObLib::ReadWhole(answered_.Get(), payload, header.size));
            EXPECT_TRUE(reader.Take(header.kind, {payload, header.size}));
            ++records;
        }
        return records;
    };
    EXPECT_EQ(takeAll(), 1);
    ExpectAdded(Add(samples::OnePage().File()));
    ExpectAdded(Add(samples::OnePage().File()));
    EXPECT_TRUE(answered_);
    // Two requests, each of which begins anew.
    for (int request = 0; request < 2; ++request) {
        WorkHeader header;
        WorkProgress progress;
        ASSERT_TRUE(ObLib::ReadWhole(answered_.Get(), &header, sizeof header));
        ASSERT_EQ(header.size, sizeof progress);
        ASSERT_TRUE(ObLib::ReadWhole(answered_.Get(), &progress, sizeof progress));
    }
    ExpectChanged(Write());
    EXPECT_EQ(takeAll(), 3);
    EXPECT_EQ(reader.Report().number, 2u);
}

TEST_F(CombineWork, EndsWhenTheManagerNoLongerReads) {
    ExpectAdded(Add(samples::OnePage().File()));
    answered_.Reset();
    EXPECT_FALSE(Add(samples::OnePage().File()));
    EXPECT_FALSE(Write());
}

} // namespace
