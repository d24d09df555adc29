// What the suites of uploads to WebDAV servers share.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "services/providers/webdav/DavUpload.h"
#include "tests/unit/services/providers/dav/DavFixture.h"

namespace providers {

inline std::string ContentOf(std::size_t size) {
    std::string content(size, '\0');
    for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<char>(i * 13 + i / 997);
    return content;
}

// Records what an upload reports; asks are run on the upload's own thread.
class RecordedProgress final : public UploadProgress {
public:
    void Show(std::uint64_t sent, std::uint64_t total) override {
        sent_ = sent;
        total_ = total;
    }
    HANDLE Cancelled() const override { return cancelled_.Get(); }
    bool Ask(const std::function<void(HWND)>& ask) override {
        ++asked_;
        ask(nullptr);
        return true;
    }
    void Cancel() const { SetEvent(cancelled_.Get()); }

    std::uint64_t sent_ = 0;
    std::uint64_t total_ = 0;
    int asked_ = 0;

private:
    ObLib::UniqueKernelHandle cancelled_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

class DavUploadAccount : public DavAccount {
protected:
    DavUploadAccount() : DavAccount() { source_ = folder_.File(L"source.zip", content_); }
    ~DavUploadAccount() override {
        for (const std::wstring& path : obtest::ListTree(FilesOf(Server()))) {
            if (!path.ends_with(L"\\") || path.find(L'\\') != path.size() - 1 ||
                path.starts_with(L"."))
                continue;
            HttpUrl url = Url(ToUtf8(path.substr(0, path.size() - 1)));
            url.path += '/';
            relay_.Begin(GetParam());
            EXPECT_EQ("done", Outcome(client_.Discard(url)));
        }
    }

    UploadResult Upload(const std::wstring& name, const std::wstring& folder = L"a b\\\u00E4") {
        return upload_.Run({root_, login_}, {source_, name, folder}, progress_, ask_);
    }
    // Paths of files below the account's folder, without those that a server keeps for itself.
    std::vector<std::wstring> Files() const {
        auto paths = obtest::ListTree(FilesOf(Server()));
        std::erase_if(paths, [](const std::wstring& path) {
            return path.ends_with(L"\\") || path.starts_with(L".") ||
                   path.find(L"\\.") != std::wstring::npos;
        });
        return paths;
    }
    int Count(const char* method) const {
        const auto requests = relay_.Requests();
        return static_cast<int>(
            std::count_if(requests.begin(), requests.end(), [method](const std::string& request) {
                return request.starts_with(std::string(method) + " ");
            }));
    }

    obtest::TestFolder folder_;
    std::string content_ = ContentOf(700'003);
    std::wstring source_;
    RecordedProgress progress_;
    AskForLogin ask_;
    DavUpload upload_{session_, kNoPauses};
};

} // namespace providers
