// One line of a session log, taken apart with a clear word about what is not as it has to be.
#ifndef TOOLS_REPLAY_LOG_LINE_H_
#define TOOLS_REPLAY_LOG_LINE_H_

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace quill::replay {

using Json = nlohmann::json;

// An object of a line. Everything that is asked of it throws Failure, which names log, line and
// field, when it is not there or not of that kind.
class Fields {
  public:
    // `where` is "session.log:12: ". Both must outlive the object.
    Fields(const std::string& where, const Json& object) : where_(where), object_(object) {}

    bool Has(const char* name) const { return object_.find(name) != object_.end(); }
    bool IsNull(const char* name) const { return At(name).is_null(); }

    std::uint64_t Number(const char* name, std::uint64_t most) const;
    std::uint32_t Number(const char* name) const {
        return static_cast<std::uint32_t>(Number(name, UINT32_MAX));
    }
    std::uint32_t NumberOr(const char* name, std::uint32_t otherwise) const {
        return Has(name) ? Number(name) : otherwise;
    }
    std::int32_t Signed(const char* name) const;
    double Seconds(const char* name) const;
    bool FlagOr(const char* name, bool otherwise) const;
    std::string Text(const char* name) const;
    // A byte string: each of its characters stands for the byte of that number.
    std::string Bytes(const char* name) const;
    // The objects of a list.
    const Json& List(const char* name) const;
    Fields Object(const char* name) const { return ObjectOf(At(name)); }
    // An element of a list, as an object.
    Fields ObjectOf(const Json& value) const;

    // Throws the Failure.
    [[noreturn]] void Fail(const std::string& what) const;

  private:
    const Json& At(const char* name) const;
    [[noreturn]] void Refuse(const char* name, const std::string& what) const;

    const std::string& where_;
    const Json& object_;
};

// Reads a line as a JSON object; nothing when it is none. Throws Failure for one that is nested
// more deeply than any log's line.
std::optional<Json> ParseLine(const std::string& where, std::string_view line);

}  // namespace quill::replay

#endif  // TOOLS_REPLAY_LOG_LINE_H_
