// Runs a last step when a scope is left, also when an exception passes.
#pragma once

#include <utility>

namespace ObLib {

// The action must not throw. It is bound to the scope in which it is declared.
template <class Action>
class [[nodiscard]] ScopeExit {
public:
    explicit ScopeExit(Action action) noexcept : action_(std::move(action)) {}
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;
    ~ScopeExit() { action_(); }

private:
    Action action_;
};

} // namespace ObLib
