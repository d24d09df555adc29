#include "OBCore/exchange/ExchangeText.h"

#include <algorithm>

using obcontract::ExchangeBlock;
using obcontract::kExchangeBlockSize;
using obcontract::kTextAreaOffset;

namespace obcore {
namespace {

constexpr std::int32_t kBlockEnd = static_cast<std::int32_t>(kExchangeBlockSize);
constexpr std::int32_t kUnit = static_cast<std::int32_t>(sizeof(wchar_t));

std::size_t ThroughNul(std::wstring_view area, std::size_t from) noexcept {
    const std::size_t nul = area.find(L'\0', from);
    return nul == std::wstring_view::npos ? area.size() : nul + 1;
}

std::int32_t Behind(std::int32_t offset, std::size_t units) noexcept {
    return offset + static_cast<std::int32_t>(units) * kUnit;
}

} // namespace

std::size_t RoomFrom(std::int32_t offset) noexcept {
    if (offset < kTextAreaOffset || offset >= kBlockEnd || offset % kUnit != 0) return 0;
    return static_cast<std::size_t>(kBlockEnd - offset) / kUnit;
}

std::wstring_view AreaFrom(const ExchangeBlock& block, std::int32_t offset) noexcept {
    const std::size_t room = RoomFrom(offset);
    if (room == 0) return {};
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&block) + offset;
    return {reinterpret_cast<const wchar_t*>(bytes), room};
}

std::wstring_view TextAt(const ExchangeBlock& block, std::int32_t offset) noexcept {
    const std::wstring_view area = AreaFrom(block, offset);
    return area.substr(0, area.find(L'\0'));
}

std::wstring_view ListAt(const ExchangeBlock& block, std::int32_t offset) noexcept {
    const std::wstring_view area = AreaFrom(block, offset);
    std::size_t end = ThroughNul(area, 0);
    bool closed = false;
    while (!closed && end < area.size()) {
        closed = area[end] == L'\0';
        end = ThroughNul(area, end);
    }
    return area.substr(0, end);
}

std::wstring ReadText(const ExchangeBlock& block, std::int32_t offset) {
    return std::wstring(TextAt(block, offset));
}

std::int32_t EndOfText(const ExchangeBlock& block, std::int32_t offset) noexcept {
    if (RoomFrom(offset) == 0) return 0;
    return Behind(offset, ThroughNul(AreaFrom(block, offset), 0));
}

std::int32_t EndOfList(const ExchangeBlock& block, std::int32_t offset) noexcept {
    if (RoomFrom(offset) == 0) return 0;
    return Behind(offset, ListAt(block, offset).size());
}

std::int32_t PutText(ExchangeBlock& block, std::int32_t offset, std::wstring_view text) noexcept {
    const std::size_t room = RoomFrom(offset);
    if (room == 0) return offset;
    const std::size_t length = std::min(text.size(), room - 1);
    wchar_t* place = PlaceAt(block, offset);
    std::copy_n(text.data(), length, place);
    place[length] = L'\0';
    return Behind(offset, length + 1);
}

std::int32_t PutNuls(ExchangeBlock& block, std::int32_t offset, std::size_t count) noexcept {
    const std::size_t written = std::min(count, RoomFrom(offset));
    std::fill_n(PlaceAt(block, offset), written, L'\0');
    return Behind(offset, written);
}

wchar_t* PlaceAt(ExchangeBlock& block, std::int32_t offset) noexcept {
    if (RoomFrom(offset) == 0) return nullptr;
    return reinterpret_cast<wchar_t*>(reinterpret_cast<std::uint8_t*>(&block) + offset);
}

} // namespace obcore
