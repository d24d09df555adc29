#include "ObLib/Src/Win32/Secret.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <utility>

namespace {

TEST(SecretTest, StoresATextOrNothing) {
    EXPECT_TRUE(ObLib::Secret().Empty());
    EXPECT_TRUE(ObLib::Secret(nullptr).Empty());
    EXPECT_TRUE(ObLib::Secret("").Empty());
    EXPECT_STREQ(ObLib::Secret("").Text(), "");
    ObLib::Secret secret("p\xC3\xA4ss");
    EXPECT_STREQ(secret.Text(), "p\xC3\xA4ss");
    const ObLib::Secret moved = std::move(secret);
    EXPECT_STREQ(moved.Text(), "p\xC3\xA4ss");
}

// The memory of a local buffer stays mapped after its scope, so a test can read what is left in it.
TEST(SecretTest, AStackBufferIsWipedAtTheEndOfItsScope) {
    alignas(8) static unsigned char place[sizeof(ObLib::WipedBuffer<char, 32>)];
    auto* buffer = new (place) ObLib::WipedBuffer<char, 32>;
    std::memcpy(buffer->data, "very secret", 12);
    buffer->~WipedBuffer();
    for (const unsigned char byte : place) EXPECT_EQ(byte, 0);
}

} // namespace
