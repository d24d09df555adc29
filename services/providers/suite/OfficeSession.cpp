#include "services/providers/suite/OfficeSession.h"

#include <ranges>

#include "ObLib/Src/Win32/Guarded.h"

namespace providers {
namespace {

// The arguments with the path in front.
std::vector<AutomationArgument> With(const wchar_t* name, const std::wstring& path,
                                     AutomationArguments rest) {
    std::vector<AutomationArgument> all{{name, path}};
    all.insert(all.end(), rest.begin(), rest.end());
    return all;
}

// The step of a clean-up: what fails doesn't stop the next one.
template <class Step>
bool Try(Step step) noexcept {
    return ObLib::RanGuarded(step);
}

// A value that was read, in the form in which the property is set.
AutomationValue LikeOf(const AutomationValue& set, int read) {
    if (std::holds_alternative<bool>(set)) return read != 0;
    return read;
}

} // namespace

void ChangedValues::Change(AutomationArguments values) {
    for (const AutomationArgument& value : values) {
        before_.push_back({value.name, LikeOf(value.value, object_.GetNumber(value.name))});
        object_.Put(value.name, value.value);
    }
}

void ChangedValues::Restore() noexcept {
    for (const AutomationArgument& value : before_ | std::views::reverse) {
        Try([&] { object_.Put(value.name, value.value); });
    }
    before_.clear();
}

void OfficeSession::Open(const std::wstring& source) {
    options_.emplace(application_->Get(program_.optionsOf));
    options_->Change(program_.options);
    settings_.emplace(application_->Get(L"Application"));
    settings_->Change(program_.settings);
    const AutomationObject documents = application_->Get(program_.documents);
    document_ = documents.CallForObject(L"Open", With(L"FileName", source, program_.open));
}

void OfficeSession::Write(const std::wstring& target) const {
    document_->Call(program_.write, With(program_.writeFile, target, program_.writeRest));
}

// A document that can't be closed at once gets a second try.
void OfficeSession::Close() noexcept {
    for (int attempt = 0; document_ && attempt < 2; ++attempt) {
        if (Try([&] { document_->Call(L"Close", program_.close); })) document_.reset();
    }
    if (options_) options_->Restore();
}

// A document that is closed has no properties any more.
bool OfficeSession::IsDocumentOpen() const noexcept {
    return document_ && Try([&] { document_->Get(L"Application"); });
}

int OfficeSession::OtherDocuments() const {
    const int all = application_->Get(program_.documents).GetNumber(L"Count");
    return IsDocumentOpen() ? all - 1 : all;
}

bool OfficeSession::IsInUse() const noexcept {
    bool isInUse = false;
    Try([&] { isInUse = OtherDocuments() > 0; });
    if (!isInUse) Try([&] { isInUse = application_->GetNumber(L"Visible") != 0; });
    return isInUse;
}

void OfficeSession::LeaveToUser() noexcept {
    if (settings_) settings_->Restore();
    Try([&] { application_->Put(L"Visible", true); });
}

void OfficeSession::Quit() noexcept {
    document_.reset();
    options_.reset();
    settings_.reset();
    Try([&] { application_->Call(L"Quit", program_.quit); });
    application_.reset();
}

} // namespace providers
