// The distinct modification times of a volume's entries. A volume's files mostly share a few
// times (those of its writing), so an entry holds a 32-bit index here instead of its own 64-bit
// time. Each entry adds one time at most, so the table never outgrows the entries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace qmz {

class TimeTable {
public:
    // The index of `time`, added if new.
    uint32_t Add(int64_t time) {
        return last_ < times_.size() && times_[last_] == time ? last_ : LookUpOrAppend(time);
    }
    int64_t At(uint32_t index) const { return times_[index]; }
    size_t Size() const { return times_.size(); }
    // Frees what only adding needs; At keeps working, and a later Add may repeat a time.
    void FinishAdding();
    void Clear();

private:
    uint32_t LookUpOrAppend(int64_t time);

    // Past this many distinct times, new ones are kept without being looked up again, which
    // bounds the look-up's memory on a volume whose every file has a time of its own.
    static constexpr size_t kMaxLookup = size_t{1} << 16;

    std::vector<int64_t> times_;
    std::unordered_map<int64_t, uint32_t> lookup_;
    uint32_t last_ = 0; // the index Add returned last: neighbours mostly share their time
};

} // namespace qmz
