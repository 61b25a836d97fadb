#include "guard/hidden_output.h"

#include <cstring>
#include <string_view>

#include "guard/hidden_text.h"

namespace guard {
namespace {

constexpr std::string_view kStartTag = "[WEBVTT] ERR:: unexcepted start tag <";
constexpr std::string_view kEndTag = "[WEBVTT] ERR:: unexcepted end tag <";
constexpr std::string_view kStamp = "[WEBVTT] ERR:: Invalid time stamp tag <";
constexpr std::string_view kStart = "[WEBVTT] ERR:: Invalid Start Time Stamp <";
constexpr std::string_view kEnd = "[WEBVTT] ERR:: Invalid End Time Stamp <";
constexpr std::string_view kEmptyItem = "[WEBVTT] ERR:: Item ";
constexpr std::string_view kEmptyItemEnd = " value is empty!";
constexpr std::string_view kNoNumber = "input is ";
constexpr std::string_view kNoNumberEnd = "\nNot a valid data string\n";
constexpr std::size_t kSeconds = 6;  // what is read of a time as a number, from its end

bool begins_with(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

class Output {
  public:
    Output(char* bytes, std::size_t size) : m_bytes(bytes), m_size(size) {}

    void hide() {
        while (m_at < m_size) {
            hide_message();
            const std::size_t end = rest().find('\n');
            m_at = end == std::string_view::npos ? m_size : m_at + end + 1;
        }
    }

  private:
    std::string_view rest() const { return {m_bytes + m_at, m_size - m_at}; }

    std::string_view line() const { return rest().substr(0, rest().find('\n')); }

    /// Skips what is said of a number, and gives where it stands; the message that it belongs to
    /// comes next. Null when nothing is said.
    char* skip_number() {
        const std::size_t size = kNoNumber.size() + kSeconds;
        if (!begins_with(rest(), kNoNumber) || rest().size() < size ||
            !begins_with(rest().substr(size), kNoNumberEnd)) {
            return nullptr;
        }
        char* const number = m_bytes + m_at + kNoNumber.size();
        m_at += size + kNoNumberEnd.size();
        return number;
    }

    void hide_message() {
        char* const number = skip_number();
        if (begins_with(rest(), kStartTag)) {
            hide_behind(kStartTag, rest().find('>'), TagNameHider());
        } else if (begins_with(rest(), kEndTag)) {
            hide_behind(kEndTag, rest().find('>'), TagNameHider());
        } else if (begins_with(rest(), kStamp)) {
            hide_behind(kStamp, rest().find('>'), TimeHider(), number);
        } else if (begins_with(rest(), kStart)) {
            hide_behind(kStart, line().rfind('>'), LineHider(), number);
        } else if (begins_with(rest(), kEnd)) {
            hide_behind(kEnd, line().rfind('>'), TimeHider(), number);
        } else if (begins_with(rest(), kEmptyItem)) {
            hide_behind(kEmptyItem, line().rfind(kEmptyItemEnd), SettingsHider());
        }
    }

    /// Hides what stands between the message and its end; a number is the last of it.
    template <typename Hider>
    void hide_behind(std::string_view message, std::size_t end_at, Hider hider,
                     char* number = nullptr) {
        if (end_at == std::string_view::npos) {
            return;
        }
        char* const end = m_bytes + m_at + end_at;
        for (char* byte = m_bytes + m_at + message.size(); byte < end; ++byte) {
            *byte = hider.hide(*byte);
        }
        if (number != nullptr && end_at >= message.size() + kSeconds) {
            std::memcpy(number, end - kSeconds, kSeconds);
        }
        m_at += end_at;
    }

    char* m_bytes;
    std::size_t m_size;
    std::size_t m_at = 0;
};

}  // namespace

void hide_printed(char* bytes, std::size_t size) {
    Output(bytes, size).hide();
}

}  // namespace guard
