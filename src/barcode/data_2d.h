// What PDF417 and QR Code symbols take.
#pragma once

/// Bytes of data that one symbol takes at most; more are not sent.
inline constexpr long kLongest2dData = 8092;
