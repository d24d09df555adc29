#include "OBCore/options/AttachmentNaming.h"

#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"

namespace {

using obcore::MakeNameToken;
using obcore::NameAppendKind;
using obcore::OBAttachJob;
using obcore::OBOptions;

const std::wstring kName = L"Ombrix Compressed Attachments";

void WINAPI AnswerLocalTime(LPSYSTEMTIME time) {
    *time = {.wYear = 2026,
             .wMonth = 3,
             .wDayOfWeek = 6,
             .wDay = 7,
             .wHour = 15,
             .wMinute = 4,
             .wSecond = 9,
             .wMilliseconds = 8};
}

struct FormatCall {
    LCID locale;
    DWORD flags;
    int capacity;
};
std::vector<FormatCall> dateCalls;
std::vector<FormatCall> timeCalls;
decltype(&GetDateFormatW) realDate;
decltype(&GetTimeFormatW) realTime;

int WINAPI RecordDate(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCWSTR picture,
                      LPWSTR text, int capacity) {
    dateCalls.push_back({locale, flags, capacity});
    return realDate(locale, flags, time, picture, text, capacity);
}

int WINAPI RecordTime(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCWSTR picture,
                      LPWSTR text, int capacity) {
    timeCalls.push_back({locale, flags, capacity});
    return realTime(locale, flags, time, picture, text, capacity);
}

class AttachmentName : public OptionsFixture {
protected:
    void SetUp() override {
        OptionsFixture::SetUp();
        ASSERT_TRUE(clock_.Ok() && date_.Ok() && time_.Ok());
        realDate = date_.Real();
        realTime = time_.Real();
        dateCalls.clear();
        timeCalls.clear();
    }

    // The name for these files, or the text "none".
    static std::wstring NameOf(const OBOptions& options, std::vector<std::wstring> files) {
        OBAttachJob job(options, nullptr);
        job.Files = std::move(files);
        std::wstring name;
        return obcore::CompressUtils::BuildAttachmentName(job, name) ? name : L"none";
    }

private:
    obtest::ImportPatch<decltype(GetLocalTime)> clock_{"kernel32.dll", "GetLocalTime",
                                                       &AnswerLocalTime};
    obtest::ImportPatch<decltype(GetDateFormatW)> date_{"kernel32.dll", "GetDateFormatW",
                                                        &RecordDate};
    obtest::ImportPatch<decltype(GetTimeFormatW)> time_{"kernel32.dll", "GetTimeFormatW",
                                                        &RecordTime};
};

TEST_F(AttachmentName, HasTokensOfFiveKinds) {
    EXPECT_EQ(L"", MakeNameToken(NameAppendKind::None));
    EXPECT_EQ(L"26-03-07", MakeNameToken(NameAppendKind::DateYy));
    EXPECT_EQ(L"2026-03-07", MakeNameToken(NameAppendKind::DateYyyy));
    EXPECT_EQ(L"15-04-09", MakeNameToken(NameAppendKind::Time));
    EXPECT_EQ(L"2026-03-07-15-04-09", MakeNameToken(NameAppendKind::DateTime));
    EXPECT_EQ(L"", MakeNameToken(static_cast<NameAppendKind>(5)));
    EXPECT_EQ(L"", MakeNameToken(static_cast<NameAppendKind>(0xFFFFFFFF)));
}

TEST_F(AttachmentName, FormatsForTheUsersLocaleIntoTwoHundredAndFiftySevenCharacters) {
    MakeNameToken(NameAppendKind::DateYy);
    MakeNameToken(NameAppendKind::DateYyyy);
    MakeNameToken(NameAppendKind::Time);
    MakeNameToken(NameAppendKind::DateTime);
    ASSERT_EQ(3u, dateCalls.size());
    ASSERT_EQ(2u, timeCalls.size());
    for (const FormatCall& call : dateCalls) {
        EXPECT_EQ(LCID{LOCALE_USER_DEFAULT}, call.locale);
        EXPECT_EQ(257, call.capacity);
    }
    for (const FormatCall& call : timeCalls) {
        EXPECT_EQ(LCID{LOCALE_USER_DEFAULT}, call.locale);
        EXPECT_EQ(DWORD{TIME_FORCE24HOURFORMAT}, call.flags);
        EXPECT_EQ(257, call.capacity);
    }
}

TEST_F(AttachmentName, IsNothingWithoutFiles) {
    OBAttachJob job(OBOptions{}, nullptr);
    std::wstring name = L"before";
    EXPECT_FALSE(obcore::CompressUtils::BuildAttachmentName(job, name));
    EXPECT_EQ(L"before", name);
}

TEST_F(AttachmentName, IsTheDefaultNameForTwoFiles) {
    EXPECT_EQ(kName + L".zip", NameOf({}, {L"C:\\a.txt", L"C:\\b.txt"}));
}

TEST_F(AttachmentName, RunsStraightIntoTheToken) {
    OBOptions options;
    options.NameAppend = NameAppendKind::DateYy;
    EXPECT_EQ(kName + L"26-03-07.zip", NameOf(options, {L"C:\\a.txt", L"C:\\b.txt"}));
    options.NameAppend = NameAppendKind::DateTime;
    options.CompressionMethod = 0xFFFFFFFF;
    EXPECT_EQ(kName + L"2026-03-07-15-04-09.zipx", NameOf(options, {L"C:\\a.txt", L"C:\\b.txt"}));
}

TEST_F(AttachmentName, TakesItsExtensionFromUserOrCompression) {
    struct Row {
        bool used;
        const wchar_t* extension;
        std::uint32_t method;
        const wchar_t* end;
    };
    const Row rows[] = {
        {false, L"piz", 8, L".zip"}, {false, L"piz", 0xFFFFFFFF, L".zipx"},
        {true, L"piz", 8, L".piz"},  {true, L"piz", 0xFFFFFFFF, L".piz"},
        {true, L"", 8, L"."},        {false, L"", 0xFFFFFFFE, L".zip"},
        {false, L"", 0, L".zip"},
    };
    for (const Row& row : rows) {
        OBOptions options;
        options.UseAltExt = row.used;
        options.AltExt = row.extension;
        options.CompressionMethod = row.method;
        EXPECT_EQ(kName + row.end, NameOf(options, {L"C:\\a.txt", L"C:\\b.txt"}));
        EXPECT_EQ(std::wstring(L"a") + row.end, NameOf(options, {L"C:\\a.txt"}));
    }
}

TEST_F(AttachmentName, IsASingleFilesOwnName) {
    EXPECT_EQ(L"report.zip", NameOf({}, {L"C:\\some.folder\\report.docx"}));
    EXPECT_EQ(L"report.zip", NameOf({}, {L"C:\\some.folder\\report"}));
    EXPECT_EQ(L"a.b.zip", NameOf({}, {L"\\\\server\\share\\a.b.c"}));
    EXPECT_EQ(L"bare.zip", NameOf({}, {L"bare.txt"}));
    EXPECT_EQ(L"old.zip", NameOf({}, {L"C:\\old.ZIP"}));
}

TEST_F(AttachmentName, LeavesTheTokenOutForASingleFilesOwnName) {
    OBOptions options;
    options.NameAppend = NameAppendKind::DateYyyy;
    EXPECT_EQ(L"report.zip", NameOf(options, {L"C:\\report.docx"}));
}

TEST_F(AttachmentName, IsTheDefaultNameForASingleFileWhenTheUserWantsThat) {
    OBOptions options;
    options.SingleAttachFileName = false;
    options.NameAppend = NameAppendKind::DateYyyy;
    EXPECT_EQ(kName + L"2026-03-07.zip", NameOf(options, {L"C:\\report.docx"}));
}

TEST_F(AttachmentName, IsTheDefaultNameForASingleFileThatIsNeitherZippedNorEncrypted) {
    OBOptions options;
    options.SendItem = false;
    EXPECT_EQ(kName + L".zip", NameOf(options, {L"C:\\report.docx"}));
    options.AutoEncrypt = true;
    EXPECT_EQ(L"report.zip", NameOf(options, {L"C:\\report.docx"}));
}

TEST_F(AttachmentName, IsGivenAlsoWhereNoArchiveIsMade) {
    OBOptions options;
    options.SendItem = false;
    EXPECT_EQ(kName + L".zip", NameOf(options, {L"C:\\a.txt", L"C:\\b.txt"}));
}

TEST_F(AttachmentName, IsGuardedByAFlagThatNobodyClears) {
    OBOptions options;
    options.SendItem = false;
    OBAttachJob job(options, nullptr);
    job.NameWithoutArchive = false;
    job.Files = {L"C:\\a.txt", L"C:\\b.txt"};
    std::wstring name;
    EXPECT_FALSE(obcore::CompressUtils::BuildAttachmentName(job, name));
    job.Files.pop_back();
    EXPECT_TRUE(obcore::CompressUtils::BuildAttachmentName(job, name));
    job.Files.push_back(L"C:\\b.txt");
    job.AutoEncrypt = true;
    EXPECT_TRUE(obcore::CompressUtils::BuildAttachmentName(job, name));
}

std::wstring PathOfLength(std::size_t length) {
    const std::wstring end = L"\\n.txt";
    return L"C:\\" + std::wstring(length - 3 - end.size(), L'f') + end;
}

TEST_F(AttachmentName, TakesAPathOfThreeHundredCharacters) {
    EXPECT_EQ(L"n.zip", NameOf({}, {PathOfLength(300)}));
}

TEST_F(AttachmentName, EndsTheProcessAtAPathOfOneCharacterMore) {
    const auto isFailFast = [](int code) { return static_cast<DWORD>(code) == 0xC0000409; };
    EXPECT_EXIT(NameOf({}, {PathOfLength(301)}), isFailFast, "");
}

TEST_F(AttachmentName, DoesntMeasurePathsThatGiveNoName) {
    EXPECT_EQ(kName + L".zip", NameOf({}, {PathOfLength(301), PathOfLength(400)}));
    OBOptions options;
    options.SingleAttachFileName = false;
    EXPECT_EQ(kName + L".zip", NameOf(options, {PathOfLength(301)}));
}

TEST_F(AttachmentName, KeepsASingleFilesNameThatLeavesNoRoomForTheExtension) {
    const std::wstring fitting(255, L'n');
    EXPECT_EQ(fitting + L".zip", NameOf({}, {L"C:\\" + fitting + L".t"}));
    const std::wstring longer(256, L'n');
    EXPECT_EQ(longer + L".t", NameOf({}, {L"C:\\" + longer + L".t"}));
}

TEST_F(AttachmentName, HasRoomForALongExtensionAfterALongPath) {
    OBOptions options;
    options.UseAltExt = true;
    options.AltExt = std::wstring(100, L'e');
    EXPECT_EQ(L"n." + options.AltExt, NameOf(options, {PathOfLength(300)}));
}

} // namespace
