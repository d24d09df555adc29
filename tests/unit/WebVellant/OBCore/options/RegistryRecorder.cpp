#include "tests/unit/WebVellant/OBCore/options/RegistryRecorder.h"

#include <map>

#include "tests/support/RecordedTrace.h"

namespace {

RegistryRecorder* current = nullptr;

std::map<HKEY, std::string>& OpenPaths() {
    static std::map<HKEY, std::string> paths;
    return paths;
}

// Names and values of these tests are ASCII.
std::string Narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

std::string RootName(HKEY root) {
    if (root == HKEY_LOCAL_MACHINE) return "machine ";
    return root == HKEY_CURRENT_USER ? "user " : "other ";
}

std::string ViewName(REGSAM access) {
    if (access & KEY_WOW64_32KEY) return " 32";
    return access & KEY_WOW64_64KEY ? " 64" : "";
}

std::string AccessName(REGSAM access, REGSAM expected) {
    const REGSAM plain = access & ~static_cast<REGSAM>(KEY_WOW64_32KEY | KEY_WOW64_64KEY);
    return plain == expected ? "" : " access " + std::to_string(plain);
}

} // namespace

RegistryRecorder::RegistryRecorder()
    : open_("advapi32.dll", "RegOpenKeyExW", &Open),
      create_("advapi32.dll", "RegCreateKeyExW", &Create),
      query_("advapi32.dll", "RegQueryValueExW", &Query),
      set_("advapi32.dll", "RegSetValueExW", &Set) {
    current = this;
    obtest::ObserveTrace([](const std::string& line) { Note("trace " + line); });
}

RegistryRecorder::~RegistryRecorder() {
    obtest::ObserveTrace(nullptr);
    current = nullptr;
}

bool RegistryRecorder::Ok() const { return open_.Ok() && create_.Ok() && query_.Ok() && set_.Ok(); }

std::vector<std::string> RegistryRecorder::LinesThatBeginWith(const std::string& start) const {
    std::vector<std::string> found;
    for (const std::string& line : lines_) {
        if (line.starts_with(start)) found.push_back(line);
    }
    return found;
}

void RegistryRecorder::Note(const std::string& line) {
    if (current) current->lines_.push_back(line);
}

LSTATUS WINAPI RegistryRecorder::Open(HKEY root, LPCWSTR path, DWORD options, REGSAM access,
                                      PHKEY key) {
    const bool fails = path == current->failing_;
    const LSTATUS status =
        fails ? ERROR_ACCESS_DENIED : current->open_.Real()(root, path, options, access, key);
    Note("open " + RootName(root) + Narrow(path) + ViewName(access) + AccessName(access, KEY_READ) +
         (status == ERROR_SUCCESS ? "" : " fails"));
    if (status == ERROR_SUCCESS) OpenPaths()[*key] = Narrow(path);
    return status;
}

LSTATUS WINAPI RegistryRecorder::Create(HKEY root, LPCWSTR path, DWORD reserved, LPWSTR keyClass,
                                        DWORD options, REGSAM access,
                                        const LPSECURITY_ATTRIBUTES security, PHKEY key,
                                        LPDWORD disposition) {
    const bool fails = path == current->failing_;
    const LSTATUS status = fails ? ERROR_ACCESS_DENIED
                                 : current->create_.Real()(root, path, reserved, keyClass, options,
                                                           access, security, key, disposition);
    Note("create " + RootName(root) + Narrow(path) + AccessName(access, KEY_ALL_ACCESS) +
         (status == ERROR_SUCCESS ? "" : " fails"));
    if (status == ERROR_SUCCESS) OpenPaths()[*key] = Narrow(path);
    return status;
}

LSTATUS WINAPI RegistryRecorder::Query(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type,
                                       LPBYTE data, LPDWORD size) {
    Note("get " + OpenPaths()[key] + "!" + Narrow(name) + " " + std::to_string(*size));
    return current->query_.Real()(key, name, reserved, type, data, size);
}

LSTATUS WINAPI RegistryRecorder::Set(HKEY key, LPCWSTR name, DWORD reserved, DWORD type,
                                     const BYTE* data, DWORD size) {
    const auto* units = reinterpret_cast<const wchar_t*>(data);
    const std::wstring text(units, size / sizeof(wchar_t));
    // The terminator belongs to the value and shows as a closing bar.
    std::string shown = Narrow(text);
    if (!shown.empty() && shown.back() == '\0') shown.back() = '|';
    Note("set " + OpenPaths()[key] + "!" + Narrow(name) + "=" + shown +
         (type == REG_SZ ? "" : " type " + std::to_string(type)));
    return current->set_.Real()(key, name, reserved, type, data, size);
}
