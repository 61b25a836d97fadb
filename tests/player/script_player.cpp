// Plays scripts of host calls through the loaded module and reports all that a host can observe.
//
//     script_player quillcaption.so < batch > report
//
// A batch holds scripts, each between a line "script NUMBER" and a line "end";
// tests/model/script.py describes the calls. The report repeats those two lines, and between them
// has for each call the module's own output, the callback's events and how the call ended.
//
// This host deliberately does not include the public header: it finds the functions and reads the
// records by number, so that a mistake which the module and its header share does not go unseen.
// Every chunk lies in a block of its exact size, which is overwritten and freed after the call.
//
// Memory fails only in failing_player, which is this program with an operator new of its own.

#include <dlfcn.h>

#include <algorithm>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>

#include "report.h"
#include "support/memory.h"

namespace {

using Handle = unsigned int;
using Notify = void (*)(int, void*, void*);

template <typename T>
T read_at(const void* object, size_t offset) {
    T value;
    std::memcpy(&value, static_cast<const char*>(object) + offset, sizeof value);
    return value;
}

// The six functions, in the order of the module's table.
struct Module {
    int (*create)(Handle*);
    void (*release)(Handle);
    int (*parse)(Handle, const void*, unsigned int);
    void (*set_callback)(Handle, void*, Notify);
    void (*get_result)(Handle);
    void (*set_video_time)(Handle, unsigned long);
};

Module read_module(void* library) {
    const void* info = dlsym(library, "WEBVTT_MODULE_INFO");
    const void* table = dlsym(library, "WebVtt_Module_Methods");
    if (info == nullptr || table == nullptr) {
        give_up("the module lacks its descriptor or its table");
    }
    const char* const reserved = static_cast<const char*>(info) + 12;
    if (read_at<uint32_t>(info, 0) != 1 ||
        std::string(read_at<const char*>(info, 4)) != "quillcaption.so" ||
        read_at<const void*>(info, 8) != table ||
        std::any_of(reserved, reserved + 132, [](char byte) { return byte != 0; })) {
        give_up("the descriptor is wrong");
    }
    Module module;
    module.create = read_at<decltype(module.create)>(table, 0);
    module.release = read_at<decltype(module.release)>(table, 4);
    module.parse = read_at<decltype(module.parse)>(table, 8);
    module.set_callback = read_at<decltype(module.set_callback)>(table, 12);
    module.get_result = read_at<decltype(module.get_result)>(table, 16);
    module.set_video_time = read_at<decltype(module.set_video_time)>(table, 20);
    return module;
}

std::string text_at(const void* record, size_t offset) {
    const char* text = read_at<const char*>(record, offset);
    return text == nullptr ? "null" : quote(text);
}

std::string bits_at(const void* record, size_t offset) {
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016" PRIx64, read_at<uint64_t>(record, offset));
    return digits;
}

/// What the callback is to do besides reporting; nothing most of the time.
std::function<void()> in_callback;

void report_event(int event, const void* tag, const void* info) {
    report().take_output();
    std::ostringstream head;
    head << "event " << event << " tag " << reinterpret_cast<uintptr_t>(tag) << " cues "
         << read_at<uint32_t>(info, 4) << " reserved " << read_at<uint32_t>(info, 8);
    report().line(head.str());
    for (auto* cue = read_at<const void*>(info, 0); cue != nullptr;
         cue = read_at<const void*>(cue, 44)) {
        std::ostringstream line;
        line << "cue aux " << text_at(cue, 0) << " start " << bits_at(cue, 8) << " end "
             << bits_at(cue, 16) << " text " << text_at(cue, 24) << " line "
             << read_at<int32_t>(cue, 28) << " reserved " << int{read_at<uint8_t>(cue, 32)}
             << " snap " << int{read_at<uint8_t>(cue, 33)} << " position "
             << int{read_at<uint8_t>(cue, 34)} << " size " << int{read_at<uint8_t>(cue, 35)}
             << " align " << read_at<int32_t>(cue, 36) << " vertical " << read_at<int32_t>(cue, 40);
        report().line(line.str());
    }
}

void on_event(int event, void* tag, void* info) {
    report_event(event, tag, info);
    if (in_callback) {
        in_callback();
    }
}

// A chunk in a block of its exact size, which nobody can read any more after the call.
class Chunk {
  public:
    explicit Chunk(const std::string& bytes) : size_(bytes.size()), data_(new char[size_]) {
        std::memcpy(data_.get(), bytes.data(), size_);
    }
    ~Chunk() {
        volatile char* byte = data_.get();
        std::fill(byte, byte + size_, '\xA5');
    }
    Chunk(const Chunk&) = delete;
    Chunk& operator=(const Chunk&) = delete;

    const void* data() const { return data_.get(); }
    unsigned int size() const { return static_cast<unsigned int>(size_); }

  private:
    size_t size_;
    std::unique_ptr<char[]> data_;
};

class Player {
  public:
    explicit Player(const Module& module) : module_(module) {}

    // Makes the call of one script line and reports it.
    void play(const std::string& line) {
        const bool is_plan = line.rfind("fail ", 0) == 0;
        const std::string ending = ending_of([&] { return call(line); });
        report().take_output();
        if (is_planned_) {
            report().line("allocations " + std::to_string(memory_.allocations()) + " failed " +
                          std::to_string(memory_.failures()));
            memory_.fail_nothing();
        }
        is_planned_ = is_plan;
        report().line(ending);
        report().flush();
    }

    // Gives back what the script did not release, unreported, and forgets its names.
    void clear() {
        for (const auto& entry : live_) {
            module_.release(entry.second);
        }
        live_.clear();
        handles_.clear();
        report().drop_output();
    }

  private:
    static std::string ending_of(const std::function<std::string()>& call) {
        try {
            return call();
        } catch (const std::out_of_range& error) {
            return "throw std::out_of_range " + quote(error.what());
        } catch (const std::bad_alloc& error) {
            return "throw std::bad_alloc " + quote(error.what());
        } catch (const std::exception& error) {
            return "throw std::exception " + quote(error.what());
        } catch (...) {
            return "throw";
        }
    }

    // How the call ended: "ret" with its result, or "done" where there is none.
    std::string call(const std::string& line) {
        std::istringstream words(line);
        std::string verb;
        std::string name;
        words >> verb >> name >> std::ws;
        std::string rest;
        std::getline(words, rest);
        if (verb == "create") {
            return create(name);
        }
        if (verb == "create_null") {
            return result(module_.create(nullptr));
        }
        if (verb == "fail") {
            plan(name, number(rest));
            return "done";
        }
        const Handle handle = find(name);
        if (verb == "parse") {
            return parse(handle, rest);
        }
        if (verb == "parse_null") {
            return result(module_.parse(handle, nullptr, number(rest)));
        }
        if (verb == "parse_size0") {
            return result(module_.parse(handle, "WEBVTT\n", 0));
        }
        if (verb == "callback" || verb == "callback_null") {
            const Notify notify = verb == "callback" ? on_event : nullptr;
            module_.set_callback(handle, reinterpret_cast<void*>(number(rest)), notify);
        } else if (verb == "result") {
            module_.get_result(handle);
        } else if (verb == "result_feeding") {
            in_callback = [&] {
                const std::string ending = ending_of([&] { return parse(handle, rest); });
                report().take_output();
                report().line("fed " + ending);
            };
            module_.get_result(handle);
            in_callback = nullptr;
        } else if (verb == "pts") {
            module_.set_video_time(handle, number(rest));
        } else if (verb == "release") {
            module_.release(handle);
            live_.erase(name);
        } else {
            give_up("unknown call: " + line);
        }
        return "done";
    }

    std::string create(const std::string& name) {
        Handle handle = 0xFFFFFFFF;
        const std::string ending = result(create_under_plan(&handle));
        const bool is_taken = std::any_of(live_.begin(), live_.end(), [handle](const auto& entry) {
            return entry.second == handle;
        });
        handles_[name] = handle;
        if (handle == 0 || handle == 0xFFFFFFFF) {
            return ending + " handle missing";
        }
        live_[name] = handle;
        return ending + (is_taken ? " handle taken" : " handle new");
    }

    // The module's calls that need memory are made under the plan, and nothing else is.
    int create_under_plan(Handle* handle) {
        const support::Memory::Use use(memory_);
        return module_.create(handle);
    }

    int parse_under_plan(Handle handle, const Chunk& chunk) {
        const support::Memory::Use use(memory_);
        return module_.parse(handle, chunk.data(), chunk.size());
    }

    std::string parse(Handle handle, const std::string& quoted) {
        return result(parse_under_plan(handle, Chunk(unquote(quoted))));
    }

    void plan(const std::string& kind, unsigned int number) {
        if (kind == "once") {
            memory_.fail_once(number);
        } else if (kind == "from") {
            memory_.fail_from(number);
        } else {
            give_up("unknown plan: " + kind);
        }
    }

    Handle find(const std::string& name) const {
        if (name.rfind("0x", 0) == 0) {
            return static_cast<Handle>(std::strtoul(name.c_str(), nullptr, 16));
        }
        const auto found = handles_.find(name);
        return found != handles_.end() ? found->second : (give_up("no handle: " + name), 0);
    }

    static std::string result(int code) { return "ret " + std::to_string(code); }

    static unsigned int number(const std::string& text) {
        return static_cast<unsigned int>(std::strtoul(text.c_str(), nullptr, 10));
    }

    Module module_;
    support::Memory memory_;                 // of the calls that need some
    bool is_planned_ = false;                // and whether it may fail in the next call
    std::map<std::string, Handle> handles_;  // all that the script was given, dead ones too
    std::map<std::string, Handle> live_;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        give_up("usage: script_player MODULE < batch");
    }
    void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        give_up(dlerror());
    }
    Player player(read_module(library));
    std::string line;
    while (std::getline(std::cin, line)) {
        const bool is_frame = line == "end" || line.rfind("script ", 0) == 0;
        if (!is_frame) {
            player.play(line);
            continue;
        }
        player.clear();
        report().line(line);
        report().flush();
    }
    return dlclose(library) == 0 ? 0 : 2;
}
