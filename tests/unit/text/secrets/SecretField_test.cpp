// A masked field's secret is never left in memory the field gives back: this binary's allocator looks
// at every block before it is freed. (Its own binary, so no other test pays for that look.)
#include <gtest/gtest.h>
#include <malloc.h>
#include <string.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

#include "text/InputItem.h"

namespace {

std::atomic<bool> watching{false};
std::atomic<int> leaks{0};
constexpr char kSecret[] = "Zq8-Secret-Xv";

void Look(void* block) {
    if (!block || !watching) return;
    const size_t size = malloc_usable_size(block);
    if (memmem(block, size, kSecret, sizeof kSecret - 1)) ++leaks;
}

}  // namespace

void* operator new(std::size_t size) {
    if (void* block = std::malloc(size ? size : 1)) return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept {
    Look(block);
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    Look(block);
    std::free(block);
}

namespace Kovo {
namespace {

void Type(InputItem& field, const std::string& text) {
    for (char c : text) field.EditKey(static_cast<unsigned char>(c));
}

// The secret is typed, never handed over in a std::string of the test's own.
TEST(SecretField, ClearedReplacedGrownOrDestroyedItLeavesNoCopyBehind) {
    watching = true;
    {
        auto field = std::make_unique<InputItem>("Password:", "", 30);
        field->SetMasked(true);
        Type(*field, kSecret);
        EXPECT_EQ(field->GetValue(), kSecret);
        // Replace mode: the next key clears the field first.
        field->OnSelect();
        field->EditKey('x');
        EXPECT_EQ(field->GetValue(), "x");
        EXPECT_EQ(memmem(field->GetValue().data(), field->GetValue().capacity(), kSecret, sizeof kSecret - 1),
                  nullptr);
        // Long enough to outgrow the field's buffer, then the secret again at its end.
        Type(*field, std::string(600, 'y'));
        Type(*field, kSecret);
        Type(*field, std::string(600, 'z'));
        field->SetValue("");
        Type(*field, kSecret);
    }
    watching = false;
    EXPECT_EQ(leaks, 0);
}

// The control: an unmasked field is not a secret, and the look does see what it leaves behind.
TEST(SecretField, TheLookSeesWhatAPlainFieldGivesBack) {
    leaks = 0;
    watching = true;
    {
        auto field = std::make_unique<InputItem>("Name:", "", 30);
        Type(*field, std::string(40, 'n') + kSecret);
    }
    watching = false;
    EXPECT_GT(leaks, 0);
    leaks = 0;
}

}  // namespace
}  // namespace Kovo
