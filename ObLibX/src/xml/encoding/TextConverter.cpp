#include "ObLibX/src/xml/encoding/TextConverter.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>

#include "ObLibX/src/xml/encoding/SystemCalls.h"
#include "ObLibX/src/xml/names/NameTables.h"

namespace ObLibX {
namespace {

constexpr std::int32_t kMostUnits = std::numeric_limits<std::int32_t>::max();
constexpr std::uint32_t kReplacement = L'?';

// The pages for which the system refuses to report whether a character was replaced.
constexpr std::uint32_t kPagesWithoutUsedDefault[] = {
    65000, 65001, 50220, 50221, 50222, 50225, 50227, 50229, 52936, 54936,
    57002, 57003, 57004, 57005, 57006, 57007, 57008, 57009, 57010, 57011};

bool ForbidsUsedDefault(std::int32_t page) {
    const std::uint32_t real = page == 0 ? SystemCodePage() : static_cast<std::uint32_t>(page);
    return std::find(std::begin(kPagesWithoutUsedDefault), std::end(kPagesWithoutUsedDefault),
                     real) != std::end(kPagesWithoutUsedDefault);
}

// Reads units of a text at any address.
template <typename Unit>
class Source {
public:
    Source(const void* text, std::int32_t length)
        : bytes_(static_cast<const std::uint8_t*>(text)), left_(length) {}

    bool AtEnd() const { return left_ == 0; }
    std::int32_t Left() const { return left_; }
    const std::uint8_t* Bytes() const { return bytes_; }
    std::uint32_t Peek() const {
        Unit unit;
        std::memcpy(&unit, bytes_, sizeof unit);
        return unit;
    }
    void Skip(std::int32_t units) {
        bytes_ += static_cast<std::size_t>(units) * sizeof(Unit);
        left_ -= units;
    }

private:
    const std::uint8_t* bytes_;
    std::int32_t left_;
};

// Writes units while whole characters fit; without a destination it only counts.
template <typename Unit>
class Sink {
public:
    Sink(void* place, std::int32_t capacity)
        : place_(static_cast<std::uint8_t*>(place)), capacity_(place ? capacity : kMostUnits) {}

    // False, with nothing written, when they don't fit.
    bool Put(const Unit* units, std::int32_t count) {
        if (count > capacity_ - length_) {
            return false;
        }
        if (place_ != nullptr) {
            std::memcpy(place_ + static_cast<std::size_t>(length_) * sizeof(Unit), units,
                        static_cast<std::size_t>(count) * sizeof(Unit));
        }
        length_ += count;
        return true;
    }
    std::int32_t Length() const { return length_; }

private:
    std::uint8_t* place_;
    std::int32_t capacity_;
    std::int32_t length_ = 0;
};

bool PutUtf8(Sink<std::uint8_t>& sink, std::uint32_t value) {
    const auto continuation = [value](int shift) {
        return static_cast<std::uint8_t>(0x80 | ((value >> shift) & 0x3F));
    };
    if (value < 0x80) {
        const std::uint8_t byte = static_cast<std::uint8_t>(value);
        return sink.Put(&byte, 1);
    }
    if (value < 0x800) {
        const std::uint8_t bytes[] = {static_cast<std::uint8_t>(0xC0 | value >> 6),
                                      continuation(0)};
        return sink.Put(bytes, 2);
    }
    if (value < 0x10000) {
        const std::uint8_t bytes[] = {static_cast<std::uint8_t>(0xE0 | value >> 12),
                                      continuation(6), continuation(0)};
        return sink.Put(bytes, 3);
    }
    const std::uint8_t bytes[] = {static_cast<std::uint8_t>(0xF0 | (value >> 18 & 0x07)),
                                  continuation(12), continuation(6), continuation(0)};
    return sink.Put(bytes, 4);
}

bool PutUtf16(Sink<char16_t>& sink, std::uint32_t value) {
    if (value < 0x10000) {
        const char16_t unit = static_cast<char16_t>(value);
        return sink.Put(&unit, 1);
    }
    const std::uint32_t above = value - 0x10000;
    const char16_t pair[] = {static_cast<char16_t>(0xD800 | (above >> 10 & 0x3FF)),
                             static_cast<char16_t>(0xDC00 | (above & 0x3FF))};
    return sink.Put(pair, 2);
}

bool PutUtf32(Sink<std::uint32_t>& sink, std::uint32_t value) { return sink.Put(&value, 1); }

// Reads the next character. A high surrogate makes a pair with the next unit, whichever that is; at
// the end of the text and before a NUL it is replaced.
std::uint32_t TakeUtf16(Source<char16_t>& source) {
    const std::uint32_t unit = source.Peek();
    source.Skip(1);
    if (unit < 0xD800 || unit > 0xDBFF) {
        return unit;
    }
    if (source.AtEnd() || source.Peek() == 0) {
        return kReplacement;
    }
    const std::uint32_t next = source.Peek();
    source.Skip(1);
    return 0x10000 + ((unit & 0x3FF) << 10 | (next & 0x3FF));
}

// Four bytes contain 21 bits, so that no value reaches 0xFFFFFFFF, which would be replaced as well.
std::uint32_t TakeUtf8(Source<std::uint8_t>& source) {
    const Utf8Sequence sequence = ReadUtf8(source.Bytes(), source.Left());
    source.Skip(sequence.length);
    return sequence.kind == Utf8Sequence::Kind::Whole ? sequence.value : kReplacement;
}

std::uint32_t TakeUtf32(Source<std::uint32_t>& source) {
    const std::uint32_t value = source.Peek();
    source.Skip(1);
    return value;
}

// The arguments of one conversion; `place` is null when it only counts.
struct Task {
    const void* source;
    std::int32_t sourceLength;
    void* place;
    std::int32_t capacity;
    std::int32_t* usedDefault;
};

template <typename From, typename To>
std::int32_t Recode(const Task& task, std::uint32_t (*take)(Source<From>&),
                    bool (*put)(Sink<To>&, std::uint32_t)) {
    Source<From> source(task.source, task.sourceLength);
    Sink<To> sink(task.place, task.capacity);
    while (!source.AtEnd() && put(sink, take(source))) {
    }
    return sink.Length();
}

// Copies the units. This is the only pair of equal encodings for which the system isn't called.
std::int32_t CopyUtf16(const Task& task) {
    if (task.place == nullptr) {
        return task.sourceLength;
    }
    const std::int32_t units = std::min(task.sourceLength, task.capacity);
    std::memcpy(task.place, task.source, static_cast<std::size_t>(units) * sizeof(wchar_t));
    return units;
}

std::int32_t WideToPage(const Task& task, std::int32_t page, const wchar_t* wide,
                        std::int32_t length) {
    std::int32_t* const usedDefault = ForbidsUsedDefault(page) ? nullptr : task.usedDefault;
    const auto convert = [&](char* out, std::int32_t capacity) {
        return SystemFromWide(static_cast<std::uint32_t>(page), wide, length, out, capacity,
                              usedDefault);
    };
    char* const place = static_cast<char*>(task.place);
    const std::int32_t fitting = convert(place, place == nullptr ? 0 : task.capacity);
    if (place == nullptr || fitting > 0 || task.capacity == kMostUnits) {
        return fitting;
    }
    // The system gets one byte more than the capacity, but not in the caller's memory.
    const auto spare = std::make_unique_for_overwrite<char[]>(std::size_t{1} + task.capacity);
    const std::int32_t written = std::min(convert(spare.get(), task.capacity + 1), task.capacity);
    std::copy_n(spare.get(), written, place);
    return written;
}

std::int32_t PageToWide(const Task& task, std::int32_t page) {
    return SystemToWide(static_cast<std::uint32_t>(page), static_cast<const char*>(task.source),
                        task.sourceLength, static_cast<wchar_t*>(task.place),
                        task.place == nullptr ? 0 : task.capacity);
}

std::int32_t PageToPage(const Task& task, std::int32_t from, std::int32_t to) {
    const auto wide =
        std::make_unique_for_overwrite<wchar_t[]>(static_cast<std::size_t>(task.sourceLength));
    const Task first = {task.source, task.sourceLength, wide.get(), task.sourceLength, nullptr};
    const std::int32_t length = PageToWide(first, from);
    return length > 0 ? WideToPage(task, to, wide.get(), length) : 0;
}

std::int32_t FromUtf32(const Task& task, std::int32_t to) {
    switch (to) {
    case kCodePageUtf8:
        return Recode(task, TakeUtf32, PutUtf8);
    case kCodePageUtf16:
        return Recode(task, TakeUtf32, PutUtf16);
    default:
        return 0;
    }
}

std::int32_t FromUtf16(const Task& task, std::int32_t to) {
    switch (to) {
    case kCodePageUtf32:
        return Recode(task, TakeUtf16, PutUtf32);
    case kCodePageUtf16:
        return CopyUtf16(task);
    default:
        return WideToPage(task, to, static_cast<const wchar_t*>(task.source), task.sourceLength);
    }
}

std::int32_t FromPage(const Task& task, std::int32_t from, std::int32_t to) {
    switch (to) {
    case kCodePageUtf32:
        return from == kCodePageUtf8 ? Recode(task, TakeUtf8, PutUtf32) : 0;
    case kCodePageUtf16:
        return PageToWide(task, from);
    default:
        return PageToPage(task, from, to);
    }
}

std::int32_t ConvertPair(const Task& task, std::int32_t from, std::int32_t to) {
    switch (from) {
    case kCodePageUtf32:
        return FromUtf32(task, to);
    case kCodePageUtf16:
        return FromUtf16(task, to);
    default:
        return FromPage(task, from, to);
    }
}

} // namespace

std::int32_t TextConverter::Convert(void* destination, const std::wstring& encoding) {
    if (&encoding != &toEncoding) {
        toEncoding = encoding;
    }
    usedDefault = 0;
    const bool counts = destination == nullptr || destinationCapacity <= 0;
    const Task task = {source, sourceLength, counts ? nullptr : destination,
                       counts ? 0 : destinationCapacity, &usedDefault};
    destinationCapacity =
        source == nullptr || sourceLength <= 0
            ? 0
            : ConvertPair(task, ConversionPage(fromEncoding), ConversionPage(toEncoding));
    return destinationCapacity;
}

std::int32_t ConversionPage(const std::wstring& encoding) {
    return std::max(LookupCodePage(encoding), std::int32_t{0});
}

std::int32_t CodeUnitSize(std::int32_t page) {
    return page == kCodePageUtf32 ? 4 : page == kCodePageUtf16 ? 2 : 1;
}

} // namespace ObLibX
