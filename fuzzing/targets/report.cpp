// A report stays XML whatever is reported, contains what it was given, and stops at its limit.
#include <string>

#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "ObLibX/src/xml/scan/DocumentReport.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"
#include "fuzzing/support/Soundness.h"

using namespace ObLibX;

namespace {

constexpr const wchar_t* kElements[] = {L"read", L"write", L"file_error", L"lone_end_tag"};
constexpr std::size_t kLongestValue = 40;
constexpr std::uint32_t kValueFlags = kReportMsg | kReportType | kReportEncoding;
constexpr std::uint32_t kNumberFlags = kReportN | kReportCount | kReportLength;

struct Entry {
    std::wstring element;
    std::wstring value;
    bool hasValue;
    std::uint32_t flags;
    std::int32_t number;
    std::int32_t number2;
};

Entry NextEntry(FuzzInput& input) {
    Entry entry;
    entry.element = input.Pick(kElements);
    entry.flags = input.Byte() & 0x7F;
    const std::uint32_t numbers = input.Byte();
    entry.number = numbers % 4 == 0 ? -1 : static_cast<std::int32_t>(numbers * numbers) - 40000;
    entry.number2 = numbers % 3 == 0 ? -1 : static_cast<std::int32_t>(numbers << 23);
    entry.hasValue = input.Flag();
    entry.value = input.Name(kLongestValue);
    return entry;
}

std::wstring Decimal(std::int32_t number) {
    const std::string digits = std::to_string(number);
    return std::wstring(digits.begin(), digits.end());
}

// Moves to the last element of that name and returns the number of all elements.
int FindLast(XmlOffsetDocument& report, const std::wstring& element, std::int32_t& last) {
    int count = 0;
    last = 0;
    while (report.FindElement()) {
        ++count;
        if (report.GetTagName() == element) last = report.CurrentPosition();
    }
    return count;
}

class ReportCheck {
public:
    ReportCheck(const std::wstring& text, const Entry& entry) : entry_(entry) {
        report_.SetText(std::wstring_view(text));
        count_ = FindLast(report_, entry.element, last_);
    }

    int Count() const { return count_; }
    bool HasElement() const { return last_ != 0; }
    void RequireAttributes() {
        if (entry_.hasValue) {
            RequireAttribute(kReportMsg, kValueFlags, L"msg", entry_.value);
            RequireAttribute(kReportType, kValueFlags, L"type", entry_.value);
            RequireAttribute(kReportEncoding, kValueFlags, L"encoding", entry_.value);
            RequireAttribute(0, kValueFlags, L"tagname", entry_.value);
        }
        if (entry_.number != -1) {
            RequireAttribute(kReportN, kNumberFlags, L"n", Decimal(entry_.number));
            RequireAttribute(kReportCount, kNumberFlags, L"count", Decimal(entry_.number));
            RequireAttribute(kReportLength, kNumberFlags, L"length", Decimal(entry_.number));
            RequireAttribute(0, kNumberFlags, L"offset", Decimal(entry_.number));
        }
        if (entry_.number2 != -1) {
            RequireAttribute(0, 0, L"offset2", Decimal(entry_.number2));
        }
    }

private:
    // Where the flag asks for it; without one where none of its kind is set.
    void RequireAttribute(std::uint32_t flag, std::uint32_t kind, const wchar_t* name,
                          const std::wstring& value) {
        const bool asked = flag == 0 ? (entry_.flags & kind) == 0 : (entry_.flags & flag) != 0;
        if (!asked) return;
        Require(report_.GetAttribute(last_, name) == value, "a report contains what it was given");
    }

    const Entry& entry_;
    XmlOffsetDocument report_;
    int count_;
    std::int32_t last_;
};

void Add(std::wstring& report, const Entry& entry) {
    const std::wstring before = report;
    const ReportCheck old(before, entry);
    Report(report, entry.element.c_str(), entry.hasValue ? entry.value.c_str() : nullptr,
           entry.flags, entry.number, entry.number2);
    const bool updates = (entry.flags & kReportUpdate) != 0;
    if (before.size() >= kReportLimit || (updates && !old.HasElement())) {
        Require(report == before, "a full report, and a missing element, stay as they are");
        return;
    }
    ReportCheck now(report, entry);
    Require(now.Count() == old.Count() + (updates ? 0 : 1), "each report is one element");
    now.RequireAttributes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    std::wstring report;
    while (!input.IsUsedUp()) {
        Add(report, NextEntry(input));
        RequireSoundReport(report);
    }
    return 0;
}
