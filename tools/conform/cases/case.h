// A conformance case: calls and what must come of them.
#ifndef TOOLS_CONFORM_CASES_CASE_H_
#define TOOLS_CONFORM_CASES_CASE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace quill::conform {

class ProbeBench;
struct Verb;

// One call of a case, taken apart. Which members count depends on the verb.
struct CaseCall {
    const Verb* verb = nullptr;
    std::string name;          // of a parser, or a handle as a number
    std::uint32_t number = 0;  // a size, a tag or ticks
    std::string bytes;
};

struct CaseStep {
    int line;          // of the case file
    std::string text;  // the call as it is written there
    CaseCall call;
    std::vector<std::string> expected;  // the lines below it, without their indent
};

struct Case {
    std::string group;
    std::string name;
    std::string reason;
    std::string file;  // where it is written; empty for one that is code
    int line = 0;
    std::vector<CaseStep> steps;
    void (*probe)(ProbeBench&) = nullptr;  // instead of the steps, where it is code

    std::string full_name() const { return group + "/" + name; }
};

}  // namespace quill::conform

#endif  // TOOLS_CONFORM_CASES_CASE_H_
