// Character references, by name.
#include "payload/references.h"

#include <gtest/gtest.h>

namespace webvtt {
namespace {

std::string_view replacement_of(const Reference* reference) {
    return reference != nullptr ? reference->replacement : "none";
}

TEST(References, AreFoundByName) {
    const struct {
        std::string_view name, replacement;
    } cases[] = {
        {"&amp", "&"},
        {"&lt", "<"},
        {"&gt", ">"},
        {"&lrm", "\xE2\x80\x8E"},
        {"&rlm", "\xE2\x80\x8F"},
        {"&nbsp", "\xC2\xA0"},
        {"&", "none"},
        {"&AMP", "none"},
        {"&am", "none"},
        {"&amps", "none"},
        {"&nbspx", "none"},
        {"amp", "none"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(replacement_of(find_reference(c.name)), c.replacement);
    }
}

}  // namespace
}  // namespace webvtt
