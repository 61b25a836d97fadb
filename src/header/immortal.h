// Objects that live as long as the process.
#pragma once

#include <new>
#include <utility>

namespace webvtt {

/// Holds an object that is constructed at load time and never destroyed, in static storage. A
/// string whose text fits its own buffer therefore leaves nothing behind when the module goes.
template <typename Object>
class Immortal {
  public:
    template <typename... Arguments>
    explicit Immortal(Arguments&&... arguments) {
        m_object = new (m_storage) Object(std::forward<Arguments>(arguments)...);
    }
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    Object* get() { return m_object; }

  private:
    alignas(Object) unsigned char m_storage[sizeof(Object)];
    Object* m_object;
};

}  // namespace webvtt
