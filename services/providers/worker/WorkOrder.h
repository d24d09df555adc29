// What a request asks of the work process, without its files.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <vector>

#include "contracts/TransformWork.h"

namespace providers {

// A kind of request and its settings, as the contract lays them out.
class WorkOrder {
public:
    // For a kind whose settings are one record.
    template <class Settings>
    WorkOrder(obcontract::WorkKind kind, const Settings& settings)
        : kind_(kind), settings_(sizeof settings) {
        static_assert(std::is_trivially_copyable_v<Settings>);
        static_assert(sizeof settings <= obcontract::kMostWorkSettings);
        std::memcpy(settings_.data(), &settings, sizeof settings);
    }

    // For a kind with a text after its record, in UTF-16 without a NUL.
    template <class Settings>
    WorkOrder(obcontract::WorkKind kind, const Settings& settings, std::wstring_view text)
        : WorkOrder(kind, settings) {
        settings_.resize(sizeof settings + text.size() * sizeof(wchar_t));
        std::memcpy(settings_.data() + sizeof settings, text.data(), text.size() * sizeof(wchar_t));
    }

    obcontract::WorkKind Kind() const noexcept { return kind_; }

    // The record as it is sent.
    std::vector<std::byte> Record(const obcontract::WorkFiles& files) const {
        const obcontract::WorkHeader header{
            obcontract::kWorkMagic, kind_,
            static_cast<std::uint32_t>(sizeof files + settings_.size()), 0};
        std::vector<std::byte> record(RecordSize());
        std::memcpy(record.data(), &header, sizeof header);
        std::memcpy(record.data() + sizeof header, &files, sizeof files);
        if (settings_.empty()) return record;
        std::memcpy(record.data() + sizeof header + sizeof files, settings_.data(),
                    settings_.size());
        return record;
    }
    std::size_t RecordSize() const noexcept {
        return sizeof(obcontract::WorkHeader) + sizeof(obcontract::WorkFiles) + settings_.size();
    }

private:
    obcontract::WorkKind kind_;
    std::vector<std::byte> settings_;
};

// The orders about personal data.
inline WorkOrder CleanOrder() { return {obcontract::WorkKind::Clean, obcontract::WorkClean{}}; }
inline WorkOrder CheckCleanOrder() {
    return {obcontract::WorkKind::CheckClean, obcontract::WorkClean{}};
}

} // namespace providers
