// Writing all bytes or failing, with the device's own reason.
#pragma once

#include <QIODevice>

/// Writes all of `bytes`. A device that took a part is asked again, so that a full disk tells its reason;
/// false, with the device's `errorString`, when it takes no more.
inline bool writeWhole(QIODevice& device, const char* bytes, qint64 size) {
    while (size > 0) {
        const qint64 taken = device.write(bytes, size);
        if (taken <= 0)
            return false;
        bytes += taken;
        size -= taken;
    }
    return true;
}
