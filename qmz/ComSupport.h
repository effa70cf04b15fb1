// What every engine object shares: the count of live objects and server locks behind
// DllCanUnloadNow, reference counting, and the rule that no exception leaves the engine.
#pragma once

#include <atomic>
#include <cstdint>
#include <new>

#include "QmzTypes.h"

namespace qmz {

// Lets the reader find the engine's own drive object behind an IQmzDrive pointer.
inline constexpr Guid kIidQmzDriveObject = {
    0x3D0F3E52, 0x8B1C, 0x4E7A, {0x9A, 0x41, 0x6C, 0x2B, 0x90, 0x5E, 0x17, 0xD3}};

class ComSupport {
public:
    static void ObjectCreated() { liveObjects_.fetch_add(1, std::memory_order_relaxed); }
    static void ObjectDestroyed() { liveObjects_.fetch_sub(1, std::memory_order_acq_rel); }
    static void Lock(bool lock) { locks_.fetch_add(lock ? 1 : -1, std::memory_order_acq_rel); }
    static bool CanUnload() { return liveObjects_.load() == 0 && locks_.load() <= 0; }

    // Runs `body` and turns an escaping exception into a result code.
    template <class Body> static Result Guarded(Body&& body) noexcept {
        try {
            return body();
        } catch (const std::bad_alloc&) {
            return kEngineOutOfMemory;
        } catch (...) {
            return kFail;
        }
    }

private:
    static std::atomic<long> liveObjects_;
    static std::atomic<long> locks_;
};

// Counts its owner among the live objects and holds its references; the owner deletes itself
// when Release returns 0.
class RefCount {
public:
    RefCount() { ComSupport::ObjectCreated(); }
    RefCount(const RefCount&) = delete;
    RefCount& operator=(const RefCount&) = delete;
    ~RefCount() { ComSupport::ObjectDestroyed(); }

    uint32_t Add() { return refs_.fetch_add(1, std::memory_order_relaxed) + 1; }
    uint32_t Drop() { return refs_.fetch_sub(1, std::memory_order_acq_rel) - 1; }

private:
    std::atomic<uint32_t> refs_{1};
};

} // namespace qmz
