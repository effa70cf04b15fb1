#pragma once

#include "IQmzUnknown.h"

namespace qmz {

// An image file opened as a read-only drive. The program only hands it to IQmzReader::Attach.
class IQmzDrive : public IQmzUnknown {
protected:
    ~IQmzDrive() = default;
};

} // namespace qmz
