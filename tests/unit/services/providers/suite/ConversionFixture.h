// A document that is to become a PDF, for the tests of the programs that convert: the document and
// its target, the folder of the run, a work process that does what the test asks.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/TransformWork.h"
#include "services/providers/suite/DocumentToPdf.h"
#include "tests/fakes/Recording.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/providers/suite/InstalledOffice.h"

namespace suitetest {

using Lines = std::vector<std::wstring>;

inline constexpr DWORD kLimit = 20000; // milliseconds, for what has to happen soon
inline const std::string kDocument = "PK\x03\x04 the document";
inline const std::string kPdf = "%PDF-1.6\n% " + kDocument + "\n%%EOF\n";

// The lines of a record that a fake program writes.
inline Lines LinesOf(const std::wstring& path) {
    const std::wstring text = obtest::ReadUtf8File(path);
    Lines lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(L'\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

class ConversionFixture : public testing::Test {
protected:
    void SetUp() override {
        BeginAnew();
        ended_.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        source_ = Open(folder_.File(L"letter", kDocument), GENERIC_READ, OPEN_EXISTING);
        target_ = Open(folder_ / L"target", GENERIC_READ | GENERIC_WRITE, CREATE_NEW);
        ASSERT_TRUE(ended_ && source_ && target_);
        WorkScript("good");
        run_ = folder_.Folder(L"run");
    }

    static ObLib::UniqueKernelHandle Open(const std::wstring& path, DWORD access, DWORD how) {
        return ObLib::UniqueKernelHandle(CreateFileW(path.c_str(), access,
                                                     FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                                     how, FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    static void WorkScript(const char* word) {
        ASSERT_TRUE(obtest::WriteFileContent(obtest::BesideProgram(L"worker.txt"), word));
    }
    // Converts the document under this name, with a work process beside the program.
    providers::SuiteOutcome
    ConvertAs(const std::wstring& name, const providers::SuiteLimits& limits,
              const wchar_t* workProcess = obcontract::kTransformWorkFileName) {
        providers::WorkSettings settings;
        settings.program = obtest::BesideProgram(workProcess);
        providers::WorkProcess process(std::move(settings));
        providers::CallWait wait(ended_.Get(), nullptr);
        return providers::ConvertDocument({source_.Get(), name, run_}, target_.Get(), process, wait,
                                          limits);
    }
    std::string Target() const { return *obtest::ReadFileContent(folder_ / L"target"); }
    // Expects that nothing is left of a conversion but the target: no file of the run, and none of
    // these processes.
    void ExpectNothingLeftOf(const Lines& processIds, const char* mode) const {
        EXPECT_EQ(obtest::ListTree(run_), Lines()) << mode;
        for (const std::wstring& id : processIds) {
            const ObLib::UniqueKernelHandle process(
                OpenProcess(SYNCHRONIZE, FALSE, std::stoul(id)));
            EXPECT_TRUE(!process || WaitForSingleObject(process.Get(), kLimit) == WAIT_OBJECT_0)
                << mode;
        }
    }

    const obtest::TestFolder folder_;
    std::wstring run_;
    ObLib::UniqueKernelHandle ended_;
    ObLib::UniqueKernelHandle source_;
    ObLib::UniqueKernelHandle target_;
};

} // namespace suitetest
