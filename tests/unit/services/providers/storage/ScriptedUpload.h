// A storage provider whose upload is scripted by a test.
#pragma once

#include <functional>
#include <utility>

#include "tests/unit/services/providers/storage/ScriptedProvider.h"

namespace obtest {

class ScriptedUpload final : public ScriptedProvider {
public:
    using Script = std::function<providers::UploadResult(
        const std::wstring& key, const providers::UploadFile&, providers::UploadProgress&)>;

    explicit ScriptedUpload(Script script) : ScriptedProvider(1), script_(std::move(script)) {}

    providers::UploadResult Upload(Key key, const providers::UploadFile& file,
                                   providers::UploadProgress& progress) override {
        return script_(key, file, progress);
    }

private:
    Script script_;
};

} // namespace obtest
