// The real manager's module beyond what the fake has to return: lists of others, the manager that
// is meant, and threads that hang beyond a session.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "OBCore/modules/ProviderLibrary.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/contract/providers/ScriptedStorage.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/WindowKit.h"

namespace {

using namespace obcontract;
using namespace obcore;
using obtest::FakeModules;
using On = slots::OnCloudProvider;
using OnDownloads = slots::OnDownloadList;
using OnUploads = slots::OnUploadList;

constexpr auto kCurrentUser = static_cast<std::int64_t>(static_cast<std::int32_t>(0x80000001));
constexpr wchar_t kAccount[] = L"{11111111-1111-1111-1111-111111111111}";

class StorageModule : public testing::Test {
protected:
    void SetUp() override {
        FakeModules::Reset();
        obtest::ClearProductRegistry();
        FakeModules::Answer(L"Providers", L"7,21");
        FakeModules::Answer(L"provider7.HasCapability", L"2");
        obtest::SetValue(HKEY_CURRENT_USER,
                         std::wstring(kProviderManagerKey) + L"\\Accounts\\7\\" + kAccount,
                         L"Label", L"one");
        ASSERT_TRUE(LoadProviderManager());
    }

    static const ProviderManagerEntries& Entries() { return ProviderManager(); }
    static ProviderManagerHandle Begin() {
        const ProviderManagerHandle manager = Entries().CreateObExtensionsManager();
        Entries().Init(manager, kCurrentUser, kProviderManagerKey);
        return manager;
    }
    static void End(ProviderManagerHandle manager) {
        Entries().Deinit(manager);
        Entries().DeleteObExtensionsManager(manager);
    }
    static CloudProvider* Seven(ProviderManagerHandle manager) {
        return Entries().GetProviderInstance(manager, 7, ProviderKind::Storage);
    }

    // The record of a file that was uploaded and shared.
    static CloudItem SharedFile(CloudProvider* provider) {
        UploadList* uploads = On::CreateUploadList::Call(provider, kAccount);
        OnUploads::AddFile::Call(uploads, L"C:\\t\\a.zip", L"a.zip", 0, 0, L"");
        EXPECT_TRUE(
            On::RunUpload::Call(provider, uploads, nullptr, L"", L"", 1, 0, 1, 1, 1, nullptr));
        CloudItem item{};
        EXPECT_TRUE(OnUploads::GetItem::Call(uploads, 0, &item));
        DownloadList* list = On::CreateDownloadList::Call(provider);
        OnDownloads::AddItem::Call(list, &item);
        EXPECT_TRUE(On::ShareItems::Call(provider, list));
        EXPECT_TRUE(OnDownloads::GetItem::Call(list, 0, &item));
        return item;
    }
};

TEST_F(StorageModule, SchedulesADeletionInTheManagerThatBeganLast) {
    const ProviderManagerHandle first = Begin();
    const CloudItem item = SharedFile(Seven(first));
    EXPECT_TRUE(Entries().AddFileToDeletionSchedule(&item, 1));
    const ProviderManagerHandle second = Begin();
    EXPECT_FALSE(Entries().AddFileToDeletionSchedule(&item, 1)) << "not the second one's upload";
    End(second);
    EXPECT_TRUE(Entries().AddFileToDeletionSchedule(&item, 1));
    End(first);
    EXPECT_FALSE(Entries().AddFileToDeletionSchedule(&item, 1));
}

TEST_F(StorageModule, TakesNoProviderOfAnotherManagerAndNoListOfAnotherProvider) {
    FakeModules::Answer(L"Login2", L"1");
    FakeModules::Answer(L"GetSharedListFromOpenPicker", L"a.pdf|https://x/1");
    const ProviderManagerHandle first = Begin();
    const ProviderManagerHandle second = Begin();
    wchar_t key[1000] = L"";
    wchar_t label[51] = L"";
    EXPECT_FALSE(Entries().Login2(second, Seven(first), key, label, nullptr));
    EXPECT_TRUE(Entries().Login2(first, Seven(first), key, label, nullptr));
    DownloadList* list = On::CreateDownloadList::Call(Seven(first));
    CloudProvider* other = Entries().GetProviderInstance(first, 21, ProviderKind::Storage);
    EXPECT_FALSE(Entries().GetSharedListFromOpenPicker(first, other, list, nullptr));
    Entries().DeleteDownloadList(other, list); // not the other's to take back
    EXPECT_TRUE(Entries().GetSharedListFromOpenPicker(first, Seven(first), list, nullptr));
    End(second);
    End(first);
}

TEST_F(StorageModule, HasNoTextsOfAnInstanceAfterDeinit) {
    FakeModules::Answer(L"provider7.GetShortDescription", L"Files");
    const ProviderManagerHandle manager = Begin();
    CloudProvider* provider = Seven(manager);
    wchar_t text[128] = L"";
    std::uint32_t capacity = 128;
    Entries().GetShortDescription(provider, 1, text, &capacity);
    EXPECT_STREQ(text, L"Files");
    End(manager);
    Entries().GetShortDescription(provider, 1, text, &capacity); // by its address alone
    EXPECT_STREQ(text, L"");
    EXPECT_EQ(Entries().GetBitmap(provider, 1, 0), nullptr);
    Entries().DeleteDownloadList(provider, nullptr);
}

TEST_F(StorageModule, DrawsAnIconWithTransparentPixels) {
    FakeModules::Answer(L"provider7.GetBitmap", L"1");
    const ProviderManagerHandle manager = Begin();
    const ObLib::UniqueBitmap bitmap(Entries().GetBitmap(Seven(manager), 1, 3));
    ASSERT_TRUE(bitmap);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(info.bmiHeader), 32, -32, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    std::vector<std::uint8_t> pixels(32 * 32 * 4);
    const HDC dc = GetDC(nullptr);
    ASSERT_EQ(GetDIBits(dc, bitmap.Get(), 0, 32, pixels.data(), &info, DIB_RGB_COLORS), 32);
    ReleaseDC(nullptr, dc);
    std::size_t clear = 0;
    std::size_t solid = 0;
    for (std::size_t at = 0; at < pixels.size(); at += 4) {
        const std::uint8_t alpha = pixels[at + 3];
        clear += alpha == 0;
        solid += alpha == 255;
        EXPECT_LE(pixels[at], alpha); // premultiplied
    }
    EXPECT_GT(clear, 50u);
    EXPECT_GT(solid, 200u);
    End(manager);
}

TEST_F(StorageModule, HasATextWithTheFilesNameForACancelledOrFailedUpload) {
    FakeModules::Answer(L"provider7.RunUpload", L"0");
    const ProviderManagerHandle manager = Begin();
    CloudProvider* provider = Seven(manager);
    UploadList* uploads = On::CreateUploadList::Call(provider, kAccount);
    OnUploads::AddFile::Call(uploads, L"C:\\t\\a.zip", L"a.zip", 0, 0, L"");
    EXPECT_FALSE(On::RunUpload::Call(provider, uploads, nullptr, L"", L"", 1, 0, 1, 1, 1, nullptr));
    wchar_t text[2048] = L"";
    std::uint64_t capacity = 2048;
    // Asked through the other provider: errors are kept by account.
    CloudProvider* other = Entries().GetProviderInstance(manager, 21, ProviderKind::Storage);
    Entries().GetLastErrorOfProvider(other, kAccount, L"a.zip", text, &capacity);
    EXPECT_STREQ(text, L"“a.zip” can't be uploaded. Nothing was attached. Please try again.");
    End(manager);
}

// The last test of the suite: it frees the module.
TEST_F(StorageModule, StaysLoadedWhileAThreadHangsBeyondTheSession) {
    const ObLib::UniqueKernelHandle release(CreateEventW(nullptr, TRUE, FALSE, kReleaseEvent));
    FakeModules::Answer(L"provider7.GetAccountSpace.hangs", L"1");
    const ProviderManagerHandle manager = Begin();
    std::int64_t free = 0;
    std::int64_t total = 0;
    EXPECT_TRUE(On::GetAccountSpace::Call(Seven(manager), kAccount, &free, &total));
    EXPECT_EQ(free, SizeUnknown);
    EXPECT_EQ(total, SizeUnknown);
    End(manager);
    FreeProviderManager();
    EXPECT_NE(GetModuleHandleW(kProviderManagerFileName), nullptr);
    SetEvent(release.Get());
    EXPECT_TRUE(
        obtest::WaitUntil([] { return GetModuleHandleW(kProviderManagerFileName) == nullptr; }));
}

} // namespace
