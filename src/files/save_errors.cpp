#include "files/save_errors.h"

namespace {

// Numbers of the system, defined here because this file includes no <windows.h>.
constexpr unsigned long kAccessDenied = 5, kSharingViolation = 32, kLockViolation = 33, kNameTooLong = 206,
                        kMappedFile = 1224;

}  // namespace

bool IsHeldElsewhere(unsigned long error) {
    return error == kSharingViolation || error == kLockViolation || error == kMappedFile;
}

bool MayWriteInPlace(unsigned long error) {
    return error == kAccessDenied || error == kSharingViolation || error == kNameTooLong;
}
