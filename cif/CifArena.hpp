// SPDX-License-Identifier: MIT
// Storage for the items and blocks of one document, handed out in order and freed at once.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "support/THandle.hpp"

// Objects made here carry their handle count in front of them, so making
// one costs no allocation of its own. An object is destroyed when its last
// handle lets go, as any other; its storage comes back only when the arena
// goes, all at once. The arena belongs to a document's text store
// (CifTextStore), and every object made here holds a handle of that store
// (its store()), so the arena outlives them all.
class CifArena {
public:
    CifArena() = default;
    CifArena(const CifArena&) = delete;
    CifArena& operator=(const CifArena&) = delete;

    template <class T, class... Args>
    THandle<T> make(Args&&... args) {
        Slot<T>* slot = new (allocate(sizeof(Slot<T>), alignof(Slot<T>))) Slot<T>;
        T* object = new (slot->storage) T(std::forward<Args>(args)...);
        return THandle<T>::shared(object, &slot->count);
    }

    // The bytes handed out so far.
    std::size_t used() const { return used_; }

private:
    template <class T>
    struct Slot {
        THandleCount count{0, &release<T>};
        alignas(T) unsigned char storage[sizeof(T)];
    };

    template <class T>
    static void release(THandleCount* count) {
        T* object = std::launder(reinterpret_cast<T*>(reinterpret_cast<Slot<T>*>(count)->storage));
        // The store that holds this arena may go with the object's last
        // handle of it: it is kept until the destructor is done.
        auto keep = object->store();
        object->~T();
    }

    void* allocate(std::size_t size, std::size_t alignment);

    std::vector<std::unique_ptr<unsigned char[]>> chunks_;
    unsigned char* next_ = nullptr;
    unsigned char* end_ = nullptr;
    std::size_t used_ = 0;
};
