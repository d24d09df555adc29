#include "tests/unit/WebVellant/obwmv/RequestSupport.h"

#include <cstring>
#include <stdexcept>

#include "tests/fakes/Recording.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/TestFolder.h"

namespace obtest {

BlockImage& BlockImage::Put8(std::size_t offset, std::uint8_t value) {
    std::memcpy(bytes_.data() + offset, &value, sizeof(value));
    return *this;
}

BlockImage& BlockImage::Put16(std::size_t offset, std::uint16_t value) {
    std::memcpy(bytes_.data() + offset, &value, sizeof(value));
    return *this;
}

BlockImage& BlockImage::Put32(std::size_t offset, std::uint32_t value) {
    std::memcpy(bytes_.data() + offset, &value, sizeof(value));
    return *this;
}

BlockImage& BlockImage::PutUnits(std::size_t offset, const std::wstring& units) {
    std::memcpy(bytes_.data() + offset, units.data(), units.size() * sizeof(wchar_t));
    return *this;
}

std::string DumpedBlock(const wchar_t* name) {
    return ReadFileContent(BesideProgram(name)).value_or("not dumped");
}

long long LastHostId() {
    const auto starts = HostScript::RecordOf(L"start");
    if (starts.empty()) return -1;
    return std::stoll(starts.back().substr(starts.back().rfind(L'"') + 1));
}

WithoutHost::WithoutHost() {
    if (!MoveFileW(BesideProgram(L"obwmvapp.exe").c_str(), BesideProgram(L"away.exe").c_str()))
        throw std::runtime_error("the host couldn't be taken away");
}

WithoutHost::~WithoutHost() {
    MoveFileW(BesideProgram(L"away.exe").c_str(), BesideProgram(L"obwmvapp.exe").c_str());
}

} // namespace obtest
