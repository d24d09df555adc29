#include "ObLibX/src/xml/encoding/SystemFile.h"

#include <string>

#include "ObLibX/src/xml/encoding/SystemText.h"

namespace ObLibX {

std::FILE* OpenFileStream(const wchar_t* path, bool forWriting) {
    std::size_t length = 0;
    while (path[length] != 0) ++length;
    const auto units = static_cast<std::int32_t>(length);
    std::string name(3 * length, '\0');
    const std::int32_t bytes = SystemFromWide(65001, path, units, name.data(),
                                              static_cast<std::int32_t>(name.size()), nullptr);
    name.resize(static_cast<std::size_t>(bytes));
    return std::fopen(name.c_str(), forWriting ? "wb" : "rb");
}

std::int64_t FileStreamLength(std::FILE* file) {
    if (fseeko(file, 0, SEEK_END) != 0) return -1;
    const std::int64_t length = ftello(file);
    return fseeko(file, 0, SEEK_SET) == 0 ? length : -1;
}

} // namespace ObLibX
