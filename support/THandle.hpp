// SPDX-License-Identifier: MIT
// THandle, the reference-counted handle in which the libraries pass their objects around.
#pragma once

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

#include "support/THandleCommon.hpp"

// GCC 12 cannot see that a count another handle still holds is above zero
// and reports use-after-free in inlined copies, nor that an object made in
// an arena is never deleted (its count has a release of its own) and reports
// a delete of storage not from the heap; the sanitized tests check both.
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuse-after-free"
#pragma GCC diagnostic ignored "-Wfree-nonheap-object"
#endif

// A reference-counted handle: two words, the object pointer (may be null)
// and a separately allocated count (none for a null handle). The object is
// destroyed through its virtual destructor when the last handle lets go,
// unless its count names a release of its own (objects kept in storage that
// someone else owns, see THandleCount). Handles compare by the identity of
// their object.
template <class T>
class THandle {
public:
    THandle() noexcept : object_(nullptr), count_(nullptr) {}
    explicit THandle(T* object) : object_(object), count_(object == nullptr ? nullptr : new THandleCount) {}
    THandle(std::nullptr_t) noexcept : THandle() {}

    THandle(const THandle& other) noexcept : object_(other.object_), count_(other.count_) { retain(); }

    // A handle to a derived class converts to one to its base, sharing the count.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    THandle(const THandle<U>& other) noexcept : object_(other.object_), count_(other.count_) {
        retain();
    }

    THandle& operator=(const THandle& other) noexcept {
        if (this != &other) {
            if (other.count_ != nullptr) ++other.count_->count;  // taken first: self-sharing is safe
            release();
            object_ = other.object_;
            count_ = other.count_;
        }
        return *this;
    }

    ~THandle() { release(); }

    T* operator->() const {
        if (object_ == nullptr) THandleCommon::null_handle_error(typeid(T));
        return object_;
    }
    T& operator*() const {
        if (object_ == nullptr) THandleCommon::null_handle_error(typeid(T));
        return *object_;
    }

    T* get() const noexcept { return object_; }
    bool is_null() const noexcept { return object_ == nullptr; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    long use_count() const noexcept { return count_ == nullptr ? 0 : count_->count; }

    // A handle of an object whose count (and storage) its owner keeps: the
    // count is taken once more; when it drops to zero its release runs.
    static THandle shared(T* object, THandleCount* count) noexcept { return THandle(object, count); }

    // A handle of the same object seen as a U, or a null handle when the
    // object is not a U.
    template <class U>
    THandle<U> cast() const {
        U* target = dynamic_cast<U*>(object_);
        if (target == nullptr) return THandle<U>();
        return THandle<U>(target, count_);
    }

    template <class U>
    bool operator==(const THandle<U>& other) const noexcept {
        return static_cast<const void*>(object_) == static_cast<const void*>(other.get());
    }
    template <class U>
    bool operator<(const THandle<U>& other) const noexcept {
        return std::less<const void*>()(object_, other.get());
    }

private:
    template <class U>
    friend class THandle;

    THandle(T* object, THandleCount* count) noexcept : object_(object), count_(count) { retain(); }

    void retain() noexcept {
        if (count_ != nullptr) ++count_->count;
    }
    void release() noexcept {
        if (count_ == nullptr || --count_->count != 0) return;
        if (count_->release != nullptr) {
            count_->release(count_);
        } else {
            delete count_;
            delete object_;
        }
    }

    T* object_;
    THandleCount* count_;
};

#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12
#pragma GCC diagnostic pop
#endif

template <class T>
struct std::hash<THandle<T>> {
    std::size_t operator()(const THandle<T>& handle) const noexcept { return std::hash<T*>()(handle.get()); }
};
