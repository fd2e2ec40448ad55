// SPDX-License-Identifier: MIT
//
// Shared ownership for the records that several lists and the pending conflicts refer to at once: fonts and
// name elements. The count is in the record, so a plain pointer from one of the older interfaces can always
// be made an owner again. It is a plain integer because the program has one thread.
#pragma once

#include <cstddef>
#include <utility>

namespace gw {

/// Base of a record that is owned through `Ref`. A record made with `new` has no owner until the first `Ref`
/// takes it; the last `Ref` to go deletes it. Records on the stack must never be given to a `Ref`.
class RefCounted {
  public:
    RefCounted() = default;
    RefCounted(const RefCounted&) noexcept {}
    RefCounted& operator=(const RefCounted&) = delete;

    [[nodiscard]] int owners() const { return owners_; }

  protected:
    ~RefCounted() = default;

  private:
    template <class T>
    friend class Ref;
    mutable int owners_ = 0;
};

/// An owner of a `T` derived from `RefCounted`; may be empty.
template <class T>
class Ref {
  public:
    Ref() = default;
    /// Becomes one more owner of `record`. Not explicit, so that a pointer can be passed where a `Ref` is
    /// wanted.
    Ref(T* record) : record_(record) { acquire(); }
    Ref(const Ref& other) : record_(other.record_) { acquire(); }
    Ref(Ref&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
    ~Ref() { release(); }

    Ref& operator=(Ref other) noexcept {
        std::swap(record_, other.record_);
        return *this;
    }

    /// Takes over the ownership that a call of `leave` left behind.
    static Ref adopt(T* record) {
        Ref owner(record);
        if (record != nullptr) --record->owners_;
        return owner;
    }
    /// Forgets the record without releasing it; a later `adopt` must take over this ownership.
    void leave() { record_ = nullptr; }

    [[nodiscard]] T* get() const { return record_; }
    T* operator->() const { return record_; }
    T& operator*() const { return *record_; }
    explicit operator bool() const { return record_ != nullptr; }

  private:
    void acquire() const {
        if (record_ != nullptr) ++record_->owners_;
    }
    void release() {
        if (record_ != nullptr && --record_->owners_ == 0) delete record_;
    }

    T* record_ = nullptr;
};

}  // namespace gw
