// With what room the texts of the cloud room are loaded.
#include <map>

#include "OBCore/cloud/UploadAndShare.h"
#include "tests/unit/WebVellant/OBCore/cloud/PickFixture.h"

namespace {

std::map<UINT, int> roomOfText; // wide characters
decltype(&LoadStringW) realLoad = nullptr;
int WINAPI NotedLoad(HINSTANCE module, UINT id, LPWSTR buffer, int room) {
    roomOfText[id] = room;
    return realLoad(module, id, buffer, room);
}

class CloudTextRoom : public obtest::PickFixture {
protected:
    void SetUp() override {
        PickFixture::SetUp();
        ASSERT_TRUE(load_.Ok());
        realLoad = load_.Real();
        roomOfText.clear();
    }

    const obtest::ImportPatch<decltype(&LoadStringW)> load_{"user32.dll", "LoadStringW",
                                                            &NotedLoad};
};

TEST_F(CloudTextRoom, Is4096CharactersForTheMailAnd512ForTheProgressWindow) {
    MakeOwnResult();
    job_.ExpireFilesAvailable = job_.ExpireFiles = true;
    obcontract::ProviderProfile profile = obtest::Profile(7, L"Ann", L"ann");
    std::wstring linkText;
    EXPECT_TRUE(obcore::UploadAndShare(job_, Provider(7), linkText, profile));
    const std::map<UINT, int> expected = {{130, 4096}, {131, 4096}, {132, 4096},
                                          {133, 4096}, {134, 4096}, {136, 512},
                                          {137, 512},  {145, 4096}, {160, 4096}};
    EXPECT_EQ(roomOfText, expected);
}

TEST_F(CloudTextRoom, Is512CharactersForTheSentenceOfAPick) {
    Answer(L"GetSharedListFromOpenPicker", L"a|x");
    EXPECT_TRUE(Pick());
    EXPECT_EQ(roomOfText, (std::map<UINT, int>{{150, 512}}));
}

} // namespace
