// A run that has its result and a cloud account for it, with the fake provider manager.
#pragma once

#include "OBCore/modules/ProviderLibrary.h"
#include "tests/unit/WebVellant/OBCore/cloud/FakeChooser.h"
#include "tests/unit/WebVellant/OBCore/compression/RunFixture.h"

namespace obtest {

// The local time that the product reads: each call is one second later, from 2026-03-04 05:06:07.
inline WORD localSecond = 7;

inline void WINAPI SteppedLocalTime(LPSYSTEMTIME time) {
    *time = {2026, 3, 3, 4, 5, 6, localSecond++, 8};
}

class CloudFixture : public RunFixture {
protected:
    // RunFixture replaces this import, which the room under test doesn't have.
    CloudFixture() { GetTickCount(); }

    static constexpr wchar_t kFirstStamp[] = L"20260304050607";
    static constexpr wchar_t kSecondStamp[] = L"20260304050608";
    static constexpr wchar_t kThirdStamp[] = L"20260304050609";

    void SetUp() override {
        RunFixture::SetUp();
        ASSERT_TRUE(localTime_.Ok());
        localSecond = 7;
        chooserAnswers.clear();
        Answer(L"Providers", L"7,8,21");
        Answer(L"provider7.IsAccountLoggedIn", L"1");
        obcore::ProviderManager().Init(job_.OwnedProviderManager, 0, L"");
        FakeModules::ForgetCalls();
    }

    static void Answer(const wchar_t* key, const wchar_t* answer) {
        FakeModules::Answer(key, answer);
    }
    obcontract::CloudProvider* Provider(std::uint32_t id) const {
        return obcore::ProviderManager().GetProviderInstance(job_.OwnedProviderManager, id,
                                                             obcontract::ProviderKind::Storage);
    }

    // The result is a zip of this run's own, in a folder of its own.
    void MakeOwnResult(const std::wstring& name = L"files.zip") {
        const std::wstring folder = temp_.Folder(L"run");
        job_.ResultPath = temp_.File(L"run\\" + name, "zip");
        SetResult(name, folder + L"\\");
        job_.CleanupFolder = job_.ResultFolder;
        job_.CleanupFile = job_.ResultPath;
    }
    // The result is an archive that the user has picked, beside another file of the user's.
    void MakePickedResult(const std::wstring& name = L"theirs.zip") {
        const std::wstring folder = sources_.Folder(L"home");
        sources_.File(L"home\\canary.txt", "canary");
        job_.ResultPath = sources_.File(L"home\\" + name, "their archive");
        SetResult(name, folder + L"\\");
    }
    Lines UsersFiles() const { return ListTree(sources_.Path()); }

    // What the calls of a test are compared with.
    static Lines CallsOf(const std::vector<std::wstring>& names) {
        return FakeModules::CallsOf(names);
    }
    std::wstring ChooserShown() const { return L"ShowSelectDefaultCloudDialog(" + Owner() + L")"; }
    std::wstring FileAdded(const std::wstring& folder = L"") const {
        return L"AddFile(list, " + Quote(job_.ResultPath) + L", " + Quote(job_.ResultName) +
               L", 0, 0, " + Quote(folder) + L")";
    }
    std::wstring UploadRun(const std::wstring& provider = L"provider7") const {
        return L"RunUpload(" + provider + L", list, " + Owner() + L", " +
               Quote(obcore::LoadText(obcore::TextId{136})) + L", " +
               Quote(obcore::LoadText(obcore::TextId{137})) + L", 1, 0, 1, 1, 1, null)";
    }
    // One plain box with the product's caption, owned by the run's owner.
    void ExpectPlainBox(const SeenBox& box, const std::wstring& text) const {
        EXPECT_EQ(box.caption, L"Ombrix Vellant");
        EXPECT_EQ(box.text, text);
        EXPECT_FALSE(box.hasIcon);
        EXPECT_EQ(box.owner, owner_.Get());
    }
    // The assertion box of the cloud room.
    static void ExpectAssertion(const SeenBox& box, const std::wstring& expression,
                                const std::wstring& line = L"") {
        EXPECT_EQ(box.caption, L"Assert Error");
        EXPECT_NE(
            box.text.find(L"\nExpr: " + expression + L"\nFile: OBCore\\PVXUtils\nLine: " + line),
            std::wstring::npos)
            << box.text.size();
        EXPECT_TRUE(box.hasIcon);
    }

private:
    void SetResult(const std::wstring& name, const std::wstring& folder) {
        job_.ResultIsArchive = true;
        job_.ResultName = name;
        job_.ResultFolder = folder;
    }

    ImportPatch<decltype(&GetLocalTime)> localTime_{"kernel32.dll", "GetLocalTime",
                                                    &SteppedLocalTime};
};

} // namespace obtest
