// What the tests of both entry points share: a recording dialog of the caller, and the expected
// bytes of a block.
#pragma once

#include <windows.h>

#include <shobjidl.h>

#include <cstdint>
#include <string>
#include <vector>

namespace obtest {

// The caller's dialog: answers GetOptions; any other call is counted as unexpected.
class CallersDialog : public IFileDialog {
public:
    DWORD options = 0;
    HRESULT optionsResult = S_OK;
    int optionsReads = 0;
    int unexpectedCalls = 0;

    STDMETHODIMP GetOptions(FILEOPENDIALOGOPTIONS* out) override {
        ++optionsReads;
        *out = options;
        return optionsResult;
    }

    STDMETHODIMP QueryInterface(REFIID, void**) override { return Unexpected(); }
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(Unexpected()); }
    STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(Unexpected()); }
    STDMETHODIMP Show(HWND) override { return Unexpected(); }
    STDMETHODIMP SetFileTypes(UINT, const COMDLG_FILTERSPEC*) override { return Unexpected(); }
    STDMETHODIMP SetFileTypeIndex(UINT) override { return Unexpected(); }
    STDMETHODIMP GetFileTypeIndex(UINT*) override { return Unexpected(); }
    STDMETHODIMP Advise(IFileDialogEvents*, DWORD*) override { return Unexpected(); }
    STDMETHODIMP Unadvise(DWORD) override { return Unexpected(); }
    STDMETHODIMP SetOptions(FILEOPENDIALOGOPTIONS) override { return Unexpected(); }
    STDMETHODIMP SetDefaultFolder(IShellItem*) override { return Unexpected(); }
    STDMETHODIMP SetFolder(IShellItem*) override { return Unexpected(); }
    STDMETHODIMP GetFolder(IShellItem**) override { return Unexpected(); }
    STDMETHODIMP GetCurrentSelection(IShellItem**) override { return Unexpected(); }
    STDMETHODIMP SetFileName(LPCWSTR) override { return Unexpected(); }
    STDMETHODIMP GetFileName(LPWSTR*) override { return Unexpected(); }
    STDMETHODIMP SetTitle(LPCWSTR) override { return Unexpected(); }
    STDMETHODIMP SetOkButtonLabel(LPCWSTR) override { return Unexpected(); }
    STDMETHODIMP SetFileNameLabel(LPCWSTR) override { return Unexpected(); }
    STDMETHODIMP GetResult(IShellItem**) override { return Unexpected(); }
    STDMETHODIMP AddPlace(IShellItem*, FDAP) override { return Unexpected(); }
    STDMETHODIMP SetDefaultExtension(LPCWSTR) override { return Unexpected(); }
    STDMETHODIMP Close(HRESULT) override { return Unexpected(); }
    STDMETHODIMP SetClientGuid(REFGUID) override { return Unexpected(); }
    STDMETHODIMP ClearClientData() override { return Unexpected(); }
    STDMETHODIMP SetFilter(IShellItemFilter*) override { return Unexpected(); }

private:
    HRESULT Unexpected() {
        ++unexpectedCalls;
        return E_NOTIMPL;
    }
};

// The bytes of a block, all 0 at first.
class BlockImage {
public:
    BlockImage() : bytes_(65536, '\0') {}
    BlockImage& Put8(std::size_t offset, std::uint8_t value);
    BlockImage& Put16(std::size_t offset, std::uint16_t value);
    BlockImage& Put32(std::size_t offset, std::uint32_t value);
    BlockImage& PutUnits(std::size_t offset, const std::wstring& units);
    const std::string& Bytes() const { return bytes_; }

private:
    std::string bytes_;
};

// A file that the scripted host's `dump` wrote.
std::string DumpedBlock(const wchar_t* name);

// The id in the newest command line that the host recorded; -1 when there is none.
long long LastHostId();

// Takes the host out of the program's folder for a scope.
class WithoutHost {
public:
    WithoutHost();
    ~WithoutHost();
    WithoutHost(const WithoutHost&) = delete;
    WithoutHost& operator=(const WithoutHost&) = delete;
};

} // namespace obtest
