// Late-bound calls of an object in another program.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <span>
#include <string>
#include <variant>

#include "ObLib/Src/Win32/ComResources.h"

namespace providers {

using AutomationValue = std::variant<bool, int, std::wstring>;

struct AutomationArgument {
    const wchar_t* name;
    AutomationValue value;
};
using AutomationArguments = std::span<const AutomationArgument>;

// Thrown by every call that fails.
struct AutomationFailure {
    HRESULT result;
};

// One object. Belongs to a thread that initialised COM for several threads. A program that is busy
// for a moment is asked again for a while. Throws AutomationFailure and std::bad_alloc.
class AutomationObject {
public:
    explicit AutomationObject(ObLib::ComPtr<IDispatch> object) noexcept
        : object_(std::move(object)) {}

    void Put(const wchar_t* property, const AutomationValue& value) const;
    AutomationObject Get(const wchar_t* property) const;
    int GetNumber(const wchar_t* property) const; // a truth value is 0 or -1

    // All arguments have names, so that their order doesn't matter.
    void Call(const wchar_t* method, AutomationArguments arguments) const;
    AutomationObject CallForObject(const wchar_t* method, AutomationArguments arguments) const;

private:
    ObLib::ComPtr<IDispatch> object_;
};

} // namespace providers
