#include "ObLib/Src/ObString.h"

#include <climits>
#include <cstring>
#include <cwchar>
#include <new>

#include "ObLib/Src/ObFatal.h"

namespace ObLib {
namespace {

constexpr wchar_t kModule[] = L"ObLib\\Src\\ObString.cpp";
constexpr std::int32_t kRefusedKind = 2;

static_assert(offsetof(StringCore, length) == 0 && offsetof(StringCore, secure) == 8 &&
              offsetof(StringCore, buffer) == 16 && offsetof(StringCore, text) == 56 &&
              offsetof(StringCore, inlineText) == 64);

} // namespace

ObString::ObString(const char* bytes, std::int32_t codePageKind) {
    ObAssert(codePageKind != kRefusedKind);
    if (bytes == nullptr) return;
    const std::size_t count = std::strlen(bytes);
    if (count > INT_MAX) throw std::bad_alloc();
    StringCore value(L"", 0);
    if (count != 0) {
        const auto length = static_cast<std::int32_t>(count);
        const std::int32_t units = SystemBytesToWide(codePageKind, bytes, length, nullptr, 0);
        if (units <= 0) FatalApiFailure(kModule, __LINE__);
        value.SetLength(static_cast<std::uint64_t>(units));
        if (SystemBytesToWide(codePageKind, bytes, length, value.text, units) != units)
            FatalApiFailure(kModule, __LINE__);
    }
    TakeValue(value);
}

void ObString::Assign(const ObString& other) {
    if (this == &other) return;
    if (other.core_ == nullptr) return Clear();
    StringCore& own = Own();
    // A shortcut with the result of the lines below, for texts without a secret and without
    // buffers.
    if ((own.secure | other.core_->secure) == 0 && own.buffer.data == nullptr &&
        other.core_->buffer.data == nullptr) {
        own.ShareText(*other.core_);
        return;
    }
    StringCore value(*other.core_);
    own.Swap(value);
}

void ObString::AssignUnits(const wchar_t* text, std::uint64_t units) {
    StringCore value(text, units);
    TakeValue(value);
}

void ObString::AssignText(const wchar_t* text) {
    if (text == nullptr) return Clear();
    if (core_ == nullptr)
        core_ = new StringCore(text, std::wcslen(text));
    else
        AssignUnits(text, std::wcslen(text));
}

void ObString::Swap(ObString& other) {
    if (this != &other) Own().Swap(other.Own());
}

void ObString::Clear() {
    if (core_ == nullptr) return;
    StringCore value;
    core_->Swap(value);
}

bool ObString::Equals(const wchar_t* text) const {
    if (text == nullptr || IsNull()) return text == nullptr && IsNull();
    return std::wcscmp(CStr(), text) == 0;
}

bool ObString::Compare(const ObString& other) const {
    if (IsNull() || other.IsNull()) return IsNull() && !other.IsNull();
    return std::wcscmp(CStr(), other.CStr()) < 0;
}

int ObString::CompareNoCase(const ObString& other) const {
    if (HasText() != other.HasText()) return HasText() ? 1 : -1;
    return _wcsicmp(CStr(), other.CStr());
}

void ObString::AppendUnits(const wchar_t* text, std::uint64_t units) {
    const std::uint64_t length = Length();
    StringCore value;
    value.SetLength(length + units);
    std::memcpy(value.text, CStr(), length * sizeof(wchar_t));
    std::memcpy(value.text + length, text, units * sizeof(wchar_t));
    TakeValue(value);
}

void ObString::Append(const wchar_t* text) {
    if (text != nullptr) AppendUnits(text, std::wcslen(text));
}

void ObString::AppendString(const ObString& other) {
    if (!other.IsNull()) AppendUnits(other.CStr(), other.Length());
}

bool ObString::LoadString(std::int32_t id) {
    ObAssert(id >= 0);
    std::size_t length = 0;
    const wchar_t* const text = SystemTableText(static_cast<std::uint32_t>(id), length);
    if (text == nullptr) {
        Clear();
        return false;
    }
    AssignUnits(text, length);
    return true;
}

void ObString::MakeSecure() { Own().secure = 1; }

} // namespace ObLib
