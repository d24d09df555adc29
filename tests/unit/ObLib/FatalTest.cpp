#include "ObLib/Src/ObFatal.h"

#include <limits>

#include "ObLib/Src/ObMacro.h"
#include "tests/unit/ObLib/FatalExit.h"

namespace {

constexpr wchar_t kModule[] = L"ObLib\\Src\\Sample.cpp";

TEST(FatalEnd, AnAssertWritesItsLineAndEndsWith999) {
    EXPECT_FATAL(
        ObLib::FatalAssert(kModule, 4711),
        "\nFATAL ERROR: assert failure in Module: ObLib\\Src\\Sample.cpp Line number: 4711\n");
}

TEST(FatalEnd, AFailureOfTheSystemHasWordsOfItsOwn) {
    EXPECT_FATAL(ObLib::FatalApiFailure(L"ObLibX\\src\\Sample.cpp", 0),
                 "\nFATAL ERROR: unexpected API Failure in Module: ObLibX\\src\\Sample.cpp Line "
                 "number: 0\n");
}

TEST(FatalEnd, TheLargestLineIsWrittenWhole) {
    EXPECT_FATAL(ObLib::FatalAssert(kModule, std::numeric_limits<std::uint32_t>::max()),
                 " Line number: 4294967295\n");
}

TEST(FatalEnd, AFailedCheckNamesItsModuleAndItsLine) {
    const int one = 1;
    const auto check = [&] { ObAssert(one == 2); };
    const std::string line = std::to_string(__LINE__ - 1);
    EXPECT_FATAL(check(), "Module: ObLib\\Src\\Sample.cpp Line number: " + line + "\n");
}

TEST(FatalEnd, ACheckThatIsTrueDoesNothing) {
    int looked = 0;
    ObAssert(++looked == 1);
    EXPECT_EQ(1, looked);
}

TEST(FatalEnd, AFaultRequestOutOfACheckIsCaughtThereAndExecutionContinues) {
    bool after = false;
    ObLib::CatchFaultRequest([] { throw ObLib::ObFaultRequest(); });
    after = true;
    EXPECT_TRUE(after);
    EXPECT_THROW(ObLib::CatchFaultRequest([] { throw 1; }), int);
}

TEST(CheckedNumber, TakesWhatFitsIn32Bits) {
    EXPECT_EQ(0, ObLib::CheckedInt32(0));
    EXPECT_EQ(0x7FFFFFFF, ObLib::CheckedInt32(0x7FFFFFFF));
    EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), ObLib::CheckedInt32(-2147483648LL));
}

TEST(CheckedNumber, EndsTheProcessAtOneMoreOrOneLess) {
    const char* const line = "Module: ObLib\\Src\\ObMacro.H Line number: 232\n";
    EXPECT_FATAL(ObLib::CheckedInt32(0x80000000LL), line);
    EXPECT_FATAL(ObLib::CheckedInt32(-2147483649LL), line);
}

} // namespace
