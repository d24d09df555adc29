// The photos and the library that are beside the test's program.
#include <gtest/gtest.h>

#include "ObLib/Src/Win32/ModulePath.h"
#include "services/transforms/photos/HeifLibrary.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/transforms/photos/PhotoSamples.h"

namespace obtest {

using namespace transforms;

PhotoRequest PhotoRequestOfTest() {
    PhotoRequest request;
    request.heifLibrary = *ObLib::PathBesideModule(nullptr, kHeifLibraryFileName);
    return request;
}

PictureBytes PhotoSample(const std::wstring& name) {
    const auto content = ReadFileContent(*ObLib::ModuleFolder(nullptr) + L"photos\\" + name);
    EXPECT_TRUE(content) << "a sample is missing";
    return content ? PictureBytes(content->begin(), content->end()) : PictureBytes();
}

} // namespace obtest
