// vswprintf for 16 bits, as the Windows build's C library answers it: always with the length that
// the whole text has, also without a buffer and where it is cut for want of room. %s is narrow, %ls
// wide. Each conversion but the texts is done by the narrow library.
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <type_traits>

namespace {

struct Output {
    wchar_t* out;
    std::size_t capacity;
    std::size_t used = 0;

    void Put(wchar_t unit) {
        if (used < capacity) out[used] = unit;
        ++used;
    }
};

// One conversion of the format, from % on.
struct Conversion {
    char text[32] = "%"; // for the narrow library
    std::size_t length = 1;
    bool left = false;
    int width = 0;
    int precision = -1;
    int longs = 0; // l, ll, z, j, t: how wide the argument is
    bool half = false;
    wchar_t kind = L'\0';

    void Add(wchar_t unit) {
        if (length + 1 < sizeof text) text[length++] = static_cast<char>(unit);
        text[length] = '\0';
    }
};

// va_list as a member, so that it can be handed on by reference.
struct Arguments {
    va_list list;
};

int ReadNumber(const wchar_t*& format, Arguments& arguments) {
    if (*format == L'*') {
        ++format;
        return va_arg(arguments.list, int);
    }
    int number = 0;
    for (; *format >= L'0' && *format <= L'9'; ++format) number = number * 10 + (*format - L'0');
    return number;
}

Conversion ReadConversion(const wchar_t*& format, Arguments& arguments) {
    Conversion conversion;
    for (; *format != L'\0' && std::strchr("-+ #0", static_cast<char>(*format)) != nullptr;
         ++format) {
        conversion.left |= *format == L'-';
        conversion.Add(*format);
    }
    conversion.width = ReadNumber(format, arguments);
    if (conversion.width < 0) {
        conversion.left = true;
        conversion.Add(L'-');
        conversion.width = -conversion.width;
    }
    if (*format == L'.') {
        ++format;
        conversion.precision = ReadNumber(format, arguments);
    }
    for (;; ++format) {
        if (*format == L'l' || *format == L'w')
            ++conversion.longs;
        else if (*format == L'z' || *format == L'j' || *format == L't')
            conversion.longs = 2;
        else if (*format == L'h')
            conversion.half = true;
        else
            break;
    }
    conversion.kind = *format;
    if (*format != L'\0') ++format;
    return conversion;
}

template <class Unit>
void PutText(Output& output, const Conversion& conversion, const Unit* text) {
    const auto limit =
        conversion.precision < 0 ? SIZE_MAX : static_cast<std::size_t>(conversion.precision);
    std::size_t length = 0;
    while (length < limit && text[length] != Unit()) ++length;
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::size_t blanks = width > length ? width - length : 0;
    if (!conversion.left)
        for (std::size_t count = 0; count < blanks; ++count) output.Put(L' ');
    for (std::size_t index = 0; index < length; ++index)
        output.Put(static_cast<wchar_t>(static_cast<std::make_unsigned_t<Unit>>(text[index])));
    if (conversion.left)
        for (std::size_t count = 0; count < blanks; ++count) output.Put(L' ');
}

template <class Value>
void PutNarrow(Output& output, Conversion conversion, const char* size, Value value) {
    char digits[512];
    conversion.Add(L'*');
    conversion.Add(L'.');
    conversion.Add(L'*');
    for (; *size != '\0'; ++size) conversion.Add(static_cast<wchar_t>(*size));
    conversion.Add(conversion.kind);
    std::snprintf(digits, sizeof digits, conversion.text, conversion.width, conversion.precision,
                  value);
    for (const char* digit = digits; *digit != '\0'; ++digit)
        output.Put(static_cast<unsigned char>(*digit));
}

// On Windows `long` has 32 bits, but an argument of type long has 64 here and is passed as such.
void PutNumber(Output& output, const Conversion& conversion, Arguments& arguments) {
    const bool isUnsigned = std::strchr("uxXo", static_cast<char>(conversion.kind)) != nullptr;
    if (conversion.longs > 0)
        PutNarrow(output, conversion, "ll", va_arg(arguments.list, long long));
    else if (isUnsigned)
        PutNarrow(output, conversion, "", va_arg(arguments.list, unsigned));
    else
        PutNarrow(output, conversion, "", va_arg(arguments.list, int));
}

// False at a conversion that this shim doesn't know.
bool PutConversion(Output& output, const Conversion& conversion, Arguments& arguments) {
    switch (conversion.kind) {
    case L's':
        if (conversion.longs > 0)
            PutText(output, conversion, va_arg(arguments.list, const wchar_t*));
        else
            PutText(output, conversion, va_arg(arguments.list, const char*));
        return true;
    case L'c': {
        const wchar_t one[2] = {static_cast<wchar_t>(va_arg(arguments.list, int)), L'\0'};
        PutText(output, conversion, one);
        return true;
    }
    case L'd':
    case L'i':
    case L'u':
    case L'x':
    case L'X':
    case L'o':
        PutNumber(output, conversion, arguments);
        return true;
    case L'f':
    case L'e':
    case L'g':
    case L'E':
    case L'G':
        PutNarrow(output, conversion, "", va_arg(arguments.list, double));
        return true;
    case L'p':
        PutNarrow(output, conversion, "", va_arg(arguments.list, void*));
        return true;
    case L'%':
        output.Put(L'%');
        return true;
    default:
        return false;
    }
}

} // namespace

extern "C" int vswprintf(wchar_t* out, std::size_t capacity, const wchar_t* format,
                         va_list list) noexcept {
    Output output{out, out != nullptr ? capacity : 0};
    Arguments arguments;
    va_copy(arguments.list, list);
    bool known = true;
    while (known && *format != L'\0') {
        const wchar_t unit = *format++;
        if (unit != L'%')
            output.Put(unit);
        else
            known = PutConversion(output, ReadConversion(format, arguments), arguments);
    }
    va_end(arguments.list);
    if (!known) return -1;
    if (output.capacity != 0) out[output.used < capacity ? output.used : capacity - 1] = L'\0';
    return static_cast<int>(output.used);
}

extern "C" int swprintf(wchar_t* out, std::size_t capacity, const wchar_t* format, ...) noexcept {
    va_list list;
    va_start(list, format);
    const int length = vswprintf(out, capacity, format, list);
    va_end(list);
    return length;
}
