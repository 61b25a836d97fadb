// From a payload to its tree, its plain text, and what is printed on the way.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/errors.h"
#include "cue/cue.h"
#include "support/diagnostic_lines.h"
#include "support/exact_block.h"
#include "support/stdout_capture.h"
#include "tree_dump.h"

namespace webvtt {
namespace {

using support::error_line;

/// A payload, parsed. The tree stays when the parse throws.
struct Built {
    explicit Built(const std::string& payload) { vAdd(payload); }

    void vAdd(const std::string& payload) {
        output = support::output_of([&] {
            support::ExactText text(payload);
            try {
                complete = cue.fgParseCuePayload(text.c_str(), text.length());
            } catch (const BadAllocException& error) {
                message = error.strGetMessage();
            }
        });
    }

    std::string tree() const { return dump_tree(cue.pRootNode); }
    std::string content() const { return cue.strGetCueContent().text; }

    Cue cue;
    bool complete = false;
    std::string message;
    std::string output;
};

std::vector<std::string> texts_of(const std::vector<WebvttString>& strings) {
    std::vector<std::string> texts;
    for (const WebvttString& string : strings) {
        texts.push_back(string.text);
    }
    return texts;
}

struct TreeCase {
    const char *payload, *tree, *content;
};

void check_silent(const TreeCase& c) {
    SCOPED_TRACE(c.payload);
    const Built built(c.payload);
    EXPECT_TRUE(built.complete);
    EXPECT_EQ(built.tree(), c.tree);
    EXPECT_EQ(built.content(), c.content);
    EXPECT_EQ(built.output, "");
}

TEST(TreeBuilder, BuildsATreeOfTagsAndText) {
    const TreeCase cases[] = {
        {"Hello", "root('Hello')", "Hello"},
        {"a<b>c</b>d", "root('a' b('c') 'd')", "acd"},
        {"<ruby>ab<rt>cd</rt></ruby>", "root(ruby('ab' rt('cd')))", "abcd"},
        {"<v Bob>Hi</v>", "root(v('Hi'))", "Hi"},
        {"<c.red.big>x</c>", "root(c('x'))", "x"},
        {"<lang en>x</lang>", "root(lang('x'))", "x"},
        {"<i>1</i><u>2</u> ", "root(i('1') u('2') ' ')", "12 "},
        {"a<00:00:01.000>b", "root('a' time=0 'b')", "ab"},
        {"<b><00:01.000>x</b>", "root(b(time=0 'x'))", "x"},
        {"x\ny", "root('x\ny')", "x\ny"},
        {"x\n<b>y\n</b>\n", "root('x\n' b('y\n') '\n')", "x\ny\n\n"},
        {"a &lt;b&gt; &amp;amp;", "root('a <b> &amp;')", "a <b> &amp;"},
        {"x<b>", "root('x' b('>'))", "x>"},
        {"<c.a\nb</c>x", "root('b' 'x')",
         "bx"},  // no node for a list of classes cut by a line feed
    };
    for (const TreeCase& c : cases) {
        check_silent(c);
    }
}

TEST(TreeBuilder, OnlyTheInnermostTagCanBeClosed) {
    const TreeCase cases[] = {
        {"<b>x</i>", "root(b('x'))", "x"},
        {"<b>x</i>y", "root(b('x' 'y'))", "xy"},
        {"<b><i>x</b>y", "root(b(i('x' 'y')))", "xy"},
        {"<b><i>x</b></i>y</b>z", "root(b(i('x') 'y') 'z')", "xyz"},
        {"<b><b>x</b></b>y", "root(b(b('x')) 'y')", "xy"},
        {"</b>x", "root('x')", "x"},
        {"<b>x</b></b>y", "root(b('x') 'y')", "xy"},
        {"<b>x", "root(b('x'))", "x"},
    };
    for (const TreeCase& c : cases) {
        check_silent(c);
    }
}

TEST(TreeBuilder, ReportsBadTagsAndGoesOn) {
    const struct {
        const char *payload, *tree, *content;
        std::string output;
    } cases[] = {
        {"x</foo>", "root('x')", "x", error_line("unexcepted end tag <foo> detected. Ignored")},
        {"x</b >y", "root('x' 'y')", "xy", error_line("unexcepted end tag <b > detected. Ignored")},
        {"x</>y", "root('x' 'y')", "xy", error_line("unexcepted end tag <> detected. Ignored")},
        {"<b>x</B>y", "root(b('x' 'y'))", "xy",
         error_line("unexcepted end tag <B> detected. Ignored")},
        {"</", "root('/')", "/", error_line("unexcepted end tag <> detected. Ignored")},
        {"a<1x>b", "root('a' 'b')", "ab",
         error_line("Invalid time stamp tag <1x> detected. Ignored")},
        {"a<00:60.000>b", "root('a' 'b')", "ab",
         error_line("Invalid time stamp tag <00:60.000> detected. Ignored")},
        {"a<00:01,000>b", "root('a' 'b')", "ab",
         "input is 01,000\nNot a valid data string\n" +
             error_line("Invalid time stamp tag <00:01,000> detected. Ignored")},
        {"<5", "root('5')", "5", error_line("Invalid time stamp tag <5> detected. Ignored")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.payload);
        const Built built(c.payload);
        EXPECT_TRUE(built.complete);
        EXPECT_EQ(built.tree(), c.tree);
        EXPECT_EQ(built.content(), c.content);
        EXPECT_EQ(built.output, c.output);
    }
}

TEST(TreeBuilder, UnknownStartTagGivesUpTheRest) {
    const struct {
        const char *payload, *name, *tree;
    } cases[] = {
        {"<foo>x", "foo", "root()"}, {"a<b>c<foo>d</b>e", "foo", "root('a' b('c'))"},
        {"a<>b", "", "root('a')"},   {"a<", "", "root('a')"},
        {"<B>x", "B", "root()"},     {"<b/>x", "b/", "root()"},
        {"a< b>c", "", "root('a')"}, {"<i.x>y<.z>w", "", "root(i('y'))"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.payload);
        const Built built(c.payload);
        EXPECT_FALSE(built.complete);
        EXPECT_EQ(built.message, "create new Node Failed\n");
        EXPECT_EQ(built.tree(), c.tree);
        EXPECT_EQ(built.output, error_line("unexcepted start tag <" + std::string(c.name) +
                                           "> detected. Ignored"));
    }
}

TEST(TreeBuilder, RecordsClassesInTheCue) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(texts_of(Built("<c.red.big>x</c>").cue.vecApplicableClasses), (Names{"red", "big"}));
    EXPECT_EQ(texts_of(Built("<c.a>x</c><b.>y</b><i.a>z").cue.vecApplicableClasses),
              (Names{"a", "", "a"}));
    EXPECT_EQ(texts_of(Built("<c.a\nb").cue.vecApplicableClasses), Names{"a"});
    EXPECT_EQ(texts_of(Built("<foo.bar>x").cue.vecApplicableClasses), Names{"bar"});
    EXPECT_EQ(texts_of(Built("<c>x</c.a>").cue.vecApplicableClasses), Names{});
}

TEST(TreeBuilder, KeepsTheOpenLanguagesOnAStack) {
    const struct {
        const char* payload;
        std::vector<std::string> open;
    } cases[] = {
        {"<lang en>x", {"lang"}},  // the tag's name, not the language
        {"<lang en>x</lang>", {}},
        {"<lang en><lang fr>x</lang>", {"lang"}},
        {"<lang en><lang fr>x", {"lang", "lang"}},
        {"<lang en><b>x</lang>", {"lang"}},
        {"</lang>x", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.payload);
        EXPECT_EQ(texts_of(Built(c.payload).cue.dqApplicableLanguages), c.open);
    }
}

TEST(TreeBuilder, InternalNodesCarryNoLanguage) {
    const Built built("<lang en>x</lang>");
    const auto* const node = static_cast<WebvttInternalNode*>(built.cue.pRootNode->vecChildren[0]);
    EXPECT_EQ(node->strApplicableLanguage.text, "");
}

TEST(TreeBuilder, SecondPayloadIsAppendedToTheSameRoot) {
    Built built("<b>x");
    const WebvttNode* const root = built.cue.pRootNode;
    built.vAdd("y<i>z</i>");
    EXPECT_EQ(built.cue.pRootNode, root);
    EXPECT_EQ(built.tree(), "root(b('x') 'y' i('z'))");
}

TEST(CueLists, TakeCopies) {
    Cue cue;
    WebvttString name("one");
    cue.vAddApplicableClass(name);
    cue.vPushApplicableLanguage(name);
    cue.vPushApplicableLanguage(WebvttString("two"));
    name.text = "changed";
    EXPECT_EQ(texts_of(cue.vecApplicableClasses), (std::vector<std::string>{"one"}));
    EXPECT_EQ(texts_of(cue.dqApplicableLanguages), (std::vector<std::string>{"one", "two"}));
    cue.vPopApplicableLanguage();
    EXPECT_EQ(texts_of(cue.dqApplicableLanguages), (std::vector<std::string>{"one"}));
}

}  // namespace
}  // namespace webvtt
