#pragma once

#include <QtGlobal>
#include <array>

namespace mms {

// The message size limit the composer measures the estimate against: the limits common among
// carriers (1 KB = 1024 bytes) or a custom one, kept as the setting "MessageSizeLimit" in bytes.
inline constexpr std::array<qint64, 4> kSizeLimitPresets{100 * 1024, 300 * 1024, 600 * 1024, 1024 * 1024};
inline constexpr qint64 kDefaultSizeLimit = 300 * 1024;
// The range of a custom limit, in KB.
inline constexpr int kMinCustomLimitKB = 10;
inline constexpr int kMaxCustomLimitKB = 100 * 1024;

// The setting; the default when it is missing or outside the custom range.
qint64 readSizeLimitSetting();
void writeSizeLimitSetting(qint64 bytes);

// How the gauge shows an estimate: amber above 90 % of the limit, red above the limit.
enum class GaugeLevel { Normal, Near, Over };
GaugeLevel gaugeLevel(qint64 size, qint64 limit);
inline bool isOverLimit(qint64 size, qint64 limit) {
    return gaugeLevel(size, limit) == GaugeLevel::Over;
}

} // namespace mms
