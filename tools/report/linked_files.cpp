#include "tools/report/linked_files.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>
#include <utility>

#include "tools/console/descriptor.h"
#include "tools/console/escape.h"
#include "tools/console/failure.h"
#include "tools/console/text.h"
#include "tools/report/base64.h"

namespace quill::report {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargestPicture = 2 << 20;

[[noreturn]] void Fail(const std::string& file, const std::string& why) {
    throw console::Failure(console::kExitUsage, file + ": " + why);
}

std::ifstream Open(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    // A folder can be opened, but not read.
    if (!stream || (stream.peek(), !stream && !stream.eof())) {
        Fail(file, console::ErrorText(errno != 0 ? errno : EIO));
    }
    return stream;
}

bool MayStandInLink(char c) {
    static constexpr std::string_view kMarks = "-._~/";
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || console::IsDigit(c) ||
           kMarks.find(c) != std::string_view::npos;
}

// What pictures begin with, from the given byte on.
const char* TypeOf(std::string_view bytes) {
    struct Kind {
        std::size_t at;
        std::string_view beginning;
        const char* type;
    };
    static constexpr std::array<Kind, 4> kKinds = {{{0, "\x89PNG\r\n", "image/png"},
                                                    {0, "\xFF\xD8\xFF", "image/jpeg"},
                                                    {0, "GIF8", "image/gif"},
                                                    {8, "WEBP", "image/webp"}}};
    for (const Kind& kind : kKinds) {
        if (bytes.size() > kind.at && console::BeginsWith(bytes.substr(kind.at), kind.beginning)) {
            return kind.type;
        }
    }
    return nullptr;
}

}  // namespace

std::string LinkTo(const std::string& file, const std::string& page) {
    Open(file);
    const fs::path folder = page.empty() ? fs::current_path() : fs::absolute(page).parent_path();
    // In front of all else, so that a name such as "a:b" is no address.
    std::string link = "./";
    for (const char c : fs::absolute(file).lexically_relative(folder.lexically_normal()).string()) {
        link += MayStandInLink(c) ? std::string(1, c) : console::PercentCode(c);
    }
    return link;
}

std::string EmbedPicture(const std::string& file) {
    std::ifstream stream = Open(file);
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    const char* const type = TypeOf(bytes);
    if (type == nullptr) {
        Fail(file, "a background is a PNG, JPEG, GIF or WebP picture");
    }
    if (bytes.size() > kLargestPicture) {
        Fail(file, "a background may have up to " + std::to_string(kLargestPicture) + " bytes");
    }
    return std::string("data:") + type + ";base64," + Base64(bytes);
}

}  // namespace quill::report
