// What a request asks of the work process, without its files.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <vector>

#include "ObLib/Src/Win32/Secret.h"
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

    // The same request with the password of the PDF that it is about: UTF-8, not empty, at most
    // kMostPasswordBytes. Each copy wipes its own.
    WorkOrder With(ObLib::Secret password) const {
        WorkOrder order = *this;
        order.password_ = std::move(password);
        return order;
    }
    // The same request with a file for the handle at the end of its settings. It stays the caller's
    // and outlives the request.
    WorkOrder WithPicture(HANDLE picture) const {
        WorkOrder order = *this;
        order.picture_ = picture;
        return order;
    }
    HANDLE Picture() const noexcept { return picture_; } // null without

    bool HasPassword() const noexcept { return !password_.Empty(); }

    // The records as they are sent; `picture` is the work process's handle of that file. With a
    // password the caller wipes them.
    std::vector<std::byte> Record(const obcontract::WorkFiles& files,
                                  std::uint64_t picture = 0) const {
        std::vector<std::byte> record;
        record.reserve(RecordSize()); // so that no memory with a password is left
        if (HasPassword()) {
            Append(record, Header(obcontract::WorkKind::Password, password_.Bytes().size()));
            Append(record, password_.Bytes().data(), password_.Bytes().size());
        }
        Append(record, Header(kind_, sizeof files + settings_.size()));
        Append(record, files);
        Append(record, settings_.data(), settings_.size());
        if (picture_) {
            std::memcpy(record.data() + record.size() - sizeof picture, &picture, sizeof picture);
        }
        return record;
    }
    std::size_t RecordSize() const noexcept {
        constexpr std::size_t kHeader = sizeof(obcontract::WorkHeader);
        const std::size_t password = HasPassword() ? kHeader + password_.Bytes().size() : 0;
        return password + kHeader + sizeof(obcontract::WorkFiles) + settings_.size();
    }

private:
    static obcontract::WorkHeader Header(obcontract::WorkKind kind, std::size_t size) {
        return {obcontract::kWorkMagic, kind, static_cast<std::uint32_t>(size), 0};
    }
    static void Append(std::vector<std::byte>& record, const void* bytes, std::size_t size) {
        const auto* const first = static_cast<const std::byte*>(bytes);
        record.insert(record.end(), first, first + size);
    }
    template <class Part>
    static void Append(std::vector<std::byte>& record, const Part& part) {
        Append(record, &part, sizeof part);
    }

    obcontract::WorkKind kind_;
    std::vector<std::byte> settings_;
    ObLib::Secret password_;
    HANDLE picture_ = nullptr;
};

// The orders about personal data.
inline WorkOrder CleanOrder() { return {obcontract::WorkKind::Clean, obcontract::WorkClean{}}; }
inline WorkOrder CheckCleanOrder() {
    return {obcontract::WorkKind::CheckClean, obcontract::WorkClean{}};
}

} // namespace providers
