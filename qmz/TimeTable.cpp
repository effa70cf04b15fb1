#include "TimeTable.h"

namespace qmz {

uint32_t TimeTable::LookUpOrAppend(int64_t time) {
    auto found = lookup_.find(time);
    if (found != lookup_.end()) {
        last_ = found->second;
        return last_;
    }
    last_ = static_cast<uint32_t>(times_.size());
    times_.push_back(time);
    if (lookup_.size() < kMaxLookup) {
        lookup_.emplace(time, last_);
    }
    return last_;
}

void TimeTable::FinishAdding() {
    std::unordered_map<int64_t, uint32_t>().swap(lookup_);
    times_.shrink_to_fit();
}

void TimeTable::Clear() {
    times_.clear();
    std::unordered_map<int64_t, uint32_t>().swap(lookup_);
    last_ = 0;
}

} // namespace qmz
