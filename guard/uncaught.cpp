#include "guard/uncaught.h"

#include <cstdlib>
#include <exception>

#include "guard/parser_table.h"
#include "guard/report.h"

namespace guard {
namespace {

std::terminate_handler terminate_before = nullptr;

/// The exception that has left the thread's last call.
struct Leaving {
    const void* exception;
    unsigned long call;
    unsigned long parser;
    long thread;
};

thread_local Leaving leaving = {};

/// The current exception; null when there is none, or when it is none of the standard library's.
const std::exception* current() {
    if (!std::current_exception()) {
        return nullptr;
    }
    try {
        throw;
    } catch (const std::exception& exception) {
        return &exception;  // which somebody else has caught as well
    } catch (...) {
        return nullptr;
    }
}

[[noreturn]] void on_terminate() {
    const std::exception* const exception = current();
    if (exception != nullptr && exception == leaving.exception) {
        const MistakeText& text = text_of(Mistake::kUncaughtException);
        Line line;
        line << text.code << " at call " << leaving.call << ", pfnParse, parser " << leaving.parser
             << ", thread " << leaving.thread << ": " << text.sentence << " (";
        line.foreign(exception->what()) << "). What to do: " << text.way_out << ".";
        report_mistake(text, leaving.call, line);
    }
    terminate_before();
    std::abort();
}

}  // namespace

void UncaughtWatch::keep() {
    terminate_before = std::set_terminate(on_terminate);
}

void UncaughtWatch::end() {
    if (std::get_terminate() == on_terminate) {
        std::set_terminate(terminate_before);
    }
}

void UncaughtWatch::note_leaving(const Call& call) {
    leaving = {current(), call.number, call.parser != nullptr ? call.parser->number : 0,
               call.thread};
}

void UncaughtWatch::note_caught() {
    leaving.exception = nullptr;
}

}  // namespace guard
