// The service's own messages, shown where the product's library isn't beside it.
#include <gtest/gtest.h>

#include "services/archive/policy/EncryptionRules.h"
#include "services/archive/policy/PasswordPolicy.h"
#include "services/archive/texts/ProductTexts.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"

namespace {

using namespace obarchive;

class PolicyWithoutProductTest : public testing::Test {
protected:
    void SetUp() override { obtest::ClearProductRegistry(); }
};

TEST_F(PolicyWithoutProductTest, TheMessageThatEncryptionIsOffIsTheServicesOwn) {
    EXPECT_EQ(ProductText(kEncryptionOffMessage), L"");
    obtest::SetMachinePolicy(L"NoEncryption", L"1");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(WarnIfEncryptionIsOff(nullptr));
    const auto seen = boxes.Seen();
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].text, L"Your administrator has switched encryption off.");
}

TEST_F(PolicyWithoutProductTest, TheMessageAboutThePolicyIsTheServicesOwn) {
    EXPECT_EQ(PolicyMessage({9, 0}), L"Your organization asks for at least 9 characters.");
    EXPECT_EQ(PolicyMessage({9, 15}),
              L"Your organization asks for at least 9 characters, among them a lower case letter "
              L"(a-z), an upper case letter (A-Z), a digit, a symbol.");
}

} // namespace
