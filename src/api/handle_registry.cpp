#include "api/handle_registry.h"

#include <algorithm>
#include <list>

namespace webvtt {
namespace {

std::list<unsigned int> live_handles;

}  // namespace

unsigned int HandleRegistry::u4Register(WebVTTParser* parser) {
    const auto handle = reinterpret_cast<unsigned int>(parser);
    live_handles.push_back(handle);
    return handle;
}

bool HandleRegistry::fgIsLive(unsigned int handle) {
    return std::find(live_handles.begin(), live_handles.end(), handle) != live_handles.end();
}

void HandleRegistry::vUnregister(unsigned int handle) {
    live_handles.remove(handle);
}

}  // namespace webvtt
