#include "ComSupport.h"

namespace qmz {

std::atomic<long> ComSupport::liveObjects_{0};
std::atomic<long> ComSupport::locks_{0};

} // namespace qmz
