#include "ObLibX/src/xml/encoding/SystemFile.h"

namespace ObLibX {

std::FILE* OpenFileStream(const wchar_t* path, bool forWriting) {
    return _wfopen(path, forWriting ? L"wb" : L"rb");
}

std::int64_t FileStreamLength(std::FILE* file) {
    if (_fseeki64(file, 0, SEEK_END) != 0) return -1;
    const std::int64_t length = _ftelli64(file);
    return _fseeki64(file, 0, SEEK_SET) == 0 ? length : -1;
}

} // namespace ObLibX
