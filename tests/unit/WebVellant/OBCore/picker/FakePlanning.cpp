#include "tests/unit/WebVellant/OBCore/picker/FakePlanning.h"

#include "tests/fakes/Recording.h"

namespace obtest {

decltype(FakePlanning::process) FakePlanning::process;
int FakePlanning::fillAnswer = 1;

void FakePlanning::Reset() {
    process = nullptr;
    fillAnswer = 1;
}

} // namespace obtest

namespace obcore {

int OBOpenFileNameDlg::ProcessPickedFiles(const std::vector<std::wstring>& picked) {
    std::wstring arguments;
    for (const std::wstring& path : picked) {
        arguments += (arguments.empty() ? L"" : L", ") + obtest::Quoted(path.c_str());
    }
    obtest::RecordCall(L"ProcessPickedFiles(" + arguments + L")");
    if (obtest::FakePlanning::process) return obtest::FakePlanning::process(*this, picked);
    AttachRecord->Files = picked;
    return 1;
}

int CompressUtils::FillOpenFileNameBuffer(const OBAttachJob&, OPENFILENAMEW& request,
                                          const wchar_t* end) {
    obtest::RecordCall(L"FillOpenFileNameBuffer(" + std::to_wstring(end - request.lpstrFile) +
                       L")");
    return obtest::FakePlanning::fillAnswer;
}

} // namespace obcore
