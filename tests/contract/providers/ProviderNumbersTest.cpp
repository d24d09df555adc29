// The numbers of the contract, and what hangs on them.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "OBCore/modules/ProviderLibrary.h"

namespace {

using namespace obcontract;
using namespace obcore;

template <class Value>
std::int64_t Number(Value value) {
    return static_cast<std::int64_t>(value);
}

TEST(ProviderNumbers, NameKindsModesAndCapabilities) {
    EXPECT_EQ(Number(ProviderKind::Storage), 1);
    EXPECT_EQ(Number(ProviderKind::Transform), 4);
    EXPECT_EQ(kSelectLeaveOut, 1u);
    EXPECT_EQ(kSelectUse, 2u);
    EXPECT_EQ(Number(ProviderCapability::OpenPicker), 1);
    EXPECT_EQ(Number(ProviderCapability::FreeSpace), 2);
    EXPECT_EQ(Number(ProviderCapability::Folders), 1024);
}

TEST(ProviderNumbers, NameErrorsAndTheUnknownSize) {
    EXPECT_EQ(ProviderErrorTooLarge, 7u);
    EXPECT_EQ(ProviderErrorQuota, 9u);
    EXPECT_EQ(SizeUnknown, -2);
}

TEST(ProviderNumbers, NameTheTransforms) {
    EXPECT_EQ(Number(TransformId::ResizeImages), 2);
    EXPECT_EQ(Number(TransformId::ConvertPdf), 3);
    EXPECT_EQ(Number(TransformId::Watermark), 5);
    EXPECT_EQ(Number(TransformId::ConvertPhotos), 50);
    EXPECT_EQ(Number(TransformId::RemoveInfo), 51);
    EXPECT_EQ(Number(TransformId::CombinePdfs), 65);
    EXPECT_EQ(Number(TransformId::SignPdfs), 66);
    EXPECT_EQ(Number(TransformId::ConvertFromPdf), 70);
}

TEST(ProviderNumbers, NameTheManagersFileAndKey) {
    EXPECT_STREQ(kProviderManagerFileName, L"PVXManager64.dll");
    EXPECT_STREQ(kProviderManagerKey, L"Software\\Tavi Ren Computing\\Ombrix\\PVX");
}

TEST(ProviderNumbers, ExcludeSixProvidersFromStoring) {
    EXPECT_EQ(kNoProvider, 0u);
    EXPECT_EQ(kArchivesOnlyProvider, 21u);
    for (const std::uint32_t id : {30u, 31u, 32u, 33u, 34u, 45u}) {
        EXPECT_FALSE(IsOfferedForStoring(id)) << id;
    }
    for (const std::uint32_t id : {1u, 7u, 21u, 29u, 35u, 44u, 46u}) {
        EXPECT_TRUE(IsOfferedForStoring(id)) << id;
    }
}

TEST(ProviderNumbers, ChooseTheBitmapByTheSmallIconsWidth) {
    for (const int width : {0, 16, 19}) EXPECT_EQ(BitmapSizeIndex(width), 0u) << width;
    for (const int width : {20, 23}) EXPECT_EQ(BitmapSizeIndex(width), 1u) << width;
    for (const int width : {24, 31}) EXPECT_EQ(BitmapSizeIndex(width), 2u) << width;
    for (const int width : {32, 48, 256}) EXPECT_EQ(BitmapSizeIndex(width), 3u) << width;
}

TEST(ProviderNumbers, PlaceTheTextsOfARecord) {
    CloudItem item;
    std::memset(&item, 0, sizeof(item));
    auto* bytes = reinterpret_cast<std::uint8_t*>(&item);
    const auto put = [bytes](std::size_t offset, const std::wstring& text) {
        std::memcpy(bytes + offset, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    };
    bytes[1] = 1; // 256
    put(4, std::wstring(50, L'l'));
    put(106, std::wstring(999, L'k'));
    put(2108, std::wstring(2408, L's'));
    put(6926, std::wstring(1568, L'n'));
    EXPECT_EQ(item.profile.providerId, 256u);
    EXPECT_EQ(item.profile.accountLabel, std::wstring(50, L'l'));
    EXPECT_EQ(item.profile.accountKey, std::wstring(999, L'k'));
    EXPECT_EQ(item.profile.reserved, L'\0');
    EXPECT_EQ(item.link, std::wstring(2408, L's'));
    EXPECT_EQ(item.name, std::wstring(1568, L'n'));
}

} // namespace
