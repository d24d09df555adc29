// What one document needs of an office program, and how the program is left afterwards.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "services/providers/suite/Automation.h"
#include "services/providers/suite/OfficeProgram.h"

namespace providers {

// Values of an object that are changed for a while. Nothing is put back by the destructor.
class ChangedValues {
public:
    explicit ChangedValues(AutomationObject object) noexcept : object_(std::move(object)) {}

    // Each value is read before it is set. Throws what Automation.h lists.
    void Change(AutomationArguments values);
    // Puts the values back that were read, the last one first.
    void Restore() noexcept;

private:
    AutomationObject object_;
    std::vector<AutomationArgument> before_;
};

// Used on the run's thread only. A program that automation started is hidden until it is shown,
// so it is never hidden here: one that is visible has come to the user.
class OfficeSession {
public:
    OfficeSession(const OfficeProgram& program, AutomationObject application)
        : program_(program), application_(std::move(application)) {}
    OfficeSession(const OfficeSession&) = delete;
    OfficeSession& operator=(const OfficeSession&) = delete;

    // Paths without the prefix for long paths. Throw what Automation.h lists.
    void Open(const std::wstring& source);
    void Write(const std::wstring& target) const;

    // Closes the document without saving it and puts back what the program stores. Each step is
    // tried whether or not the one before failed.
    void Close() noexcept;
    // After Close: whether another document is open or the program is visible.
    bool IsInUse() const noexcept;
    // Call exactly one of these two after Close: the user goes on with the program, or it ends.
    void LeaveToUser() noexcept;
    // Refers to nothing of the program afterwards: a program ends only when nobody does.
    void Quit() noexcept;

private:
    bool IsDocumentOpen() const noexcept;
    int OtherDocuments() const;

    const OfficeProgram& program_;
    std::optional<AutomationObject> application_; // empty after Quit
    std::optional<ChangedValues> settings_;
    std::optional<ChangedValues> options_;
    std::optional<AutomationObject> document_;
};

} // namespace providers
