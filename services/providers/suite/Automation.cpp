#include "services/providers/suite/Automation.h"

#include <oleauto.h>

#include <vector>

namespace providers {
namespace {

constexpr LCID kEnglish = 0x0409; // some programs take numbers and dates in another one's form

class Variant {
public:
    Variant() noexcept { VariantInit(&value_); }
    explicit Variant(const AutomationValue& value) : Variant() {
        if (const auto* truth = std::get_if<bool>(&value)) {
            value_.vt = VT_BOOL;
            value_.boolVal = *truth ? VARIANT_TRUE : VARIANT_FALSE;
        } else if (const auto* number = std::get_if<int>(&value)) {
            value_.vt = VT_I4;
            value_.lVal = *number;
        } else {
            SetText(std::get<std::wstring>(value));
        }
    }
    Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
    Variant& operator=(Variant&&) = delete;
    ~Variant() { VariantClear(&value_); }

    VARIANT& Get() noexcept { return value_; }

private:
    void SetText(const std::wstring& text) {
        value_.bstrVal = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.size()));
        if (!value_.bstrVal) throw std::bad_alloc();
        value_.vt = VT_BSTR;
    }
    VARIANT value_;
};

void Check(HRESULT result) {
    if (FAILED(result)) throw AutomationFailure{result};
}

bool IsBusy(HRESULT result) {
    return result == RPC_E_CALL_REJECTED || result == RPC_E_SERVERCALL_RETRYLATER;
}

// Makes the call until the program isn't busy, for a while; any of its calls may be rejected.
template <class Call>
void Ask(Call call) {
    constexpr int kAttempts = 300;
    constexpr DWORD kPause = 100; // milliseconds
    for (int attempt = 1;; ++attempt) {
        const HRESULT done = call();
        if (!IsBusy(done) || attempt == kAttempts) return Check(done);
        Sleep(kPause);
    }
}

// The ids of a member and of its arguments.
std::vector<DISPID> IdsOf(IDispatch* object, const wchar_t* member, AutomationArguments arguments) {
    std::vector<LPOLESTR> names{const_cast<LPOLESTR>(member)};
    for (const AutomationArgument& argument : arguments) {
        names.push_back(const_cast<LPOLESTR>(argument.name));
    }
    std::vector<DISPID> ids(names.size());
    Ask([&] {
        return object->GetIDsOfNames(IID_NULL, names.data(), static_cast<UINT>(names.size()),
                                     kEnglish, ids.data());
    });
    return ids;
}

void Invoke(IDispatch* object, DISPID member, WORD kind, DISPPARAMS& parameters, Variant& result) {
    VARIANT* const place = kind == DISPATCH_PROPERTYPUT ? nullptr : &result.Get();
    Ask([&] {
        return object->Invoke(member, IID_NULL, kEnglish, kind, &parameters, place, nullptr,
                              nullptr);
    });
}

Variant InvokeNamed(IDispatch* object, const wchar_t* member, WORD kind,
                    AutomationArguments arguments) {
    std::vector<DISPID> ids = IdsOf(object, member, arguments);
    std::vector<Variant> values;
    std::vector<VARIANT> passed;
    for (const AutomationArgument& argument : arguments) {
        values.emplace_back(argument.value);
        passed.push_back(values.back().Get());
    }
    const auto count = static_cast<UINT>(passed.size());
    DISPPARAMS parameters{passed.data(), ids.data() + 1, count, count};
    Variant result;
    Invoke(object, ids[0], kind, parameters, result);
    return result;
}

AutomationObject ObjectOf(Variant result) {
    if (result.Get().vt != VT_DISPATCH || !result.Get().pdispVal) throw AutomationFailure{E_FAIL};
    IDispatch* const object = result.Get().pdispVal;
    VariantInit(&result.Get());
    return AutomationObject(ObLib::ComPtr<IDispatch>(object));
}

} // namespace

void AutomationObject::Put(const wchar_t* property, const AutomationValue& value) const {
    const std::vector<DISPID> ids = IdsOf(object_.Get(), property, {});
    Variant passed(value);
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{&passed.Get(), &put, 1, 1};
    Variant result;
    Invoke(object_.Get(), ids[0], DISPATCH_PROPERTYPUT, parameters, result);
}

AutomationObject AutomationObject::Get(const wchar_t* property) const {
    return ObjectOf(InvokeNamed(object_.Get(), property, DISPATCH_PROPERTYGET, {}));
}

int AutomationObject::GetNumber(const wchar_t* property) const {
    Variant result = InvokeNamed(object_.Get(), property, DISPATCH_PROPERTYGET, {});
    Variant number;
    Check(VariantChangeType(&number.Get(), &result.Get(), 0, VT_I4));
    return number.Get().lVal;
}

void AutomationObject::Call(const wchar_t* method, AutomationArguments arguments) const {
    InvokeNamed(object_.Get(), method, DISPATCH_METHOD, arguments);
}

AutomationObject AutomationObject::CallForObject(const wchar_t* method,
                                                 AutomationArguments arguments) const {
    return ObjectOf(InvokeNamed(object_.Get(), method, DISPATCH_METHOD, arguments));
}

} // namespace providers
