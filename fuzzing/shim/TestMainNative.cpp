// The main function of a native test program.
#include <gtest/gtest.h>

#include <cstdio>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    if (!testing::GTEST_FLAG(list_tests) &&
        testing::UnitTest::GetInstance()->test_to_run_count() == 0) {
        std::printf("The filter matched no test.\n");
        return 3;
    }
    return result;
}
