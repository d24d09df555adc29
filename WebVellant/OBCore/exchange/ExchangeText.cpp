#include "OBCore/exchange/ExchangeText.h"

#include <algorithm>

#include "ObLib/Src/Win32/StringList.h"

using obcontract::ExchangeBlock;
using obcontract::kExchangeBlockSize;
using obcontract::kTextAreaOffset;

namespace obcore {
namespace {

constexpr std::int32_t kBlockEnd = static_cast<std::int32_t>(kExchangeBlockSize);
constexpr std::int32_t kUnit = static_cast<std::int32_t>(sizeof(wchar_t));

// Units of the first text in `area`, its NUL included if it is there.
std::size_t UnitsOfFirst(std::wstring_view area) noexcept {
    const std::size_t units = area.size();
    ObLib::RemoveFirstOfList(area);
    return units - area.size();
}

std::int32_t OffsetPast(std::int32_t offset, std::size_t units) noexcept {
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
    return ObLib::FirstOfList(AreaFrom(block, offset));
}

std::wstring_view ListAt(const ExchangeBlock& block, std::int32_t offset) noexcept {
    const std::wstring_view area = AreaFrom(block, offset);
    // The first text counts also where it is empty; the list ends at an empty one after it.
    const std::size_t first = UnitsOfFirst(area);
    const std::size_t others =
        ObLib::WalkList(area.substr(first), [](std::wstring_view) noexcept {});
    return area.substr(0, first + others);
}

std::wstring ReadText(const ExchangeBlock& block, std::int32_t offset) {
    return std::wstring(TextAt(block, offset));
}

std::int32_t EndOfText(const ExchangeBlock& block, std::int32_t offset) noexcept {
    if (RoomFrom(offset) == 0) return 0;
    return OffsetPast(offset, UnitsOfFirst(AreaFrom(block, offset)));
}

std::int32_t EndOfList(const ExchangeBlock& block, std::int32_t offset) noexcept {
    if (RoomFrom(offset) == 0) return 0;
    return OffsetPast(offset, ListAt(block, offset).size());
}

std::int32_t PutText(ExchangeBlock& block, std::int32_t offset, std::wstring_view text) noexcept {
    const std::size_t room = RoomFrom(offset);
    if (room == 0) return offset;
    const std::size_t length = std::min(text.size(), room - 1);
    wchar_t* place = PlaceAt(block, offset);
    std::copy_n(text.data(), length, place);
    place[length] = L'\0';
    return OffsetPast(offset, length + 1);
}

std::int32_t PutNuls(ExchangeBlock& block, std::int32_t offset, std::size_t count) noexcept {
    const std::size_t written = std::min(count, RoomFrom(offset));
    std::fill_n(PlaceAt(block, offset), written, L'\0');
    return OffsetPast(offset, written);
}

wchar_t* PlaceAt(ExchangeBlock& block, std::int32_t offset) noexcept {
    if (RoomFrom(offset) == 0) return nullptr;
    return reinterpret_cast<wchar_t*>(reinterpret_cast<std::uint8_t*>(&block) + offset);
}

} // namespace obcore
