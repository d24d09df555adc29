#include "tests/faults/HostRole.h"

#include <algorithm>
#include <cwchar>

#include "OBCore/exchange/ExchangeAnswer.h"
#include "OBCore/exchange/ExchangeMapping.h"
#include "OBCore/exchange/ExchangeRequest.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "contracts/ExchangeBlock.h"
#include "obwmv/HostEntry.h"
#include "tests/e2e/ZipContents.h"
#include "tests/support/ProductRegistry.h"

using obcontract::ExchangeBlock;
using obcontract::ExchangeStatus;

namespace obtest {
namespace {

std::uint32_t lastId = 0;

// Items of a list up to its closing empty string.
Texts Items(const std::wstring& list) {
    Texts items;
    for (const wchar_t* item = list.c_str(); *item; item += items.back().size() + 1)
        items.emplace_back(item);
    return items;
}

} // namespace

HostRole::HostRole()
    : owner_(CreateWindowExW(0, L"Static", L"browser", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200, nullptr,
                             nullptr, nullptr, nullptr)) {
    page_.lStructSize = sizeof(page_);
    page_.nMaxFile = 32000;
}

HostRole::~HostRole() = default;

void HostRole::SetUp() {
    ASSERT_TRUE(obcore::LoadArchiveService());
    ASSERT_TRUE(obcore::LoadProviderManager());
    ASSERT_TRUE(obcore::BindResourceModule());
    ClearProductRegistry();
    UseTemporaryFolder(temp_.Path());
    ChooseZip();
}

void HostRole::TearDown() { SetEnvironmentVariableW(L"TMP", nullptr); }

void HostRole::ChooseZip() { SetUserValue(L"SendItem", L"1"); }
void HostRole::ChooseNoZip() { SetUserValue(L"SendItem", L"0"); }

void HostRole::UseTemporaryFolder(const std::wstring& folder) {
    SetEnvironmentVariableW(L"TMP", folder.c_str());
}

HostRole::Answer HostRole::Open(const Texts& picked) {
    ObLib::UniqueKernelHandle mapping;
    const std::uint32_t id = ++lastId;
    const obcore::MappedExchangeBlock view = obcore::CreateExchangeBlock(id, mapping);
    ExchangeBlock& block = *view.Get();
    obcore::WriteOpenFileNameRequest(block, page_);
    shell_.script.results = picked;
    EXPECT_EQ(obwmv::HostEntry(owner_.Get(), id), 0);
    EXPECT_EQ(block.Status, ExchangeStatus::OpenFileNameTaken);
    Answer answer;
    answer.result = block.Result;
    if (block.Result != 0) answer.files = Items(obcore::ReadFileList(block));
    answer.cleanupFolder = obcore::ReadText(block, block.CleanupFolderOffset);
    answer.cleanupFile = obcore::ReadText(block, block.CleanupFileOffset);
    return answer;
}

HostRole::Answer HostRole::Show(const Texts& picked) {
    ObLib::UniqueKernelHandle mapping;
    const std::uint32_t id = ++lastId;
    const obcore::MappedExchangeBlock view = obcore::CreateExchangeBlock(id, mapping);
    ExchangeBlock& block = *view.Get();
    block.DialogOptions = FOS_ALLOWMULTISELECT;
    block.Status = ExchangeStatus::DialogRequest;
    shell_.script.results = picked;
    EXPECT_EQ(obwmv::HostEntry(owner_.Get(), id), 0);
    Answer answer;
    answer.result = block.Result;
    if (block.Status == ExchangeStatus::DialogAnswer && block.Result >= 0) {
        obcore::PickedFiles given;
        obcore::ReadDialogResult(block, given);
        answer.files = given.paths;
    }
    answer.cleanupFolder = obcore::ReadText(block, block.CleanupFolderOffset);
    answer.cleanupFile = obcore::ReadText(block, block.CleanupFileOffset);
    return answer;
}

Texts HostRole::Numbered(Texts items) {
    Texts folders;
    for (std::wstring& item : items) {
        const std::wstring folder = item.substr(0, item.find(L'\\'));
        if (std::ranges::find(folders, folder) == folders.end()) folders.push_back(folder);
        const auto number = std::ranges::find(folders, folder) - folders.begin() + 1;
        item.replace(0, folder.size(), std::to_wstring(number));
    }
    return items;
}

Texts HostRole::Left() const { return Numbered(ListTree(temp_.Path())); }

std::map<std::string, std::string> HostRole::ZipOf(const Answer& answer) const {
    std::map<std::string, std::string> contents;
    EXPECT_EQ(answer.files.size(), 1u);
    if (answer.files.size() != 1) return contents;
    EXPECT_TRUE(answer.files.front().starts_with(temp_.Path() + L"\\"));
    for (auto& [name, entry] : ReadZip(answer.files.front())) contents[name] = entry.content;
    return contents;
}

void HostRole::ExpectOnlyTheZipIsLeft(const Answer& answer) const {
    ASSERT_EQ(answer.files.size(), 1u);
    const std::wstring& zip = answer.files.front();
    EXPECT_EQ(Left(), (Texts{L"1\\", L"1" + zip.substr(zip.rfind(L'\\'))}));
    EXPECT_EQ(answer.cleanupFile, zip);
    EXPECT_EQ(answer.cleanupFolder, zip.substr(0, zip.rfind(L'\\') + 1));
}

void HostRole::ExpectNothingGiven(const Answer& answer) {
    EXPECT_TRUE(answer.result == FALSE || answer.result == obcontract::kCancelled) << answer.result;
    EXPECT_EQ(answer.files, Texts{});
}

std::size_t HostRole::ZipFailureMessages() const {
    const std::wstring text = obcore::LoadText(obcore::TextId::ZipFailed, 2048);
    const std::vector<SeenBox> seen = boxes_.Seen();
    return static_cast<std::size_t>(
        std::ranges::count_if(seen, [&](const SeenBox& box) { return box.text == text; }));
}

} // namespace obtest
